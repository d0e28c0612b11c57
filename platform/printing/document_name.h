#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

/// The start of a text in UTF-8, at most @p bytes long and cut between characters; control characters become `_`.
std::string Printable(std::string_view utf8, std::size_t bytes);

/// Turns the name of a document into a file name without extension, at most 200 bytes long: characters with a meaning
/// in paths become `_` too, blanks and dots at both ends are removed. Never empty.
std::string FileNameOf(std::string_view document);

}  // namespace qel
