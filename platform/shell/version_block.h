#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace qel {

/// The text of @p key, in upper or lower case, in a version resource. It consists of nested blocks, each:
///
///     0  length of all of it     2  length of the value     4  1: the value is text, its length counts UTF-16 units
///     6  name, UTF-16, a zero unit, then up to a multiple of 4 from the start of the resource: value, likewise: blocks
///
///     VS_VERSION_INFO
///         StringFileInfo      a block for each language, named by language and code page as 041104b0, with the texts
///         VarFileInfo         Translation: pairs of language and code page, 16 bits each, in the order of preference
///
/// @return the text in the first language that has it, in the process's code page, up to its first zero unit
/// @throws DataError when a length points outside its block
std::optional<std::string> TextOfVersionBlock(std::span<const std::byte> resource, std::string_view key);

}  // namespace qel
