#include "qellib10/platform/xml/xml_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

#include <pugixml.hpp>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/unicode.h"
#include "qellib10/platform/xml/xml_memory.h"
#include "qellib10/platform/xml/xml_text.h"

namespace qel {
namespace {

// Everything is kept, and references are not replaced: the parser would pass unknown ones as text.
constexpr unsigned kParsing = pugi::parse_cdata | pugi::parse_comments | pugi::parse_pi | pugi::parse_declaration |
                              pugi::parse_doctype | pugi::parse_wconv_attribute | pugi::parse_ws_pcdata |
                              pugi::parse_fragment | pugi::parse_eol;

constexpr std::string_view kSectionEnd = "]]>";

void Require(bool holds, const char* otherwise) {
    if (!holds) throw DataError(otherwise);
}

bool Contains(std::string_view text, std::string_view wanted) { return text.find(wanted) != std::string_view::npos; }

// `item` is a node or an attribute.
template <class Item> void TakeReferencesOut(Item item, const char* value) {
    if (std::strchr(value, '&') == nullptr) return;
    const std::string text = WithoutReferences(value);
    RequireMemory(item.set_value(text.c_str()));
}

void TakeLineEndsOut(pugi::xml_node node) {  // line ends that the parser passes unchanged
    if (std::strchr(node.value(), '\r') == nullptr) return;
    const std::string text = WithPlainLineEnds(node.value());
    RequireMemory(node.set_value(text.c_str()));
}

void CheckManyNamesDiffer(pugi::xml_node element) {
    std::vector<std::string_view> names;
    for (const auto attribute : element.attributes()) names.emplace_back(attribute.name());
    std::ranges::sort(names);
    Require(std::ranges::adjacent_find(names) == names.end(), "an attribute occurs twice");
}

// The names of an element's attributes. A few are simply compared with each other, in order.
class AttributeNames {
public:
    void Add(const char* name) {
        if (IsFull()) return;
        for (std::size_t i = 0; i < m_count; ++i) {
            Require(*m_names[i] != *name || std::strcmp(m_names[i], name) != 0, "an attribute occurs twice");
        }
        m_names[m_count++] = name;
    }
    bool IsFull() const { return m_count == m_names.size(); }

private:
    std::array<const char*, 10> m_names;
    std::size_t m_count = 0;
};

// The parser also takes `/>` for the end of a declaration.
void CheckDeclarationsEnd(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kXmlBlanks), text.size()));
    constexpr std::string_view kBegin = "<?xml";
    const std::string_view first = text.substr(0, text.find('>'));
    const bool isDeclaration =
        first.starts_with(kBegin) && first.size() > kBegin.size() && IsXmlBlank(first.substr(kBegin.size(), 1));
    Require(!isDeclaration || first.ends_with('?'), "a declaration without an end");
}

bool IsEncodingName(std::string_view text) {
    return IsXmlName(text) && text[0] != '_' &&
           std::ranges::all_of(text, [](unsigned char c) { return c < 0x80 && c != ':'; });
}

// A version, then optionally an encoding and whether the document is standalone.
void CheckDeclaration(pugi::xml_node declaration) {
    constexpr std::array<std::string_view, 3> kNames = {"version", "encoding", "standalone"};
    Require(std::strcmp(declaration.name(), "xml") == 0, "a declaration of another kind");
    Require(declaration.first_attribute().name() == kNames[0], "a declaration without a version");
    auto next = kNames.begin();
    for (const auto attribute : declaration.attributes()) {
        const std::string_view name = attribute.name(), value = attribute.value();
        next = std::find(next, kNames.end(), name);
        Require(next != kNames.end(), "a declaration of something unknown");
        ++next;
        const bool isGood = name == "version"    ? value == "1.0" || value == "1.1"
                            : name == "encoding" ? IsEncodingName(value)
                                                 : value == "yes" || value == "no";
        Require(isGood, "a declaration with a bad value");
    }
}

