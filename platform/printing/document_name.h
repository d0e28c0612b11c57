#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

/// The beginning of a text in UTF-8, at most @p bytes long and cut at a character; control characters become `_`.
std::string Printable(std::string_view utf8, std::size_t bytes);

/// A file's name without its extension, at most 200 bytes long, from the name of a document: characters that paths give
/// a meaning become `_` as well, blanks and dots at both ends go. Never empty.
std::string FileNameOf(std::string_view document);

}  // namespace qel
