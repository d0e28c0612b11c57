#pragma once

#include <string>
#include <string_view>

namespace qel {

/// What a trace keeps in English whatever its language (the name of a rule, how an uncertainty is stated, an operation,
/// a result that is no number) in Japanese. Numbers and texts without a translation stay as they are.
std::string JapaneseOf(std::string_view english);

}  // namespace qel
