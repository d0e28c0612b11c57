#include "qellib10/platform/xml/xml_writer.h"

#include <cstring>
#include <string_view>

#include <pugixml.hpp>

#include "qellib10/platform/xml/xml_output.h"
#include "qellib10/platform/xml/xml_walk.h"

namespace qel {
namespace {

class Writer {
public:
    Writer(const XmlForm& form, std::size_t expected) : m_form(form), m_output(expected) {}

    void Node(pugi::xml_node top) {
        const auto leave = [this](pugi::xml_node node) {
            m_output.Put("</");
            m_output.Put(node.name());
            m_output.Put('>');
        };
        WalkXml(
            top, [this](pugi::xml_node node, bool hasChildren) { Enter(node, hasChildren); }, leave);
    }

    void Attribute(pugi::xml_attribute attribute) {
        m_output.Put(attribute.name());
        m_output.Put("=\"");
        m_output.Put(attribute.value(), kXmlValue);
        m_output.Put('"');
    }

    void LineEnd() { m_output.Put("\r\n"); }
    std::string Result() { return m_output.Result(); }

private:
    void Enter(pugi::xml_node node, bool hasChildren) {
        switch (node.type()) {
            case pugi::node_element:
                m_output.Put('<');
                m_output.Put(node.name());
                Attributes(node);
                m_output.Put(hasChildren ? ">" : "/>");
                break;
            case pugi::node_pcdata:
                m_output.Put(node.value(), kXmlText);
                break;
            case pugi::node_cdata:
                Section(node.value());
                break;
            case pugi::node_comment:
                Data("<!--", node.value(), "-->");
                break;
            case pugi::node_pi:
                Instruction(node);
                break;
            case pugi::node_declaration:
                m_output.Put("<?xml");
                Attributes(node);
                m_output.Put("?>");
                break;
            case pugi::node_doctype:
                Data("<!DOCTYPE ", node.value(), ">");
                break;
            default:
                break;
        }
    }

    void Attributes(pugi::xml_node node) {
        for (auto attribute = node.first_attribute(); attribute; attribute = attribute.next_attribute()) {
            if (node.type() == pugi::node_declaration && !m_form.namesEncoding &&
                std::strcmp(attribute.name(), "encoding") == 0) {
                continue;
            }
            m_output.Put(' ');
            Attribute(attribute);
        }
    }

    void Data(const char* before, const char* data, const char* after) {
        m_output.Put(before);
        m_output.Put(data, kXmlData);
        m_output.Put(after);
    }

    void Section(const char* text) {
        if (!m_form.has(text)) return m_output.Put(text, kXmlText);
        std::string_view left = text;  // the end of a section inside a section is split in two
        for (std::size_t at = left.find("]]>"); at != std::string_view::npos; at = left.find("]]>")) {
            Data("<![CDATA[", std::string(left.substr(0, at + 2)).c_str(), "]]>");
            left.remove_prefix(at + 2);
        }
        Data("<![CDATA[", left.data(), "]]>");
    }

    void Instruction(pugi::xml_node node) {
        m_output.Put("<?");
        m_output.Put(node.name());
        Data(*node.value() != '\0' ? " " : "", node.value(), "?>");
    }

    const XmlForm& m_form;
    XmlOutput m_output;
};

}  // namespace

std::string WriteXml(pugi::xml_node node, const XmlForm& form, std::size_t expected) {
    Writer writer(form, expected);
    if (node.type() != pugi::node_document) {
        writer.Node(node);
        return writer.Result();
    }
    for (const pugi::xml_node child : node.children()) {
        writer.Node(child);
        writer.LineEnd();
    }
    return writer.Result();
}

std::string WriteXml(pugi::xml_attribute attribute) {
    const XmlForm form = {};
    Writer writer(form, 0);
    writer.Attribute(attribute);
    return writer.Result();
}

}  // namespace qel
