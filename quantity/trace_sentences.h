#pragma once

#include <string>
#include <string_view>

namespace qel {

/// The sentence of a fault or a remark of a trace, which it keeps in English, in Japanese. Names, units and formulas in
/// it stay as they are.
std::string JapaneseSentence(std::string_view english);

}  // namespace qel
