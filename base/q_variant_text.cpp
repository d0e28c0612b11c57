// Texts: characters, lists, comparisons, quotation, hexadecimal, database values.

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "qellib10/platform/text/multibyte.h"

#include "qellib10/base/q_variant.h"

namespace {

constexpr std::string_view kDigits = "0123456789";

constexpr const char* OrEmpty(const char* text) { return text != nullptr ? text : ""; }

// The first bytes of a text that may end before; nothing after its end is read.
std::string_view First(const char* text, std::size_t most) { return {OrEmpty(text), strnlen(OrEmpty(text), most)}; }

// Number of bytes before the digits at the end. Neither digits nor the other characters that are searched by bytes here
// (below 40 hex) can be a trail byte.
std::size_t LengthBeforeNumber(std::string_view text) { return text.find_last_not_of(kDigits) + 1; }

std::string Doubled(std::string_view text, char mark) {
    std::string result(1, mark);
    for (const char c : text) {
        if (c == mark) result += mark;
        result += c;
    }
    return result += mark;
}

int Compare(int a, int b) { return a < b ? -1 : a > b; }

template <typename CompareTexts> int CompareWithNumber(std::string_view a, std::string_view b, CompareTexts compare) {
    if (compare(a, b) == 0) return 0;
    const std::string_view headA = a.substr(0, LengthBeforeNumber(a));
    const std::string_view headB = b.substr(0, LengthBeforeNumber(b));
    if (const int order = compare(headA, headB); order != 0) return order;
    return Compare(CQVariant::StrToInt(CString(a.substr(headA.size()))),
                   CQVariant::StrToInt(CString(b.substr(headB.size()))));
}

int TakeVersionNumber(CString& version) {
    CString component = CQVariant::Split(version, ',');
    CQVariant::Trim(component);
    return CQVariant::StrToInt(component);
}

}  // namespace

int CQVariant::hex1int(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : 0;
}
int CQVariant::hex2int(const char* s) {
    const std::string_view digits = First(s, 2);
    const int high = digits.empty() ? 0 : hex1int(digits[0]);
    return high * 16 + (digits.size() < 2 ? 0 : hex1int(digits[1]));
}

void CQVariant::float2asc(float f, char* out) {
    if (out == nullptr) return;
    const auto bits = std::bit_cast<std::uint32_t>(f);
    for (int shift = 0; shift < 32; shift += 8) {
        for (const int nibble : {shift + 4, shift}) *out++ = "0123456789ABCDEF"[bits >> nibble & 0xF];
    }
    *out = '\0';
}
float CQVariant::asc2float(const char* s) {
    std::string digits(First(s, 8));
    digits.resize(8, '0');
    std::uint32_t bits = 0;
    for (unsigned i = 0; i < 4; ++i) bits |= static_cast<std::uint32_t>(hex2int(&digits[2 * i])) << 8 * i;
    return std::bit_cast<float>(bits);
}

int CQVariant::Check2Byte1(char c) { return qel::IsLeadByte(static_cast<unsigned char>(c)) ? -1 : 0; }

void CQVariant::strncopy(char* dst, const char* src, int n) {
    if (dst == nullptr) return;
    const std::size_t bytes = n > 0 ? static_cast<std::size_t>(n) : 0;
    qel::CopyBounded(dst, OrEmpty(src), bytes);
    dst[bytes] = '\0';
}

CString CQVariant::MBLeft(const char* s, int n) {
    return CString(qel::LeftWhole(OrEmpty(s), n > 0 ? static_cast<std::size_t>(n) : 0));
}

void CQVariant::Trim(CString& s) {
    s.TrimLeft();
    s.TrimRight();
}

CString CQVariant::Split(CString& s, char sep) {
    const int at = s.Find(sep);
    const CString part = at < 0 ? s : s.Left(at);
    s = at < 0 ? CString() : s.Mid(at + 1);
    return part;
}

CString CQVariant::CutLastValue(const char* s) {
    const std::string_view text = OrEmpty(s);
    return CString(text.substr(0, LengthBeforeNumber(text)));
}

int CQVariant::StrCmp(const char* a, const char* b) {
    return CompareWithNumber(OrEmpty(a), OrEmpty(b), qel::CompareText);
}
int CQVariant::StrCmpi(const char* a, const char* b) {
    return CompareWithNumber(OrEmpty(a), OrEmpty(b), qel::CompareTextFolded);
}

CString CQVariant::STRtoCSV(const char* s) {
    const std::string_view text = OrEmpty(s);
    return text.find_first_of(",\"*/") == std::string_view::npos ? CString(text) : CString(Doubled(text, '"'));
}

CString CQVariant::GetDAOSQLQuate(const char* s, int) {
    const std::string_view text = OrEmpty(s);
    return text.empty() ? CString() : CString(Doubled(text, '\''));
}

CString CQVariant::EmptyToNull(const char* s) { return *OrEmpty(s) == '\0' ? "NULL" : s; }

int CQVariant::VersionCmp(const char* a, const char* b) {
    CString restA = a;
    CString restB = b;
    restA.Replace('.', ',');
    restB.Replace('.', ',');
    do {
        const int numberA = TakeVersionNumber(restA);
        const int numberB = TakeVersionNumber(restB);
        if (numberA != numberB) return Compare(numberA, numberB);
    } while (!restA.IsEmpty() || !restB.IsEmpty());
    return 0;
}

void CQVariant::Limit(int& value, int low, int high, int fallback) {
    if (value < low) value = fallback;
    if (value > high) value = fallback;
}

CString CQVariant::LoadStringA(UINT id) {
    CString text;
    text.LoadString(id);
    return text;
}

CString CQVariant::VarToStr(COleVariant v) { return qel::VariantText(v); }
std::u16string CQVariant::VarToBStr(COleVariant v) { return qel::ToUtf16(qel::VariantText(v).View()); }
int CQVariant::VarToInt(COleVariant v) { return qel::VariantInteger(v); }
double CQVariant::VarToDouble(COleVariant v) { return qel::VariantNumber(v); }
