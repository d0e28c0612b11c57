#include "qellib10/platform/drawing/pdf_date.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace qel {
namespace {

constexpr std::time_t kLastSecond = 253'402'300'799;  // of the year 9999, the last one that fits in a PDF date
constexpr const char* kYear2000 = "D:20000101000000Z";

std::optional<std::time_t> SourceDate() {
    const char* const variable = std::getenv("SOURCE_DATE_EPOCH");
    const std::string_view text = variable != nullptr ? variable : "";
    std::time_t seconds = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    if (!isNumber || seconds < 0 || seconds > kLastSecond) return std::nullopt;
    return seconds;
}

std::string UtcText(std::time_t seconds) {
    std::tm time{};
    ::gmtime_r(&seconds, &time);
    char text[sizeof "D:99991231235959Z"] = {};
    std::strftime(text, sizeof text, "D:%Y%m%d%H%M%SZ", &time);
    return text;
}

std::string DateOf(const PdfInfo& info, UndatedPdf undated) {
    if (info.created && info.created->GetYear() >= 0) {
        const COleDateTime& time = *info.created;
        CString text;
        text.Format("D:%04d%02d%02d%02d%02d%02d", time.GetYear(), time.GetMonth(), time.GetDay(), time.GetHour(),
                    time.GetMinute(), time.GetSecond());
        return std::string(text);
    }
    if (const std::optional<std::time_t> seconds = SourceDate()) return UtcText(*seconds);
    return undated == UndatedPdf::kNow ? UtcText(std::time(nullptr)) : kYear2000;
}

}  // namespace

PdfDate::PdfDate(const PdfInfo& info, UndatedPdf undated) : m_text(DateOf(info, undated)) {}

std::string PdfDate::Iso() const {
    const auto digits = [this](std::size_t at, std::size_t count = 2) { return m_text.substr(at, count); };
    return digits(2, 4) + "-" + digits(6) + "-" + digits(8) + "T" + digits(10) + ":" + digits(12) + ":" + digits(14) +
           "+00:00";
}

void PdfDate::WriteInto(std::span<std::byte> document) const {
    const std::string key = "/CreationDate (", made = key + m_text.substr(2, 14) + "+00'00)";
    const auto isSame = [](std::byte byte, char c) { return byte == static_cast<std::byte>(c); };
    // Cairo 1.16's form. If Cairo writes another form, its date stays, and the test of PDF dates fails. The last one:
    // the document information follows the pages.
    const auto place = std::find_end(document.begin(), document.end(), made.begin(), made.end(), isSame);
    if (place == document.end()) return;
    std::string text = key + m_text + ")";
    text.resize(made.size(), ' ');
    std::ranges::transform(text, place, [](char c) { return static_cast<std::byte>(c); });
}

}  // namespace qel
