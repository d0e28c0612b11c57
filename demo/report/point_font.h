#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace titration {

inline constexpr const char* kFace = "Arial";

/// A font of @p tenths tenths of a point, selected on a surface as long as this object lives.
class PointFont {
public:
    PointFont(CDC* dc, int tenths) : m_dc(dc) {
        m_font.CreatePointFont(tenths, kFace, dc);
        m_before = dc->SelectObject(&m_font);
    }
    ~PointFont() { m_dc->SelectObject(m_before); }
    PointFont(const PointFont&) = delete;
    PointFont& operator=(const PointFont&) = delete;

    CSize SizeOf(const std::string& text) const { return m_dc->GetTextExtent(text.c_str()); }

private:
    CDC* const m_dc;
    CFont m_font;
    CFont* m_before;
};

/// The part of @p text that fits in @p width units of the surface; dots at its end mean that there is more.
inline std::string Fitting(const PointFont& font, std::string text, int width) {
    if (font.SizeOf(text).cx <= width) return text;
    constexpr const char* kMore = "...";
    const auto isInCharacter = [&] { return (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80; };  // of UTF-8
    while (!text.empty() && font.SizeOf(text + kMore).cx > width) {
        while (text.size() > 1 && isInCharacter()) text.pop_back();
        text.pop_back();
    }
    return text + kMore;
}

}  // namespace titration
