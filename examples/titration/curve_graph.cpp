#include "curve_graph.h"

#include <algorithm>

namespace titration {
namespace {

constexpr const char* kFace = "Arial";
constexpr int kFontSize = 80;  // tenths of a point

constexpr COLORREF kBlack = RGB(0, 0, 0), kGrey = RGB(205, 205, 205);
constexpr COLORREF kBlue = RGB(0, 60, 160), kOrange = RGB(200, 90, 0), kRed = RGB(200, 0, 30);

// Hundredths of a millimetre.
constexpr int kThinLine = 8, kLine = 20, kGap = 80;

constexpr int kMostSteps = 10;
constexpr int kEndPointMark = 5;                // half-size of the circle in pixels of a screen
constexpr std::size_t kMostMarks = 500;         // more of them would be one band
constexpr std::size_t kMostPoints = 10'000;     // more than a page can show
constexpr int kCircle = 1;

// A font for as long as this object lives.
class Font {
public:
    explicit Font(CDC* dc) : m_dc(dc) {
        m_font.CreatePointFont(kFontSize, kFace, dc);
        m_before = dc->SelectObject(&m_font);
    }
    ~Font() { m_dc->SelectObject(m_before); }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    CSize SizeOf(const std::string& text) const { return m_dc->GetTextExtent(text.c_str()); }
    int Height() const { return SizeOf("0").cy; }
    int Widest(const AxisSteps& steps) const {
        int widest = 0;
        for (int line = 0; line <= steps.count; ++line) widest = std::max<int>(widest, SizeOf(steps.Text(line)).cx);
        return widest;
    }

private:
    CDC* const m_dc;
    CFont m_font;
    CFont* m_before;
};

AxisSteps StepsOver(const std::vector<double>& values) {
    const auto [low, high] = std::ranges::minmax(values);
    return titration::StepsOver(low, high, kMostSteps);
}

}  // namespace
}  // namespace titration
