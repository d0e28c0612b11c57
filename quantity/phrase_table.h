#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace qel {

/// A text of this library in both languages. A hole `{}` stands for any text, which stays as it is; a hole `{*}` for
/// one that has a translation of its own. Both languages have the same holes in the same order.
struct Phrase {
    std::string_view english, japanese;
};

using Translator = std::string (*)(std::string_view english);

/// @param inner translates what is in holes `{*}`
/// @return the Japanese of the first phrase that @p english is; nothing where it is none of them
std::optional<std::string> Translated(std::string_view english, std::span<const Phrase> phrases, Translator inner);

}  // namespace qel
