#include "qellib10/platform/xml/xml_node.h"

#include <algorithm>

#include <pugixml.hpp>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/xml/xml_memory.h"
#include "qellib10/platform/xml/xml_path.h"
#include "qellib10/platform/xml/xml_text.h"
#include "qellib10/platform/xml/xml_walk.h"
#include "qellib10/platform/xml/xml_writer.h"

namespace qel {
namespace {

bool HasElement(pugi::xml_node parent) {
    for (const pugi::xml_node child : parent.children()) {
        if (child.type() == pugi::node_element) return true;
    }
    return false;
}

std::string TextOf(pugi::xml_node top) {
    const pugi::xml_node only = top.first_child();
    if (only.type() == pugi::node_pcdata && !only.next_sibling()) return only.value();
    if (top.type() != pugi::node_element && top.type() != pugi::node_document) return top.value();
    std::string text;
    std::vector<std::optional<bool>> haveElements(1);  // of the open nodes, looked up once each
    const auto isIndentation = [&](pugi::xml_node node) {
        if (node.type() != pugi::node_pcdata || !IsXmlBlank(node.value())) return false;
        if (!haveElements.back()) haveElements.back() = HasElement(node.parent());
        return *haveElements.back();
    };
    const auto enter = [&](pugi::xml_node node, bool hasChildren) {
        const bool isText = node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
        if (isText && !isIndentation(node)) text += node.value();
        if (hasChildren) haveElements.emplace_back();
    };
    WalkXml(top, enter, [&](pugi::xml_node) { haveElements.pop_back(); });
    return text;
}

int DepthOf(pugi::xml_node node) {
    int depth = 0;
    for (; node.type() == pugi::node_element; node = node.parent()) ++depth;
    return depth;
}

// The old content is removed once the new one is there.
void SetElementText(pugi::xml_node element, const std::string& text) {
    pugi::xml_node added;
    if (!text.empty()) {
        added = element.append_child(pugi::node_pcdata);
        const bool done = added.set_value(text.c_str());
        if (!done) element.remove_child(added);
        RequireMemory(done);
    }
    while (element.first_child() != added) element.remove_child(element.first_child());
}

// Comments and the like cannot contain their own end.
void SetData(pugi::xml_node node, const std::string& text, std::string_view forbidden) {
    if (text.find(forbidden) != std::string::npos || text.ends_with(forbidden[0])) {
        throw DataError("a text that contains the end of its own node");
    }
    RequireMemory(node.set_value(WithPlainLineEnds(text).c_str()));
}

}  // namespace

XmlNode XmlNode::At(const pugi::xpath_node& found) {
    const pugi::xml_node node = found.attribute() ? found.parent() : found.node();
    return XmlNode(node.internal_object(), found.attribute().internal_object());
}

// The node, or the first one after it, that is an element.
std::optional<XmlNode> XmlNode::ElementFrom(pugi::xml_node_struct* start) {
    pugi::xml_node node(start);
    while (node && node.type() != pugi::node_element) node = node.next_sibling();
    return node ? std::optional(XmlNode(node.internal_object())) : std::nullopt;
}

std::optional<XmlNode> XmlNode::Select(std::string_view path) const {
    const pugi::xpath_node found = FindXml(pugi::xml_node(m_node), path);
    return found ? std::optional(At(found)) : std::nullopt;
}

std::vector<XmlNode> XmlNode::SelectAll(std::string_view path) const {
    std::vector<XmlNode> nodes;
    const auto found = FindAllXml(pugi::xml_node(m_node), path);
    nodes.reserve(found.size());
    for (const pugi::xpath_node& node : found) nodes.push_back(At(node));
    return nodes;
}

std::optional<XmlNode> XmlNode::FirstElement() const {
    return ElementFrom(pugi::xml_node(m_node).first_child().internal_object());
}

std::optional<XmlNode> XmlNode::NextElement() const {
    return ElementFrom(pugi::xml_node(m_node).next_sibling().internal_object());
}

std::string_view XmlNode::Utf8Name() const { return pugi::xml_node(m_node).name(); }

std::string XmlNode::Text() const { return FromUtf8(Utf8Text()); }

std::string XmlNode::Utf8Text() const {
    return m_attribute != nullptr ? pugi::xml_attribute(m_attribute).value() : TextOf(pugi::xml_node(m_node));
}

void XmlNode::SetText(std::string_view text) {
    const std::string utf8 = WithXmlCharacters(ToUtf8(text));
    if (m_attribute != nullptr) {
        return RequireMemory(pugi::xml_attribute(m_attribute).set_value(utf8.c_str()));
    }
    pugi::xml_node node(m_node);
    switch (node.type()) {
        case pugi::node_element:
            return SetElementText(node, utf8);
        case pugi::node_pcdata:  // an empty one could not be loaded again
            return RequireMemory(utf8.empty() ? node.parent().remove_child(node) : node.set_value(utf8.c_str()));
        case pugi::node_cdata:  // written as several if it contains its own end
            return RequireMemory(node.set_value(WithPlainLineEnds(utf8).c_str()));
        case pugi::node_comment:
            return SetData(node, utf8, "--");
        case pugi::node_pi:  // blanks at its start would be read as those after the name
            return SetData(node, utf8.substr(std::min(utf8.find_first_not_of(kXmlBlanks), utf8.size())), "?>");
        default:
            throw DataError("a node without a text of its own");
    }
}

std::string XmlNode::Xml() const {
    if (m_attribute != nullptr) return FromUtf8WithReferences(WriteXml(pugi::xml_attribute(m_attribute)));
    return FromUtf8WithReferences(WriteXml(pugi::xml_node(m_node), {.namesEncoding = false, .has = IsInCodePage}));
}

XmlNode XmlNode::AppendElement(std::string_view name) {
    const std::string utf8 = ToUtf8(name);
    if (!IsXmlName(utf8)) throw DataError("not a valid XML name");
    pugi::xml_node parent(m_node);
    if (parent.type() != pugi::node_element) throw DataError("only elements have children");
    if (DepthOf(parent) >= kDeepestXml) throw DataError("elements nested too deep");
    const pugi::xml_node last = parent.last_child();
    const bool isBeforeLast = last.type() == pugi::node_pcdata && IsXmlBlank(last.value());
    pugi::xml_node child =
        isBeforeLast ? parent.insert_child_before(pugi::node_element, last) : parent.append_child(pugi::node_element);
    const bool done = child.set_name(utf8.c_str());
    if (!done) parent.remove_child(child);
    RequireMemory(done);
    return XmlNode(child.internal_object());
}

bool XmlNode::Remove() {
    const pugi::xml_node node(m_node);
    return m_attribute == nullptr && node.parent().remove_child(node);
}

XmlAttributes::XmlAttributes(const XmlNode& element)
    : m_first(pugi::xml_node(element.m_node).first_attribute().internal_object()), m_next(m_first) {}

std::optional<std::string_view> XmlAttributes::Utf8(const char* name) {
    if (name == nullptr) return std::nullopt;
    const auto find = [&](pugi::xml_attribute begin, pugi::xml_attribute end) {
        while (begin != end && !IsSameXmlName(begin.name(), name)) begin = begin.next_attribute();
        return begin;
    };
    const pugi::xml_attribute first(m_first), next(m_next), none;
    pugi::xml_attribute found = find(next, none);
    if (!found && (found = find(first, next)) == next) return std::nullopt;
    m_next = found.next_attribute().internal_object();
    return found.value();
}

}  // namespace qel
