#include "qellib10/platform/xml/xml_writer.h"

#include <array>
#include <cstring>

#include <pugixml.hpp>

#include "qellib10/platform/xml/xml_text.h"
#include "qellib10/platform/xml/xml_walk.h"

namespace qel {
namespace {

// What is written for a character; null for the character itself.
using Escapes = std::array<const char*, 256>;

constexpr Escapes EscapesOfText() {
    Escapes escapes = {};
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['>'] = "&gt;";
    escapes['\r'] = "&#13;";  // as it stands a reader would take it as half of a line end
    escapes['\n'] = "\r\n";
    return escapes;
}

constexpr Escapes EscapesOfValue() {
    Escapes escapes = EscapesOfText();
    escapes['"'] = "&quot;";
    escapes['\t'] = "&#9;";  // these two, as they stand, would be read as blanks
    escapes['\n'] = "&#10;";
    return escapes;
}

constexpr Escapes EscapesOfData() {  // comments, sections and the like, which know no references
    Escapes escapes = {};
    escapes['\n'] = "\r\n";
    return escapes;
}

constexpr Escapes kText = EscapesOfText(), kValue = EscapesOfValue(), kData = EscapesOfData();

class Writer {
public:
    explicit Writer(const XmlForm& form) : m_form(form) {}

    void Node(pugi::xml_node node) {
        WalkXml(
            node, [this](pugi::xml_node entered) { Enter(entered); }, [this](pugi::xml_node left) { Leave(left); });
    }

    void Attribute(pugi::xml_attribute attribute) {
        m_text += attribute.name();
        m_text += "=\"";
        Put(attribute.value(), kValue);
        m_text += '"';
    }

    void LineEnd() { m_text += "\r\n"; }
    std::string Result() { return std::move(m_text); }

private:
    void Put(const char* text, const Escapes& escapes) {
        const char* run = text;
        for (; *text != '\0'; ++text) {
            const char* const escape = escapes[static_cast<unsigned char>(*text)];
            if (escape == nullptr) continue;
            m_text.append(run, text);
            m_text += escape;
            run = text + 1;
        }
        m_text.append(run, text);
    }

    void Enter(pugi::xml_node node) {
        switch (node.type()) {
            case pugi::node_element:
                Tag(node);
                break;
            case pugi::node_pcdata:
                Put(node.value(), kText);
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
                Declaration(node);
                break;
            case pugi::node_doctype:
                Data("<!DOCTYPE ", node.value(), ">");
                break;
            default:
                break;
        }
    }

    void Leave(pugi::xml_node node) {
        if (node.type() != pugi::node_element || !node.first_child()) return;
        m_text += "</";
        m_text += node.name();
        m_text += '>';
    }

    void Tag(pugi::xml_node node) {
        m_text += '<';
        m_text += node.name();
        for (const auto attribute : node.attributes()) {
            m_text += ' ';
            Attribute(attribute);
        }
        m_text += node.first_child() ? ">" : "/>";
    }

    void Data(const char* before, const char* data, const char* behind) {
        m_text += before;
        Put(data, kData);
        m_text += behind;
    }

    void Section(const char* text) {
        if (!m_form.has(text)) return Put(text, kText);
        std::string_view left = text;  // the end of a section within one is cut in two
        for (std::size_t at = left.find("]]>"); at != std::string_view::npos; at = left.find("]]>")) {
            Data("<![CDATA[", std::string(left.substr(0, at + 2)).c_str(), "]]>");
            left.remove_prefix(at + 2);
        }
        Data("<![CDATA[", left.data(), "]]>");
    }

    void Instruction(pugi::xml_node node) {
        m_text += "<?";
        m_text += node.name();
        Data(*node.value() != '\0' ? " " : "", node.value(), "?>");
    }

    void Declaration(pugi::xml_node node) {
        m_text += "<?xml";
        for (const auto attribute : node.attributes()) {
            if (!m_form.namesEncoding && std::strcmp(attribute.name(), "encoding") == 0) continue;
            m_text += ' ';
            Attribute(attribute);
        }
        m_text += "?>";
    }

    const XmlForm& m_form;
    std::string m_text;
};

}  // namespace

std::string WriteXml(pugi::xml_node node, const XmlForm& form) {
    Writer writer(form);
    if (node.type() != pugi::node_document) {
        writer.Node(node);
        return writer.Result();
    }
    for (const pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_pcdata) continue;  // white space
        writer.Node(child);
        writer.LineEnd();
    }
    return writer.Result();
}

std::string WriteXml(pugi::xml_attribute attribute) {
    const XmlForm form = {};
    Writer writer(form);
    writer.Attribute(attribute);
    return writer.Result();
}

}  // namespace qel
