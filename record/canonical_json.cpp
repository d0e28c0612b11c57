#include "qellib10/record/canonical_json.h"

#include <charconv>

#include "qellib10/platform/error.h"
#include "qellib10/record/text_forms.h"

namespace qel {
namespace {

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20; }

}  // namespace

void JsonWriter::Key(std::string_view key) {
    m_text += m_text.empty() ? "{\"" : ",\"";
    m_text += key;
    m_text += "\":";
}

void JsonWriter::Text(std::string_view key, std::string_view value) {
    Key(key);
    m_text += '"';
    for (const char c : value) {
        if (IsControl(c)) {
            const std::byte byte{static_cast<unsigned char>(c)};
            m_text += "\\u00" + Hex({&byte, 1});
            continue;
        }
        if (c == '"' || c == '\\') m_text += '\\';
        m_text += c;
    }
    m_text += '"';
}

void JsonWriter::Number(std::string_view key, std::uint64_t value) {
    if (value > kLargestJsonNumber) throw DataError("a number is too large for a trail: " + std::string(key));
    Key(key);
    m_text += std::to_string(value);
}

void JsonReader::Refuse(std::string_view key) const {
    throw DataError(std::string(m_refusal) + " at \"" + std::string(key) + '"');
}

char JsonReader::Next() {
    if (m_rest.empty()) Refuse("its end");
    const char c = m_rest.front();
    m_rest.remove_prefix(1);
    return c;
}

void JsonReader::Key(std::string_view key) {
    const std::string expected = (m_isFirst ? "{\"" : ",\"") + std::string(key) + "\":";
    if (!m_rest.starts_with(expected)) Refuse(key);
    m_rest.remove_prefix(expected.size());
    m_isFirst = false;
}

char JsonReader::Escaped() {
    const char c = Next();
    if (c == '"' || c == '\\') return c;
    if (c != 'u' || !m_rest.starts_with("00") || m_rest.size() < 4 || !IsHex(m_rest.substr(2, 2), 2)) Refuse("a text");
    std::byte byte;
    Unhex(m_rest.substr(2, 2), {&byte, 1});
    m_rest.remove_prefix(4);
    return static_cast<char>(byte);
}

std::string JsonReader::Text(std::string_view key) {
    Key(key);
    if (Next() != '"') Refuse(key);
    std::string value;
    for (char c = Next(); c != '"'; c = Next()) {
        if (IsControl(c)) Refuse(key);
        value += c == '\\' ? Escaped() : c;
    }
    return value;
}

std::uint64_t JsonReader::Number(std::string_view key) {
    Key(key);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(m_rest.data(), m_rest.data() + m_rest.size(), value);
    if (error != std::errc() || value > kLargestJsonNumber) Refuse(key);
    m_rest.remove_prefix(static_cast<std::size_t>(end - m_rest.data()));
    return value;
}

void JsonReader::End() {
    if (m_rest != "}") Refuse("its end");
}

}  // namespace qel
