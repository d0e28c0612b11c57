#include "qellib10/graph/chart_csv.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <span>

#include "qellib10/graph/left_out.h"
#include "qellib10/graph/series_points.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr std::size_t kPiece = 64 * 1024;

void AppendQuoted(std::string& text, std::string_view field) {
    text += '"';
    for (const char c : field) text.append(c == '"' ? 2 : 1, c);
    text += '"';
}

void AppendNumber(std::string& text, double value) {
    char buffer[32];
    const auto end = std::to_chars(std::begin(buffer), std::end(buffer), value);
    if (std::isfinite(value)) text.append(buffer, end.ptr);
}

std::string WithUnit(const std::string& name, const ChartAxis* axis) {
    return axis == nullptr || axis->unit.empty() ? name : name + " (" + axis->unit + ")";
}

class Table {
public:
    explicit Table(const Chart& chart) : m_chart(chart) {
        for (const ChartSeries& series : chart.series) m_leftOut.push_back(PointsLeftOut(series));
    }

    std::size_t RowCount() const {
        std::size_t most = 0;
        for (const ChartSeries& series : m_chart.series) most = std::max(most, SeriesPoints(series).Count());
        return most;
    }
    void AppendNames(std::string& text) const {
        ForEachColumn(text, [&](const ChartSeries& series, bool hasReasons) {
            const ChartAxis *const x = AxisAt(series.xAxis), *const y = AxisAt(series.yAxis);
            AppendQuoted(text, WithUnit(x != nullptr && !x->title.empty() ? x->title : "x", x));
            text += ',';
            AppendQuoted(text, WithUnit(series.name.empty() && y != nullptr ? y->title : series.name, y));
            if (!hasReasons) return;
            text += ',';
            AppendQuoted(text, m_chart.leftOutText);
        });
    }
    void AppendRow(std::string& text, std::size_t row) const {
        std::size_t column = 0;
        ForEachColumn(text, [&](const ChartSeries& series, bool hasReasons) {
            const SeriesPoints points(series);
            const bool isThere = row < points.Count();
            if (isThere) AppendNumber(text, points[row].GetXData());
            text += ',';
            if (isThere) AppendNumber(text, points[row].GetYData());
            if (hasReasons) text += ',';
            if (std::ranges::binary_search(m_leftOut[column++], row)) {
                const std::string reason = ReasonLeftOut(series, row).value_or("");
                AppendQuoted(text, reason.empty() ? m_chart.leftOutText : reason);
            }
        });
    }

private:
    const ChartAxis* AxisAt(std::size_t axis) const {
        return axis < m_chart.axes.size() ? &m_chart.axes[axis] : nullptr;
    }
    template <class Step> void ForEachColumn(std::string& text, const Step& step) const {
        for (std::size_t i = 0; i < m_chart.series.size(); ++i) {
            if (i > 0) text += ',';
            step(m_chart.series[i], !m_leftOut[i].empty());
        }
        text += "\r\n";
    }

    const Chart& m_chart;
    std::vector<std::vector<std::size_t>> m_leftOut;  // by series, in order
};

}  // namespace

std::string ChartCsv(const Chart& chart) {
    const Table table(chart);
    std::string text;
    table.AppendNames(text);
    for (std::size_t row = 0; row < table.RowCount(); ++row) table.AppendRow(text, row);
    return text;
}

bool WriteChartCsv(const Chart& chart, std::string_view path) {
    return AsResult("qel::WriteChartCsv", [&] {
               const CString name(FromUtf8(path));
               Replacement file(name.View());
               const Table table(chart);
               std::string text;
               const auto write = [&] {
                   WriteFully(file.File(), std::as_bytes(std::span(text)), name.View());
                   text.clear();
               };
               table.AppendNames(text);
               for (std::size_t row = 0; row < table.RowCount(); ++row) {
                   table.AppendRow(text, row);
                   if (text.size() >= kPiece) write();
               }
               write();
               file.Commit();
               return 1;
           }) != 0;
}

}  // namespace qel
