#include "qellib10/print/table_text.h"

#include <algorithm>

#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/trimmed.h"

namespace qel {
namespace {

// The bytes of the character that starts @p text, which is not empty.
std::size_t FirstCharacter(std::string_view text) {
    if (CodePage() != kCodePageUtf8) return CharacterSize(text, 0, CodePage());
    std::size_t size = 1;
    while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) ++size;
    return size;
}

}  // namespace

TableText::TableText(CDC& dc, const std::string& face, int tenths, int dotsPerInch)
    : m_dc(dc), m_dotsPerInch(dotsPerInch) {
    m_font.CreatePointFont(tenths, face.c_str(), &dc);
}

int TableText::DotsOf(std::string_view text) const {
    CFont* const before = m_dc.SelectObject(const_cast<CFont*>(&m_font));
    const int dots = m_dc.GetTextExtent(text.data(), static_cast<int>(text.size())).cx;
    m_dc.SelectObject(before);
    return dots;
}

int TableText::WidthOfParts(std::string_view text) const {
    int width = 0;
    while (!text.empty()) {
        const std::size_t size = std::min(text.find("; "), text.size() - 1) + 1;
        width = std::max(width, WidthOf(Trimmed(text.substr(0, size), " ")));
        text.remove_prefix(size);
    }
    return width;
}

std::vector<std::string> TableText::Wrapped(std::string_view text, int width) const {
    std::vector<std::string> lines;
    while (WidthOf(text) > width) {
        std::size_t end = 0, afterBlank = 0;
        for (std::size_t next = FirstCharacter(text); next < text.size() && WidthOf(text.substr(0, next)) <= width;
             next += FirstCharacter(text.substr(next))) {
            end = next;
            if (text[next - 1] == ' ') afterBlank = next;
        }
        if (end < text.size() && text[end] == ' ') afterBlank = end + 1;
        const std::size_t taken = afterBlank > 0 ? afterBlank : std::max(end, FirstCharacter(text));
        if (taken >= text.size()) break;
        lines.push_back(std::string(Trimmed(text.substr(0, taken), " ")));
        text.remove_prefix(taken);
    }
    lines.emplace_back(text);
    return lines;
}

std::string TableText::Fitting(std::string_view text, int dots) const {
    if (DotsOf(text) <= dots) return std::string(text);
    std::string fitting = "...";
    for (std::size_t end = 0; end < text.size();) {
        end += FirstCharacter(text.substr(end));
        std::string longer = std::string(text.substr(0, end)) + "...";
        if (DotsOf(longer) > dots) break;
        fitting = std::move(longer);
    }
    return fitting;
}

}  // namespace qel
