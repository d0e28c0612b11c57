#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"

namespace pugi {
struct xml_attribute_struct;
struct xml_node_struct;
class xpath_node;
}  // namespace pugi

namespace qel {

/// A place in an XmlDocument: an element, a text or another kind of node, or an attribute that a path has found. It
/// does not own it; it becomes invalid with its node and with the document's next load. All text is in the process's
/// code page.
///
/// Paths are XPath 1.0 from the node, with `end()` in predicates for the last of the matching siblings; names are
/// compared as written, prefix included. DataError for an invalid path, or one that selects no nodes (`count(A)`).
class QELLIB10_API XmlNode {
public:
    /// The first node in document order, or all of them in that order.
    std::optional<XmlNode> Select(std::string_view path) const;
    std::vector<XmlNode> SelectAll(std::string_view path) const;

    /// The first element in this node, and the next sibling element.
    std::optional<XmlNode> FirstElement() const;
    std::optional<XmlNode> NextElement() const;

    std::string_view Utf8Name() const;  ///< the name of an element as it is in the tree

    /// Text and CDATA of all descendants joined, without white space that only separates elements; the value of an
    /// attribute, comment or instruction. Characters missing in the page become their best fit.
    std::string Text() const;
    /// The same in UTF-8.
    std::string Utf8Text() const;
    /// Replaces all children, or the value, by the text. Characters that XML cannot contain become `?`. An empty text
    /// removes a text node, and this place with it; an instruction's text loses blanks at its start.
    /// @throws DataError for the document itself, and for what a comment or an instruction cannot contain
    void SetText(std::string_view text);

    /// The node as in the document's text, without a line end after it; an attribute as `name="value"`.
    std::string Xml() const;

    /// Adds an element as the last child, before any white space that precedes the closing tag.
    /// @throws DataError when @p name is not a valid name, or the element would be deeper than 512 levels
    XmlNode AppendElement(std::string_view name);

    /// Removes the node and everything in it from the document.
    /// @return false if it has no parent: an attribute, and the document itself
    bool Remove();

private:
    friend class XmlAttributes;
    friend class XmlDocument;

    // The attribute, if not null, of the element.
    explicit XmlNode(pugi::xml_node_struct* node, pugi::xml_attribute_struct* attribute = nullptr)
        : m_node(node), m_attribute(attribute) {}
    static XmlNode At(const pugi::xpath_node& found);
    static std::optional<XmlNode> ElementFrom(pugi::xml_node_struct* node);

    pugi::xml_node_struct* m_node;
    pugi::xml_attribute_struct* m_attribute;
};

/// The attributes of an element, for reading many: fastest if they are requested in the order in which they are
/// written.
class QELLIB10_API XmlAttributes {
public:
    explicit XmlAttributes(const XmlNode& element);

    /// The value in UTF-8, as it is in the tree; nothing if there is no such attribute.
    /// @param name of ASCII; null matches none
    std::optional<std::string_view> Utf8(const char* name);

private:
    pugi::xml_attribute_struct* m_first;
    pugi::xml_attribute_struct* m_next;
};

}  // namespace qel
