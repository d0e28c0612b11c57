#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

// XML files in the encoding that they declare.
namespace qel {

/// The text of a file in UTF-8, without its byte-order mark.
/// @throws DataError when the system does not know the encoding, or the bytes are not in it
std::string DecodedXml(std::string bytes);

/// A text in an encoding, or nothing if one of the characters is missing there.
using XmlEncoder = std::function<std::optional<std::string>(std::string_view utf8)>;

/// @param encoding as a document declares it; "" is UTF-8
/// @throws DataError when the system does not know it
XmlEncoder XmlEncoderFor(std::string_view encoding);

/// The text with numeric references for characters that are missing in an encoding.
std::string WithReferencesFor(const XmlEncoder& encoder, std::string_view utf8);

}  // namespace qel
