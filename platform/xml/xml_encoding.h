#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

// Files of XML in the encodings that they declare.
namespace qel {

/// The text of a file in UTF-8, without its byte-order mark.
/// @throws DataError when the system does not know the encoding, or the bytes are not in it
std::string DecodedXml(std::string bytes);

/// A text in an encoding, or nothing when it lacks one of the characters.
using XmlEncoder = std::function<std::optional<std::string>(std::string_view utf8)>;

/// @param encoding as a document declares it; "" is UTF-8
/// @throws DataError when the system does not know it
XmlEncoder XmlEncoderFor(std::string_view encoding);

/// The text with numeric references for the characters that an encoding lacks.
std::string WithReferencesFor(const XmlEncoder& encoder, std::string_view utf8);

}  // namespace qel
