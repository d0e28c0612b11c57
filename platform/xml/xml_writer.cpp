#include "qellib10/platform/xml/xml_writer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include <pugixml.hpp>

#include "qellib10/platform/xml/xml_text.h"
#include "qellib10/platform/xml/xml_walk.h"

namespace qel {
namespace {

// What is written for a character; null for the character itself. The zero that ends a text has an entry, so that one
// look-up tells all.
using Escapes = std::array<const char*, 256>;

constexpr Escapes EscapesOfName() {
    Escapes escapes = {};
    escapes['\0'] = "";
    return escapes;
}

constexpr Escapes EscapesOfData() {  // comments, sections and the like, which know no references
    Escapes escapes = EscapesOfName();
    escapes['\n'] = "\r\n";
    return escapes;
}

constexpr Escapes EscapesOfText() {
    Escapes escapes = EscapesOfData();
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['>'] = "&gt;";
    escapes['\r'] = "&#13;";  // as it stands a reader would take it as half of a line end
    return escapes;
}

constexpr Escapes EscapesOfValue() {
    Escapes escapes = EscapesOfText();
    escapes['"'] = "&quot;";
    escapes['\t'] = "&#9;";  // these two, as they stand, would be read as blanks
    escapes['\n'] = "&#10;";
    return escapes;
}

constexpr Escapes kName = EscapesOfName(), kData = EscapesOfData(), kText = EscapesOfText(), kValue = EscapesOfValue();

// Text that grows character by character.
class Output {
public:
    explicit Output(std::size_t expected) { GrowTo(std::max<std::size_t>(expected, 64)); }

    void Put(char c) {
        if (m_at == m_end) GrowTo(2 * m_text.size());
        *m_at++ = c;
    }
    void Put(const char* text) { Put(text, kName); }
    void Put(const char* text, const Escapes& escapes) {
        for (;;) {
            const char* escape = nullptr;
            char* at = m_at;  // in a register: what is written could be ourselves, for all that the compiler knows
            for (char* const end = m_end; at != end; ++at, ++text) {
                escape = escapes[static_cast<unsigned char>(*text)];
                if (escape != nullptr) break;
                *at = *text;
            }
            m_at = at;
            if (*text == '\0') return;
            if (escape == nullptr) {
                GrowTo(2 * m_text.size());
            } else {
                Put(escape);
                ++text;
            }
        }
    }
    std::string Result() {
        m_text.resize(Size());
        return std::move(m_text);
    }

private:
    std::size_t Size() const { return static_cast<std::size_t>(m_at - m_text.data()); }
    void GrowTo(std::size_t size) {
        const std::size_t used = m_text.empty() ? 0 : Size();
        m_text.resize(size);
        m_at = m_text.data() + used;
        m_end = m_text.data() + size;
    }

    std::string m_text;
    char* m_at = nullptr;
    char* m_end = nullptr;
};

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
        m_output.Put(attribute.value(), kValue);
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
                m_output.Put(node.value(), kText);
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

    void Data(const char* before, const char* data, const char* behind) {
        m_output.Put(before);
        m_output.Put(data, kData);
        m_output.Put(behind);
    }

    void Section(const char* text) {
        if (!m_form.has(text)) return m_output.Put(text, kText);
        std::string_view left = text;  // the end of a section within one is cut in two
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
    Output m_output;
};

}  // namespace

std::string WriteXml(pugi::xml_node node, const XmlForm& form, std::size_t expected) {
    Writer writer(form, expected);
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
    Writer writer(form, 0);
    writer.Attribute(attribute);
    return writer.Result();
}

}  // namespace qel