// Takes the nodes of a text one by one; the parser's own walk does not recurse.
class Reader : public pugi::xml_tree_walker {
public:
    Reader(std::string_view text, XmlNames names)
        : m_names(EndOfAscii(text, 0) == text.size() ? XmlNames::inCodePage : names),
          m_hasSectionEnd(Contains(text, kSectionEnd)),
          m_hasReferences(Contains(text, "&")) {}

    bool for_each(pugi::xml_node& node) override {  // NOLINT(readability-identifier-naming): the parser's name
        switch (node.type()) {
            case pugi::node_element:
                Require(depth() < kDeepestXml, "elements nested too deep");
                CheckName(node.name());
                TakeAttributes(node);
                break;
            case pugi::node_pcdata:
                Require(!m_hasSectionEnd || !Contains(node.value(), kSectionEnd), "a text holds a section's end");
                if (m_hasReferences) TakeReferencesOut(node, node.value());
                break;
            case pugi::node_comment: {
                const std::string_view value = node.value();
                Require(!Contains(value, "--") && !value.ends_with('-'), "a comment holds a comment's end");
                break;
            }
            case pugi::node_pi:
                CheckName(node.name());
                TakeLineEndsOut(node);
                break;
            case pugi::node_doctype:
                TakeLineEndsOut(node);
                break;
            case pugi::node_declaration:
                CheckDeclaration(node);
                break;
            default:
                break;
        }
        return true;
    }

private:
    void CheckName(const char* name) const {
        Require(m_names == XmlNames::inCodePage || IsInCodePage(name), "a name that is not in the code page");
    }

    void TakeAttributes(pugi::xml_node element) const {
        AttributeNames names;
        for (auto attribute = element.first_attribute(); attribute; attribute = attribute.next_attribute()) {
            const char* const name = attribute.name();
            const char* const value = attribute.value();
            names.Add(name);
            CheckName(name);
            for (const char* at = value; *at != '\0'; ++at)
                Require(*at != '<', "an attribute contains the start of a tag");
            if (m_hasReferences) TakeReferencesOut(attribute, value);
        }
        if (names.IsFull()) CheckManyNamesDiffer(element);
    }

    XmlNames m_names;
    bool m_hasSectionEnd, m_hasReferences;  // checked once for the whole text, because most texts have none
};

// Outside the root, where blanks mean nothing and are removed. Before references are replaced: a reference to a blank
// is text.
void CheckTop(pugi::xml_document& tree) {
    int roots = 0, types = 0;
    bool isFirst = true;
    for (pugi::xml_node node = tree.first_child(), next; node; node = next) {
        next = node.next_sibling();
        const std::string_view value = node.value();
        switch (node.type()) {
            case pugi::node_element:
                ++roots;
                break;
            case pugi::node_pcdata:
                Require(IsXmlBlank(value), "text outside the root");
                tree.remove_child(node);
                continue;  // accepted before a declaration too
            case pugi::node_cdata:
                throw DataError("a section outside the root");
            case pugi::node_declaration:
                Require(isFirst, "a declaration after the start");
                break;
            case pugi::node_doctype:
                Require(roots == 0 && ++types == 1, "a document type in a wrong place");
                Require(IsInCodePage(value), "a document type that is not in the code page");
                break;
            default:
                break;
        }
        isFirst = false;
    }
    Require(roots == 1, "not one root");
}

}  // namespace

void ReadXml(pugi::xml_document& tree, std::string& text, XmlNames names) {
    Require(IsUtf8OfXml(text), "bytes that are not a character of XML");
    Reader reader(text, names);
    // The parser accepts the start of a tag after a blank at the end, and does not see the last character if that is
    // text.
    Require(!text.ends_with('<'), "a tag without an end");
    CheckDeclarationsEnd(text);
    text += '\n';
    const auto result = tree.load_buffer_inplace(text.data(), text.size(), kParsing, pugi::encoding_utf8);
    RequireMemory(result.status != pugi::status_out_of_memory);
    if (!result) throw DataError(result.description());
    CheckTop(tree);
    tree.traverse(reader);
}

}  // namespace qel
