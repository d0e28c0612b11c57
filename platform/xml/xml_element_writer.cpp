#include "qellib10/platform/xml/xml_element_writer.h"

#include <array>
#include <charconv>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/xml/xml_output.h"
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

XmlElementWriter::XmlElementWriter() : m_pOutput(std::make_unique<XmlOutput>(0)) {}

XmlElementWriter::~XmlElementWriter() = default;

void XmlElementWriter::Begin(const char* name) {
    CloseTag();
    m_pOutput->Put('<');
    m_pOutput->Put(name);
    m_aryOpen.push_back(name);
    m_isTagOpen = true;
}

// The output after the attribute's name and the first quotation mark.
XmlOutput& XmlElementWriter::AttributeOutput(const char* name) {
    if (!m_isTagOpen) throw DataError("an attribute after an element's content");
    m_pOutput->Put(' ');
    m_pOutput->Put(name);
    m_pOutput->Put("=\"");
    return *m_pOutput;
}

void XmlElementWriter::Attribute(const char* name, int value) {
    XmlOutput& output = AttributeOutput(name);
    output.Put(Decimal(value));
    output.Put('"');
}

void XmlElementWriter::Attribute(const char* name, std::string_view value) {
    XmlOutput& output = AttributeOutput(name);
    output.Put(Utf8Of(value).c_str(), kXmlValue);
    output.Put('"');
}

void XmlElementWriter::Text(std::string_view text) {
    if (text.empty()) return;
    CloseTag();
    m_pOutput->Put(Utf8Of(text).c_str(), kXmlText);
}

void XmlElementWriter::Text(int value) {
    CloseTag();
    m_pOutput->Put(Decimal(value));
}

void XmlElementWriter::End() {
    if (m_aryOpen.empty()) throw DataError("the end of an element that was not begun");
    const char* const name = m_aryOpen.back();
    m_aryOpen.pop_back();
    if (m_isTagOpen) {
        m_pOutput->Put("/>");
        m_isTagOpen = false;
        return;
    }
    m_pOutput->Put("</");
    m_pOutput->Put(name);
    m_pOutput->Put('>');
}

std::string XmlElementWriter::Bytes() {
    if (!m_aryOpen.empty()) throw DataError("an element without an end");
    m_pOutput->Put("\r\n");
    return m_pOutput->Result();
}

void XmlElementWriter::CloseTag() {
    if (m_isTagOpen) m_pOutput->Put('>');
    m_isTagOpen = false;
}

}  // namespace qel
