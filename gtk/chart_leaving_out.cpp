#include "qellib10/gtk/chart_leaving_out.h"

#include <algorithm>

#include "qellib10/graph/left_out.h"
#include "qellib10/gtk/chart_words.h"
#include "qellib10/gtk/reason_dialog.h"

namespace qel {
namespace {

constexpr ChartWord kHint{"Click or drag: points are left out or come back. Esc: end",
                          "クリックかドラッグで点を除外・復帰、Esc で終了"};
constexpr double kReach = 10;  // of the pointer, units of the widget

}  // namespace

void ChartLeavingOut::Allow(Changed changed, AskReason ask) {
    m_changed = std::move(changed);
    m_ask = std::move(ask);
    if (!m_ask) m_ask = [this](std::size_t count) { return AskReasonLeftOut(m_scene.Widget(), count); };
}

void ChartLeavingOut::Forbid() {
    m_changed = nullptr;
    if (m_isOn) Switch();
}

void ChartLeavingOut::Switch() {
    m_isOn = !m_isOn && IsAllowed();
    m_scene.hint = m_isOn ? Say(kHint) : "";
    m_scene.Announce(m_scene.hint);
    m_scene.RedrawOver();
}

void ChartLeavingOut::ToggleNear(const ShapePoint& at) {
    if (const auto point = m_scene.navigator.PointNear(m_scene.chart, at, kReach * m_scene.Scale()))
        Toggle({{point->series, {point->point}}});
}

void ChartLeavingOut::ToggleIn(const ChartBox& box) {
    Chosen chosen;
    for (std::size_t i = 0; i < m_scene.chart.series.size(); ++i) {
        std::vector<std::size_t> points = m_scene.navigator.PointsIn(m_scene.chart, i, box);
        if (!points.empty() && m_scene.chart.series[i].kind != ChartKind::kBand)
            chosen.emplace_back(i, std::move(points));
    }
    Toggle(chosen);
}

void ChartLeavingOut::ToggleAtCursor() {
    if (const auto at = m_scene.cursor.At(m_scene.chart, m_scene.navigator)) Toggle({{at->series, {at->point}}});
}

void ChartLeavingOut::Toggle(const Chosen& chosen) {
    if (!IsAllowed() || chosen.empty()) return;
    const auto countNew = [&](const Chosen::value_type& each) {
        const std::vector<std::size_t> before = PointsLeftOut(m_scene.chart.series[each.first]);
        return std::ranges::count_if(each.second,
                                     [&](std::size_t point) { return !std::ranges::binary_search(before, point); });
    };
    std::ptrdiff_t count = 0;
    for (const auto& each : chosen) count += countNew(each);
    std::optional<std::string> reason("");
    if (count > 0) reason = m_ask(static_cast<std::size_t>(count));
    if (!reason) return;
    std::vector<std::size_t> changed;
    for (const auto& each : chosen) {
        const bool isLeft = count > 0 && countNew(each) == 0;  // the others are left out now, these are already
        // A dialog was open meanwhile: the series may be gone.
        if (isLeft || each.first >= m_scene.chart.series.size()) continue;
        if (ToggleLeftOut(m_scene.chart.series[each.first], each.second, *reason)) changed.push_back(each.first);
    }
    m_scene.Redraw();
    for (const std::size_t series : changed)
        if (m_changed) m_changed(series);
}

}  // namespace qel
