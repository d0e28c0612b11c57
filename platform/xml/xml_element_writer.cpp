#include "qellib10/platform/xml/xml_element_writer.h"

#include <array>
#include <cassert>
#include <charconv>

#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/xml/xml_text.h"

namespace qel {
namespace {

// A number as a text that ends with a zero.
class Decimal {
public:
    explicit Decimal(int value) { *std::to_chars(m_digits.data(), m_digits.data() + m_digits.size(), value).ptr = 0; }
    operator const char*() const { return m_digits.data(); }

private:
    std::array<char, 12> m_digits;
};

std::string Utf8Of(std::string_view text) { return WithXmlCharacters(ToUtf8(text)); }

}  // namespace

void XmlElementWriter::Begin(const char* name) {
    CloseTag();
    m_output.Put('<');
    m_output.Put(name);
    m_aryOpen.push_back(name);
    m_isTagOpen = true;
}

void XmlElementWriter::Attribute(const char* name, int value) {
    assert(m_isTagOpen);
    m_output.Put(' ');
    m_output.Put(name);
    m_output.Put("=\"");
    m_output.Put(Decimal(value));
    m_output.Put('"');
}

void XmlElementWriter::Attribute(const char* name, std::string_view value) {
    assert(m_isTagOpen);
    m_output.Put(' ');
    m_output.Put(name);
    m_output.Put("=\"");
    m_output.Put(Utf8Of(value).c_str(), kXmlValue);
    m_output.Put('"');
}

void XmlElementWriter::Text(std::string_view text) {
    if (text.empty()) return;
    CloseTag();
    m_output.Put(Utf8Of(text).c_str(), kXmlText);
}

void XmlElementWriter::Text(int value) {
    CloseTag();
    m_output.Put(Decimal(value));
}

void XmlElementWriter::End() {
    const char* const name = m_aryOpen.back();
    m_aryOpen.pop_back();
    if (m_isTagOpen) {
        m_output.Put("/>");
        m_isTagOpen = false;
        return;
    }
    m_output.Put("</");
    m_output.Put(name);
    m_output.Put('>');
}

std::string XmlElementWriter::Bytes() {
    assert(m_aryOpen.empty());
    m_output.Put("\r\n");
    return m_output.Result();
}

void XmlElementWriter::CloseTag() {
    if (m_isTagOpen) m_output.Put('>');
    m_isTagOpen = false;
}

}  // namespace qel
