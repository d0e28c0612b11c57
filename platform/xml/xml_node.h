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

/// A place in an XmlDocument: an element, a text or another kind of node, or an attribute that a path has found. It is
/// no owner; it ends with its node and with the document's next load. All text is in the process's code page.
///
/// Paths are XPath 1.0 from the node, with `end()` in predicates for the last of the matching siblings; names are
/// compared as written, prefix included. DataError for a path that is none, or that selects no nodes (`count(A)`).
class QELLIB10_API XmlNode {
public:
    /// The first node in document order, or all of them in that order.
    std::optional<XmlNode> Select(std::string_view path) const;
    std::vector<XmlNode> SelectAll(std::string_view path) const;

    /// The first element in this node, and the next one beside it.
    std::optional<XmlNode> FirstElement() const;
    std::optional<XmlNode> NextElement() const;

    std::string_view Utf8Name() const;  ///< the name of an element as it stands in the tree

    /// Text and CDATA of all descendants joined, without the white space that only sets elements apart; the value of an
    /// attribute, comment or instruction. What the page lacks appears as its best fit.
    std::string Text() const;
    /// Replaces all children by the text, or the value. Characters that XML cannot have become `?`. An empty text takes
    /// a text node out, which ends this place; an instruction's text loses blanks at its start.
    /// @throws DataError for the document itself, and for what a comment or an instruction cannot hold
    void SetText(std::string_view text);

    /// As the node stands in the document's text, without a line end behind it; an attribute as `name="value"`.
    std::string Xml() const;

    /// Adds an element as the last child, before white space that sets the closing tag apart.
    /// @throws DataError when @p name is no name, or the element would stand deeper than 512 levels
    XmlNode AppendElement(std::string_view name);

    /// Takes the node, with all below it, out of the document.
    /// @return false for what has no parent: an attribute, and the document itself
    bool Remove();

private:
    friend class XmlAttributes;
    friend class XmlDocument;

    // The attribute, where it is not null, of the element.
    explicit XmlNode(pugi::xml_node_struct* node, pugi::xml_attribute_struct* attribute = nullptr)
        : m_node(node), m_attribute(attribute) {}
    static XmlNode At(const pugi::xpath_node& found);
    static std::optional<XmlNode> ElementFrom(pugi::xml_node_struct* node);

    pugi::xml_node_struct* m_node;
    pugi::xml_attribute_struct* m_attribute;
};

/// The attributes of an element, for reading many: found at once when they are asked for in the order in which they
/// stand.
class QELLIB10_API XmlAttributes {
public:
    explicit XmlAttributes(const XmlNode& element);

    /// The value in UTF-8, as it stands in the tree; nothing when there is no such attribute.
    /// @param name of ASCII; a null one is nobody's
    std::optional<std::string_view> Utf8(const char* name);

private:
    pugi::xml_attribute_struct* m_first;
    pugi::xml_attribute_struct* m_next;
};

}  // namespace qel
