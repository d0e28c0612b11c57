#include "table_pdf.h"

#include <algorithm>

#include "picture.h"

namespace tool {
namespace {

constexpr int kDots = 600;  // per inch
constexpr int Dots(double millimetres) { return static_cast<int>(millimetres * kDots / 25.4); }

constexpr int kLeft = Dots(12), kTop = Dots(12), kBottom = Dots(198), kGap = Dots(1.5), kWidth = Dots(273);
constexpr double kMostBytes = 12;  // of a cell, for each millimetre
constexpr UINT kWrapped = DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX;

class Font {
public:
    Font(CDC& dc, int tenths) : m_dc(dc) {
        m_font.CreatePointFont(tenths, "Arial", &dc);
        m_before = dc.SelectObject(&m_font);
    }
    ~Font() { m_dc.SelectObject(m_before); }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

private:
    CDC& m_dc;
    CFont m_font;
    CFont* m_before;
};

class Pages {
public:
    explicit Pages(const TablePdf& table) : m_table(table) {}

    // Lays the rows out; the surface's fonts have the measures of all surfaces.
    int Count(CDC& dc) {
        m_starts = {0};
        int y = HeadOf(dc, 1, false);
        for (std::size_t i = 0; i < m_table.rows.size(); ++i) {
            const int height = Draw(dc, m_table.rows[i], y, false);
            if (y + height > kBottom - Dots(8)) {
                m_starts.push_back(i);
                y = HeadOf(dc, 2, false);
            }
            y += height;
        }
        return static_cast<int>(m_starts.size());
    }

    bool DrawPage(CDC& dc, int page) {
        const auto index = static_cast<std::size_t>(page) - 1;
        const bool isLast = index + 1 == m_starts.size();
        int y = HeadOf(dc, page, true);
        for (std::size_t i = m_starts[index]; i < (isLast ? m_table.rows.size() : m_starts[index + 1]); ++i)
            y += Draw(dc, m_table.rows[i], y, true);
        const Font font(dc, 70);
        if (isLast) Text(dc, kLeft, y + kGap, kWidth, "end of report", true);
        CRect foot(kLeft, kBottom - Dots(4), kLeft + kWidth, kBottom);
        dc.DrawText(tool::Text("page " + std::to_string(page) + " of " + std::to_string(m_starts.size())), &foot,
                    DT_RIGHT | DT_SINGLELINE | DT_NOPREFIX);
        return true;
    }

private:
    static int Text(CDC& dc, int x, int y, int width, const std::string& text, bool isDrawn) {
        CRect box(x, y, x + width, y + Dots(250));
        const CString shown = tool::Text(text);
        CRect measured = box;
        const int height = dc.DrawText(shown, &measured, kWrapped | DT_CALCRECT);
        if (isDrawn) dc.DrawText(shown, &box, kWrapped | DT_NOCLIP);
        return height;
    }

    static void Rule(CDC& dc, int y) {
        dc.MoveTo(kLeft, y);
        dc.LineTo(kLeft + kWidth, y);
    }

    int Draw(CDC& dc, const std::vector<std::string>& row, int y, bool isDrawn) const {
        const Font font(dc, 65);
        int x = kLeft, height = 0;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const int width = Dots(m_table.columns[i].width);
            height = std::max(height, Text(dc, x, y + kGap / 2, width - kGap, row[i], isDrawn));
            x += width;
        }
        if (isDrawn) Rule(dc, y + height + kGap);
        return height + kGap;
    }

    // @return where the rows start
    int HeadOf(CDC& dc, int page, bool isDrawn) const {
        int y = kTop;
        {
            const Font font(dc, 110);
            y += Text(dc, kLeft, y, kWidth, page == 1 ? m_table.headline : m_table.continued, isDrawn);
        }
        {
            const Font font(dc, 75);
            for (const std::string& line : m_table.head) y += Text(dc, kLeft, y, kWidth, line, isDrawn);
        }
        std::vector<std::string> names;
        for (const TablePdf::Column& column : m_table.columns) names.emplace_back(column.name);
        return y + kGap + Draw(dc, names, y + kGap, isDrawn);
    }

    const TablePdf& m_table;
    std::vector<std::size_t> m_starts;  // the first row of each page
};

}  // namespace

std::string TablePdf::Fitted(std::string_view text, std::size_t column) const {
    const auto most = static_cast<std::size_t>(kMostBytes * columns[column].width);
    if (text.size() <= most) return Shown(text);
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return Shown(text.substr(0, end)) + " [" + Count(text.size() - end, "more byte", "more bytes") + ']';
}

void TablePdf::Write(const std::string& path) const {
    qel::SetCodePage(qel::kCodePageUtf8);  // the texts are UTF-8, so all of their characters are drawn
    Pages pages(*this);
    const CString target = Path(path);
    Drawing drawing;
    drawing.page.sheet = {29'700, 21'000};
    drawing.page.dotsPerInch = {kDots, kDots};
    drawing.title = title;
    drawing.draw = [&](CDC& dc, int page) { return pages.DrawPage(dc, page); };
    OnFile(path, [&] {
        CDC dc;
        if (!dc.Attach(qel::CreatePdfDC(target, drawing.page))) throw Failure(Why("cannot be written"));
        drawing.pages = pages.Count(dc);
        if (!DrawDocument(dc, drawing)) throw Failure(Why("cannot be drawn or written"));
    });
}

}  // namespace tool
