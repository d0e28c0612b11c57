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

}  // namespace titration
