#pragma once

#include <concepts>
#include <functional>
#include <string>
#include <string_view>

namespace pugi {
class xml_attribute;
class xml_node;
}  // namespace pugi

namespace qel {

/// How a tree is written.
struct XmlForm {
    bool namesEncoding;  // the declaration keeps its encoding

    /// Whether the target has all of these characters. A section that has others is written as text, where references
    /// can replace them.
    std::function<bool(std::string_view)> has;
};

/// The node in UTF-8 with CR LF line ends; for a document everything in it, each part followed by a line end.
/// @param expected about how many bytes, only for speed
std::string WriteXml(pugi::xml_node node, const XmlForm& form, std::size_t expected = 0);
std::string WriteXml(pugi::xml_attribute attribute);

}  // namespace qel
