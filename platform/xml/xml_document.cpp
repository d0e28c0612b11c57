#include "qellib10/platform/xml/xml_document.h"

#include <exception>
#include <utility>

#include <pugixml.hpp>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/xml/xml_encoding.h"
#include "qellib10/platform/xml/xml_reader.h"
#include "qellib10/platform/xml/xml_text.h"
#include "qellib10/platform/xml/xml_writer.h"

namespace qel {

XmlDocument::XmlDocument() : m_tree(std::make_unique<pugi::xml_document>()) {}
XmlDocument::~XmlDocument() = default;

void XmlDocument::Empty() noexcept {
    m_tree->reset();
    m_source = {};
}

void XmlDocument::LoadText(std::string_view text) { Load(ToUtf8(text), XmlNames::inCodePage); }

void XmlDocument::LoadBytes(std::string bytes) {
    Empty();
    LoadUtf8(DecodedXml(std::move(bytes)));
}

void XmlDocument::LoadUtf8(std::string utf8) { Load(std::move(utf8), XmlNames::any); }

void XmlDocument::Load(std::string utf8, XmlNames names) {
    Empty();
    m_source = std::move(utf8);
    try {
        ReadXml(*m_tree, m_source, names);
    } catch (const std::exception&) {  // a refused text, or no memory: an incomplete tree is not a document
        Empty();
        throw;
    }
}

// A line end that was LF takes two bytes, and so do many characters that took one.
std::size_t XmlDocument::ExpectedSize() const { return m_source.size() + m_source.size() / 16; }

std::string XmlDocument::Text() const {
    if (!Root()) return "";
    return FromUtf8WithReferences(WriteXml(*m_tree, {.namesEncoding = false, .has = IsInCodePage}, ExpectedSize()));
}

std::string XmlDocument::Bytes() const {
    if (!Root()) return "";
    const std::string_view declared =
        m_tree->find_child([](pugi::xml_node node) { return node.type() == pugi::node_declaration; })
            .attribute("encoding")
            .value();
    const XmlEncoder encoder = XmlEncoderFor(declared);
    const auto has = [&](std::string_view utf8) { return encoder(utf8).has_value(); };
    const std::string text = WriteXml(*m_tree, {.namesEncoding = true, .has = has}, ExpectedSize());
    if (auto bytes = encoder(text)) return std::move(*bytes);

    const std::string shown = WithReferencesFor(encoder, text);
    XmlDocument().LoadUtf8(shown);  // refuses a name with a missing character, because names cannot contain references
    auto bytes = encoder(shown);
    if (!bytes) throw DataError("characters of XML itself are missing in this encoding");
    return std::move(*bytes);
}

std::optional<XmlNode> XmlDocument::Root() const {
    const pugi::xml_node root = m_tree->document_element();
    return root ? std::optional(XmlNode(root.internal_object())) : std::nullopt;
}

}  // namespace qel
