#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "../../tools/qel/curve_points.h"
#include "../support/test.h"

namespace {

using tool::CurvePoints;
using Drawn = CurvePoints::Drawn;
using Thinned = CurvePoints::Thinned;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// The lowest and the highest end of errors in each part of x, and the gaps. Parts are whole numbers of columns.
std::vector<double> ShapeOf(const qel::ChartSeries& series, const Drawn& drawn) {
    std::map<double, std::pair<double, double>> parts;
    double gaps = 0;
    for (std::size_t i = 0; i < series.points.size(); ++i) {
        const double x = series.points[i].GetXData(), y = series.points[i].GetYData();
        gaps += std::isnan(x) ? 1 : 0;
        if (std::isnan(x) || (drawn.xRange && (x < drawn.xRange->first || x >= drawn.xRange->second))) continue;
        const double part = drawn.isLogX ? std::log10(x) * 4 : x / (drawn.xRange ? 100 : 4096);
        const double error = drawn.hasErrors ? series.yErrors.down[i] : 0;
        auto& [low, high] = parts.try_emplace(std::floor(part), 1e300, -1e300).first->second;
        low = std::min(low, y - error);
        high = std::max(high, y + error);
    }
    std::vector<double> shape = {gaps};
    for (const auto& [part, ends] : parts) shape.insert(shape.end(), {ends.first, ends.second});
    return shape;
}

}  // namespace

// A point that a picture needs would be missing in it, without a sign.
TEST(CurvePoints, KeepLowestHighestErrorsAndGaps) {
    for (const auto& [drawn, sign, isFew] : Cases<Drawn, double, bool>{
             {{.most = 4096}, 1, true},
             {{.most = 4096}, -1, true},
             {{.hasErrors = true, .most = 4096}, 1, true},
             {{.isLogX = true, .isLogY = true, .most = 4096}, 1, true},
             {{.xRange = std::pair(1000.0, 2000.0), .most = 4096}, 1, true},
             {{.thinned = Thinned::kNot, .most = 4096}, 1, false},
         }) {
        Drawn all = drawn;
        all.thinned = Thinned::kNot;
        CurvePoints thinned(drawn), whole(all);
        constexpr int kPoints = 100'000;
        for (int i = 1; i <= kPoints; ++i) {
            const double y = i % 20'000 == 0 ? kNone : 2 + std::sin(i * 1e-4) + (i * 7919 % 1000) / 300.0;
            for (CurvePoints* points : {&thinned, &whole}) points->Add(sign * i, y, i * 31 % 100 / 50.0);
        }
        EXPECT_EQ(thinned.Count() <= 8192, isFew) << thinned.Count();
        qel::ChartSeries few, many;
        thinned.GiveTo(few);
        whole.GiveTo(many);
        EXPECT_EQ(ShapeOf(few, drawn), ShapeOf(many, drawn));
    }
}

TEST(CurvePoints, KeepEachPlaceOfMarks) {
    CurvePoints points({.thinned = Thinned::kMarks, .isLogX = true, .most = 4096});
    for (int i = 0; i < 100'000; ++i) points.Add(i % 1000, i * 7919 % 1000);
    EXPECT_LE(points.Count(), 4096u);
    qel::ChartSeries series;
    points.GiveTo(series);
    std::map<double, double> places;
    for (const CGraphData& point : series.points) places[point.GetXData()] = point.GetYData();
    EXPECT_EQ(places.size(), 999u) << "0 is not on a logarithmic axis";
}
