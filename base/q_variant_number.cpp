// Numbers to text and back.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "qellib10/platform/text/number_scan.h"
#include "qellib10/platform/text/number_text.h"

#include "qellib10/base/q_variant.h"
#include "qellib10/base/rounded_text.h"

namespace {

constexpr const char* OrEmpty(const char* text) { return text != nullptr ? text : ""; }

std::size_t Columns(int count) { return static_cast<std::size_t>(std::clamp(count, 0, qel::kMaxColumns)); }

// The first n bytes of a text that may end before.
std::string_view First(const char* text, int n) {
    return {OrEmpty(text), strnlen(OrEmpty(text), n > 0 ? static_cast<std::size_t>(n) : 0)};
}

int ReadInt(std::string_view text) {
    if (!text.starts_with('-')) return qel::ClampToInt(qel::ScanInteger(text));
    const std::int64_t size = qel::ScanInteger(text.substr(1));
    return qel::ClampToInt(size == INT64_MIN ? INT64_MAX : -size);
}

double ReadDouble(std::string_view text) {
    std::string padded(text);
    padded += text.find('.') == std::string_view::npos ? ".000" : "000";
    if (!text.starts_with('-')) return qel::ScanNumber(padded).value;
    return -qel::ScanNumber(std::string_view(padded).substr(1)).value;
}

std::string RightAligned(std::string text, std::size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

}  // namespace

CString CQVariant::DoubleToStr(double x, int digits, int mode) {
    return digits > 0 ? qel::RoundedText(x, digits, mode) : IntToStr(qel::TruncatedToInt(fround(x, digits, mode)));
}

void CQVariant::DoubleToStr(double x, char* out, int width, int decimals) {
    const std::string text = (x < 0 ? '-' : ' ') + qel::FixedText(std::fabs(x), decimals);
    strncopy(out, text.c_str(), width);
}

CString CQVariant::ExponentialDigit3to2(double x) {
    constexpr std::size_t kWidth = 12;
    std::string text = RightAligned(qel::ExponentText(x, 3), kWidth);
    if (const std::size_t hundreds = text.size() - 3; text[hundreds] == '0') text.erase(hundreds, 1);
    return CString(std::string_view(text));
}

CString CQVariant::IntToStr(int n) { return CString(std::string_view(std::to_string(n))); }
CString CQVariant::IntToStr(int n, int width) {
    const std::string text = RightAligned(std::to_string(n), Columns(width));
    return CString(std::string_view(text).substr(text.size() - Columns(width)));
}

CString CQVariant::NoNumericStr(int intDigits, int decDigits) {
    std::string text(Columns(intDigits), '-');
    if (decDigits > 0) text.append(1, '.').append(Columns(decDigits), '-');
    return CString(std::string_view(text));
}

int CQVariant::StrToInt(const char* s, int n) { return ReadInt(First(s, n)); }
int CQVariant::StrToInt(const CString& s) { return ReadInt(s.View()); }

double CQVariant::StrToDouble(const char* s, int n) { return ReadDouble(First(s, n)); }
double CQVariant::StrToDouble(const CString& s) { return ReadDouble(s.View()); }

CString CQVariant::NoNumericToNull(const char* s) {
    std::string_view body = OrEmpty(s);
    if (body.size() > 1 && (body.front() == '+' || body.front() == '-')) body.remove_prefix(1);
    return body.find_first_not_of("0123456789.") == std::string_view::npos ? CString(s) : CString("NULL");
}
