#include "qellib10/platform/xml/xml_element_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

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
    if (m_hasRoot && m_aryOpen.empty()) throw DataError("a second root");
    if (m_aryOpen.size() >= kDeepestXml) throw DataError("elements nested too deep");
    const std::size_t start = m_pOutput->Size();
    if (m_isTagOpen) m_pOutput->Put('>');
    m_pOutput->Put('<');
    PutName(name, start);
    m_aryOpen.push_back(name);
    m_aryAttribute.clear();
    m_hasRoot = m_isTagOpen = true;
}

// If the name is invalid, everything written since `start` is removed.
void XmlElementWriter::PutName(const char* name, std::size_t start) {
    if (m_pOutput->PutName(name)) return;
    m_pOutput->CutTo(start);
    throw DataError("not a valid XML name");
}

// The output after the attribute's name and the first quotation mark.
XmlOutput& XmlElementWriter::AttributeOutput(const char* name) {
    if (!m_isTagOpen) throw DataError("an attribute outside an element's tag");
    const std::size_t start = m_pOutput->Size();
    m_pOutput->Put(' ');
    PutName(name, start);
    if (std::ranges::any_of(m_aryAttribute, [&](const char* other) { return IsSameXmlName(other, name); })) {
        m_pOutput->CutTo(start);
        throw DataError("a second attribute of the same name");
    }
    m_aryAttribute.push_back(name);
    m_pOutput->Put("=\"");
    return *m_pOutput;
}

// The output at the place where the content of the open element continues.
XmlOutput& XmlElementWriter::TextOutput() {
    if (m_aryOpen.empty()) throw DataError("a text outside the root");
    CloseTag();
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

void XmlElementWriter::Text(std::string_view text) { Utf8Text(Utf8Of(text)); }

void XmlElementWriter::Utf8Text(std::string_view text) {
    const std::string utf8 = WithXmlCharacters(std::string(text));
    if (utf8.empty() && !m_aryOpen.empty()) return;
    TextOutput().Put(utf8.c_str(), kXmlText);
}

void XmlElementWriter::Text(int value) { TextOutput().Put(Decimal(value)); }

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
    if (!m_hasRoot) throw DataError("a document without a root");
    if (m_pOutput == nullptr) throw DataError("a document that was taken already");
    const auto output = std::move(m_pOutput);
    output->Put("\r\n");
    return output->Result();
}

void XmlElementWriter::CloseTag() {
    if (m_isTagOpen) m_pOutput->Put('>');
    m_isTagOpen = false;
}

}  // namespace qel
