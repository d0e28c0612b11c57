#include "qellib10/graph/point_view.h"

namespace qel {

PointView::PointView(std::span<const CGraphData> points) : m_pPoints(points.data()) {
    const auto summary = std::make_shared<PointSummary>();
    summary->Add(points);
    m_totals = summary->Totals();
    m_pSummary = summary.get();
    m_pOwn = summary;
}

PointView::PointView(std::span<const CGraphData> points, const PointSummary& summary)
    : m_pPoints(points.data()), m_pSummary(&summary), m_totals(summary.Totals()) {}

PointView PointView::Unread(std::span<const CGraphData> points) {
    PointView view;
    view.m_pPoints = points.data();
    view.m_totals.count = points.size();
    view.m_totals.isRising = false;
    return view;
}

std::size_t PointView::FirstFrom(double x) const noexcept {
    return FirstNot([x](double each) { return each < x; });
}

std::size_t PointView::FirstAbove(double x) const noexcept {
    return FirstNot([x](double each) { return each <= x; });
}

}  // namespace qel
