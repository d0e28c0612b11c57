#pragma once

#include "qellib10/graph/chart_data.h"
#include "qellib10/graph/point_view.h"

namespace qel {

/// The points of a series, wherever it keeps them, one by one.
class SeriesPoints : public PointView {
public:
    explicit SeriesPoints(const ChartSeries& series)
        : PointView(series.store != nullptr ? PointView(*series.store) : Unread(series.points)) {}
};

}  // namespace qel
