// The report of qel trail export as a PDF: a table over pages, with the result of the check on each of them.
#include <algorithm>
#include <array>

#include "picture.h"
#include "trail_export.h"
#include "trail_text.h"

namespace tool {
namespace {

constexpr int kDots = 600;  // per inch
constexpr int Dots(double millimetres) { return static_cast<int>(millimetres * kDots / 25.4); }

constexpr std::uint64_t kMostEntries = 20'000;  // all rows are in memory, for the number of pages
constexpr int kLeft = Dots(12), kTop = Dots(12), kBottom = Dots(198), kGap = Dots(1.5);
constexpr UINT kWrapped = DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX;

struct Column {
    const char* name;
    double width;                                                              // millimetres
    std::size_t Most() const { return static_cast<std::size_t>(12 * width); }  // bytes: a row has to fit on a page
};
constexpr std::array kColumns = {
    Column{"Entry", 14},  Column{"UTC", 30},    Column{"User", 24},   Column{"Action", 26},
    Column{"Object", 40}, Column{"Change", 60}, Column{"Reason", 36}, Column{"SHA-256 of the entry", 43}};
using Row = std::array<std::string, kColumns.size()>;

// The whole text is in the other formats.
std::string Fitted(std::string_view text, std::size_t most) {
    if (text.size() <= most) return Shown(text);
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return Shown(text.substr(0, end)) + " [" + Count(text.size() - end, "more byte", "more bytes") + ']';
}

Row RowOf(const qel::TrailEntry& entry, const std::string& hash) {
    std::string object = entry.object;
    if (!entry.cabinet.empty())
        object += (object.empty() ? "" : " ") + entry.cabinet + " version " + std::to_string(entry.cabinetVersion);
    const bool isChange = !entry.before.empty() || !entry.after.empty();
    const std::string change = isChange ? entry.before + (entry.before.empty() ? "" : " -> ") + entry.after : "";
    Row row = {std::to_string(entry.number),
               qel::TrailTimeText(entry.time),
               entry.user,
               entry.action,
               object,
               change,
               entry.reason,
               hash};
    for (std::size_t i = 0; i < row.size(); ++i) row[i] = Fitted(row[i], kColumns[i].Most());
    return row;
}

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
    Pages(const std::string& trail, const qel::TrailReport& report) : m_trail(trail), m_report(report) {}

    void Add(const qel::TrailEntry& entry, const std::string& hash) { m_rows.push_back(RowOf(entry, hash)); }

    // Lays the rows out; the surface's fonts have the measures of all surfaces.
    int Count(CDC& dc) {
        m_starts = {0};
        int y = HeadOf(dc, 1, false);
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            const int height = Draw(dc, m_rows[i], y, false);
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
        for (std::size_t i = m_starts[index]; i < (isLast ? m_rows.size() : m_starts[index + 1]); ++i)
            y += Draw(dc, m_rows[i], y, true);
        const Font font(dc, 70);
        if (isLast) Text(dc, kLeft, y + kGap, Dots(273), "end of report", true);
        CRect foot(kLeft, kBottom - Dots(4), kLeft + Dots(273), kBottom);
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
        dc.LineTo(kLeft + Dots(273), y);
    }

    static int Draw(CDC& dc, const Row& row, int y, bool isDrawn) {
        const Font font(dc, 65);
        int x = kLeft, height = 0;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const int width = Dots(kColumns[i].width);
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
            y += Text(dc, kLeft, y, Dots(273), page == 1 ? "Trail " + Shown(m_trail) : "Trail (continued)", isDrawn);
        }
        {
            const Font font(dc, 75);
            y += Text(dc, kLeft, y, Dots(273), "Trail ID " + m_report.trailId, isDrawn);
            y += Text(dc, kLeft, y, Dots(273), "Last entry " + m_report.head, isDrawn);
            y += Text(dc, kLeft, y, Dots(273), ResultText(m_report), isDrawn);
        }
        Row names;
        for (std::size_t i = 0; i < names.size(); ++i) names[i] = kColumns[i].name;
        return y + kGap + Draw(dc, names, y + kGap, isDrawn);
    }

    const std::string& m_trail;
    const qel::TrailReport& m_report;
    std::vector<Row> m_rows;
    std::vector<std::size_t> m_starts;  // the first row of each page
};

}  // namespace

void WriteTrailPdf(const std::string& trail, const qel::TrailReport& report, const TrailExport& to) {
    if (report.entries > kMostEntries)
        throw Failure(Shown(trail) + ": has " + std::to_string(report.entries) + " entries; a PDF takes " +
                      std::to_string(kMostEntries) + ", the other formats any number");
    Pages pages(trail, report);
    CheckedEntries entries(trail, report);
    while (const std::optional<qel::TrailEntry> entry = entries.Next()) pages.Add(*entry, entries.Hash());
    qel::SetCodePage(qel::kCodePageUtf8);  // a trail's texts are UTF-8, so all of their characters are drawn
    const CString target = Path(to.target);
    Drawing drawing;
    drawing.page.sheet = {29'700, 21'000};
    drawing.page.dotsPerInch = {kDots, kDots};
    drawing.title = "Trail " + report.trailId;
    drawing.draw = [&](CDC& dc, int page) { return pages.DrawPage(dc, page); };
    OnFile(to.target, [&] {
        CDC dc;
        if (!dc.Attach(qel::CreatePdfDC(target, drawing.page))) throw Failure(Why("cannot be written"));
        drawing.pages = pages.Count(dc);
        if (!DrawDocument(dc, drawing)) throw Failure(Why("cannot be drawn or written"));
    });
    if (entries.Passed() > 0)
        throw Failure(Shown(trail) + ": " + Count(entries.Passed(), "line is", "lines are") + " no entry", kMalformed);
}

}  // namespace tool
