#include "qellib10/platform/text/string.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "qellib10/platform/text/c_locale.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/string_table.h"

namespace {

constexpr std::string_view kBlanks = "\t\n\v\f\r ";

constexpr const char* OrEmpty(const char* text) { return text != nullptr ? text : ""; }

int AsPosition(std::size_t at) { return at == std::string_view::npos ? -1 : static_cast<int>(at); }

std::size_t AtLeastZero(int count) { return count > 0 ? static_cast<std::size_t>(count) : 0; }

bool Contains(std::string_view set, std::string_view character) {
    return qel::FindText(set, character) != std::string_view::npos;
}

// Switches this thread to the C locale for one formatting call.
class NumbersInCLocale {
public:
    NumbersInCLocale() : m_previous(uselocale(qel::CLocale())) {}
    ~NumbersInCLocale() { uselocale(m_previous); }
    NumbersInCLocale(const NumbersInCLocale&) = delete;
    NumbersInCLocale& operator=(const NumbersInCLocale&) = delete;

private:
    locale_t m_previous;
};

}  // namespace

CString::CString(const char* text) : m_text(OrEmpty(text)) {}
CString::CString(const char* text, int length) {
    if (text != nullptr) m_text.assign(text, AtLeastZero(length));
}
CString::CString(char character, int repeat) : m_text(AtLeastZero(repeat), character) {}

char CString::GetAt(int index) const noexcept {
    return index >= 0 && index < GetLength() ? m_text[static_cast<std::size_t>(index)] : '\0';
}

CString& CString::operator=(const char* text) {
    m_text = std::string(OrEmpty(text));  // through a copy: the pointer may point into this text
    return *this;
}
CString& CString::operator=(char character) {
    m_text.assign(1, character);
    return *this;
}
CString& CString::operator+=(const CString& text) {
    m_text += text.m_text;
    return *this;
}
CString& CString::operator+=(const char* text) {
    m_text += OrEmpty(text);
    return *this;
}
CString& CString::operator+=(char character) {
    m_text += character;
    return *this;
}

CString CString::Left(int count) const { return CString(View().substr(0, AtLeastZero(count))); }
CString CString::Right(int count) const {
    const std::size_t taken = std::min(AtLeastZero(count), m_text.size());
    return CString(View().substr(m_text.size() - taken));
}
CString CString::Mid(int first) const { return Mid(first, GetLength()); }
CString CString::Mid(int first, int count) const {
    const std::size_t from = AtLeastZero(first);
    if (from > m_text.size()) return {};
    return CString(View().substr(from, AtLeastZero(count)));
}

int CString::Find(char character, int start) const {
    return start < 0 ? -1 : AsPosition(qel::FindCharacter(m_text, character, AtLeastZero(start)));
}
int CString::Find(const char* text, int start) const {
    return start < 0 ? -1 : AsPosition(qel::FindText(m_text, OrEmpty(text), AtLeastZero(start)));
}
int CString::ReverseFind(char character) const { return AsPosition(qel::FindLastCharacter(m_text, character)); }
int CString::FindOneOf(const char* set) const {
    const UINT page = qel::CodePage();
    const std::string_view text = m_text;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t size = qel::CharacterSize(text, at, page);
        if (Contains(OrEmpty(set), text.substr(at, size))) return static_cast<int>(at);
        at += size;
    }
    return -1;
}

int CString::Replace(const char* old, const char* replacement) {
    const std::string wanted = OrEmpty(old);
    if (wanted.empty()) return 0;
    std::string result;
    int count = 0;
    std::size_t from = 0;
    for (std::size_t at; (at = qel::FindText(m_text, wanted, from)) != std::string::npos; from = at + wanted.size()) {
        result.append(m_text, from, at - from).append(OrEmpty(replacement));
        ++count;
    }
    if (count == 0) return 0;
    result.append(m_text, from);
    m_text = std::move(result);
    return count;
}
int CString::Replace(char old, char replacement) {
    if (old == replacement) return 0;
    int count = 0;
    for (std::size_t at = 0; (at = qel::FindCharacter(m_text, old, at)) != std::string::npos; ++at) {
        m_text[at] = replacement;
        ++count;
    }
    return count;
}

// Blanks are never trail bytes; one after a lone lead byte is a blank.
void CString::TrimLeft() { m_text.erase(0, std::min(m_text.find_first_not_of(kBlanks), m_text.size())); }
void CString::TrimLeft(char character) { TrimLeftSet({&character, 1}); }
void CString::TrimLeft(const char* set) { TrimLeftSet(std::string(OrEmpty(set))); }
void CString::TrimRight() { m_text.resize(m_text.find_last_not_of(kBlanks) + 1); }
void CString::TrimRight(char character) { TrimRightSet({&character, 1}); }
void CString::TrimRight(const char* set) { TrimRightSet(std::string(OrEmpty(set))); }

void CString::TrimLeftSet(std::string_view set) {
    const UINT page = qel::CodePage();
    const std::string_view text = m_text;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t size = qel::CharacterSize(text, at, page);
        if (!Contains(set, text.substr(at, size))) break;
        at += size;
    }
    m_text.erase(0, at);
}
void CString::TrimRightSet(std::string_view set) {
    const UINT page = qel::CodePage();
    const std::string_view text = m_text;
    std::size_t end = 0;  // after the last character that stays
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t size = qel::CharacterSize(text, at, page);
        if (!Contains(set, text.substr(at, size))) end = at + size;
        at += size;
    }
    m_text.resize(end);
}

void CString::Format(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    FormatV(format, arguments);
    va_end(arguments);
}
void CString::FormatV(const char* format, va_list arguments) {
    const NumbersInCLocale cLocale;
    va_list again;
    va_copy(again, arguments);
    char start[256];  // large enough for most texts
    const std::size_t length = AtLeastZero(std::vsnprintf(start, sizeof start, format, arguments));
    std::string result(start, std::min(length, sizeof start - 1));
    if (length > result.size()) {
        result.resize(length);
        std::vsnprintf(result.data(), length + 1, format, again);
    }
    va_end(again);
    m_text = std::move(result);
}

int CString::Compare(const char* other) const { return qel::CompareText(m_text, OrEmpty(other)); }
int CString::CompareNoCase(const char* other) const { return qel::CompareTextFolded(m_text, OrEmpty(other)); }
int CString::Order(std::string_view other) const { return qel::CompareText(m_text, other); }

char* CString::GetBuffer(int minimum) {
    m_text.resize(std::max(m_text.size(), AtLeastZero(minimum)) + 1);  // the caller may use the last byte too
    return m_text.data();
}
void CString::ReleaseBuffer(int length) {
    m_text.resize(length < 0 ? std::strlen(m_text.c_str()) : AtLeastZero(length));
}

BOOL CString::LoadString(UINT id) {
    const std::optional<CString> text = qel::LookUpString(id);
    *this = text.value_or(CString());
    return text.has_value();
}

CString operator+(const CString& a, const CString& b) { return CString(a) += b; }
CString operator+(const CString& a, const char* b) { return CString(a) += b; }
CString operator+(const char* a, const CString& b) { return CString(a) += b; }
CString operator+(const CString& a, char b) { return CString(a) += b; }
CString operator+(char a, const CString& b) { return CString(a) += b; }
