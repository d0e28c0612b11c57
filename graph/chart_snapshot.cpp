#include "qellib10/graph/chart_snapshot.h"

namespace qel {

ChartSnapshot::ChartSnapshot(const Chart& shown) : chart(shown) {
    points.reserve(chart.series.size());
    for (const ChartSeries& series : chart.series) {
        if (series.store != nullptr) {
            points.emplace_back(*series.store);
        } else {
            points.emplace_back(series.points);
        }
    }
}

}  // namespace qel
