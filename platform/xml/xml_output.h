#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "qellib10/platform/xml/xml_text.h"

namespace qel {

/// What is written for a character; null for the character itself. The zero that ends a text has an entry, so that one
/// look-up is enough.
using XmlEscapes = std::array<const char*, 256>;

constexpr XmlEscapes XmlEscapesOfName() {
    XmlEscapes escapes = {};
    escapes['\0'] = "";
    return escapes;
}

constexpr XmlEscapes XmlEscapesOfData() {  // comments, sections and the like, which have no references
    XmlEscapes escapes = XmlEscapesOfName();
    escapes['\n'] = "\r\n";
    return escapes;
}

constexpr XmlEscapes XmlEscapesOfText() {
    XmlEscapes escapes = XmlEscapesOfData();
    escapes['&'] = "&amp;";
    escapes['<'] = "&lt;";
    escapes['>'] = "&gt;";
    escapes['\r'] = "&#13;";  // unescaped, a reader would treat it as half of a line end
    return escapes;
}

constexpr XmlEscapes XmlEscapesOfValue() {
    XmlEscapes escapes = XmlEscapesOfText();
    escapes['"'] = "&quot;";
    escapes['\t'] = "&#9;";  // unescaped, a reader would treat these two as blanks
    escapes['\n'] = "&#10;";
    return escapes;
}

inline constexpr XmlEscapes kXmlName = XmlEscapesOfName(), kXmlData = XmlEscapesOfData(), kXmlText = XmlEscapesOfText(),
                            kXmlValue = XmlEscapesOfValue();

inline constexpr std::array<bool, 256> kIsXmlNameByte = [] {
    std::array<bool, 256> is = {};
    for (int c = 1; c < 0x80; ++c) is[static_cast<std::size_t>(c)] = IsXmlNamePart(static_cast<char>(c));
    return is;
}();

/// A text that grows character by character.
class XmlOutput {
public:
    explicit XmlOutput(std::size_t expected) { GrowTo(std::max<std::size_t>(expected, 64)); }

    void Put(char c) {
        if (m_at == m_end) GrowTo(2 * m_text.size());
        *m_at++ = c;
    }
    void Put(const char* text) { Put(text, kXmlName); }
    void Put(const char* text, const XmlEscapes& escapes) {
        for (;;) {
            const char* escape = nullptr;
            char* at = m_at;  // in a register: the compiler must assume that writing could change this object
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
    /// A name of ASCII. @return false if it is null or invalid; a part of it may have been written: see CutTo
    bool PutName(const char* name) {
        if (name == nullptr || !IsXmlNameStart(*name)) return false;
        for (; kIsXmlNameByte[static_cast<unsigned char>(*name)]; ++name) Put(*name);
        return *name == '\0';
    }

    std::size_t Size() const { return static_cast<std::size_t>(m_at - m_text.data()); }
    void CutTo(std::size_t size) { m_at = m_text.data() + size; }
    std::string Result() {
        m_text.resize(Size());
        return std::move(m_text);
    }

private:
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

}  // namespace qel
