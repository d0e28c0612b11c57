#include "qellib10/graph/point_store.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <thread>
#include <vector>

#include "qellib10/graph/chart.h"
#include "qellib10/graph/point_line.h"
#include "qellib10/graph/point_search.h"

#include "../support/canvas.h"
#include "../support/soak.h"
#include "../support/test.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Points that mostly rise, with whatever a line may meet, and axes that show a part of them.
class RandomLine {
public:
    explicit RandomLine(unsigned seed) : m_random(seed) {
        const int count = 1 << Number(0, 14), rare = 1 << Number(3, 12);
        const bool isRounded = Number(0, 2) == 0, hasJumps = Number(0, 3) == 0, hasOddX = Number(0, 3) == 0;
        const bool hasGaps = Number(0, 1) == 0;
        double at = Number(-5, 5);
        for (int i = 0; i < count; ++i) {
            if (!isRounded || Number(0, 9) == 0) at += Number(0, 1000) / 1e3;
            if (hasJumps && Number(0, rare) == 0) at += count / 10.0;
            CGraphData point(at, std::sin(i * 6.0 / count) + Number(-100, 100) / 500.0);
            if (isRounded) point.SetYData(std::round(point.GetYData() * 8) / 8);
            if (hasGaps && Number(0, rare) == 0) point.SetYData(Number(0, 3) == 0 ? kInfinity : kNan);
            if (hasOddX && Number(0, rare) == 0) point.SetXData(Number(0, 20) == 0 ? kInfinity : kNan);
            points.push_back(point);
        }
        const double low = Number(0, 3) == 0 ? at / 3 : 1e-3, high = Number(0, 3) == 0 ? at / 2 : at;
        x = {low, std::max(low + 1e-3, high), Number(0, 4) == 0, 60, 60.0 + Number(1, 900)};
        y = {0.05, Number(0, 5) == 0 ? 0.0500001 : 1.2, Number(0, 3) == 0, 400, 20};
        if (Number(0, 4) == 0) std::swap(x.from, x.to);
        columnsPerUnit = Number(0, 2) == 0 ? 1.0 / Number(1, 300) : qel::PointLine::kFine;
        isSteps = Number(0, 3) == 0;
        for (int i = Number(0, 3) == 0 ? Number(0, 9) : 0; i < count; i += Number(1, 2 * rare))
            if (rare > 8) leftOut.push_back(static_cast<std::size_t>(i));
    }
    int Number(int least, int most) { return std::uniform_int_distribution(least, most)(m_random); }

    std::vector<CGraphData> points;
    qel::AxisPlaces x, y;
    double columnsPerUnit = 0;
    bool isSteps = false;
    std::vector<std::size_t> leftOut;

private:
    std::mt19937 m_random;
};

// The numbers of both, to be compared bit by bit.
std::vector<double> NumbersOf(const std::vector<qel::ShapePoint>& line) {
    std::vector<double> numbers;
    for (const qel::ShapePoint& place : line) {
        numbers.push_back(std::isnan(place.x) ? -1e99 : place.x);
        numbers.push_back(std::isnan(place.y) ? -1e99 : place.y);
    }
    return numbers;
}

}  // namespace

TEST(PointStore, HasTheLineAndThePlacesOfAllPoints) {
    const int count = SoakCount(400);
    int rising = 0;
    for (int i = 0; i < count; ++i) {
        RandomLine random(SoakSeed() * 1'000'003U + static_cast<unsigned>(i));
        qel::PointStore store;
        for (std::span<const CGraphData> rest = random.points; !rest.empty();) {
            const auto next = std::min<std::size_t>(rest.size(), static_cast<std::size_t>(1 << random.Number(0, 12)));
            store.Append(rest.first(next));
            rest = rest.subspan(next);
        }
        const qel::PointView stored(store), given(random.points);
        const bool isPart = stored.Totals().isRising && random.Number(0, 1) == 0;
        const std::size_t begin = isPart ? stored.FirstFrom(random.x.low) : 0;
        const std::size_t end = isPart ? stored.FirstAbove(random.x.high) : stored.Count();
        const auto isBefore = [&](const CGraphData& point) { return point.GetXData() < random.x.low; };
        const auto lastBefore = std::find_if(random.points.rbegin(), random.points.rend(), isBefore);
        if (isPart) {
            ASSERT_EQ(begin, random.points.rend() - lastBefore) << i;
        }
        const qel::PointLine line{stored,         random.x, random.y,      random.columnsPerUnit,
                                  random.isSteps, {},       random.leftOut};
        const qel::PointLine same{given, random.x, random.y, random.columnsPerUnit, random.isSteps, {}, random.leftOut};
        const std::vector<double> plain = NumbersOf(line.ReducedPlain(begin, end));
        ASSERT_TRUE(NumbersOf(line.Reduced(begin, end)) == plain) << i;
        ASSERT_TRUE(NumbersOf(same.Reduced(begin, end)) == plain) << i;
        const qel::PointView unread = qel::PointView::Unread(random.points);
        const qel::PointSearch quick{stored, random.x, random.y}, slow{unread, random.x, random.y};
        for (int place = 0; place < 5; ++place) {
            const double across = random.Number(0, 1000);
            ASSERT_EQ(quick.Nearest(across), slow.Nearest(across)) << i << ": " << across;
            const qel::ChartBox box{across, 100, across + random.Number(0, 200), 300};
            ASSERT_EQ(quick.In(box), slow.In(box)) << i << ": " << across;
        }
        rising += line.IsRising() ? 1 : 0;
    }
    EXPECT_GT(rising, count / 2);
    Tried("lines", count);
}

TEST(PointStore, ChartHasThePixelsOfItsPoints) {
    for (const qel::ChartKind kind : {qel::ChartKind::kLine, qel::ChartKind::kSteps, qel::ChartKind::kPoints,
                                      qel::ChartKind::kBars, qel::ChartKind::kArea, qel::ChartKind::kBand}) {
        qel::Chart given;
        given.series.push_back({.name = "A", .kind = kind});
        const bool isDense = kind == qel::ChartKind::kLine || kind == qel::ChartKind::kSteps;
        for (int i = 0; i < (isDense ? 5000 : 40); ++i) given.series[0].points.emplace_back(i, std::sin(i * 0.7) + 2);
        given.series[0].lower.assign(40, 0.5);
        qel::Chart stored = given;
        stored.series[0].store = std::make_shared<qel::PointStore>();
        stored.series[0].store->Append(given.series[0].points);
        stored.series[0].points = {{7, 7}};
        Canvas first(300, 200), second(300, 200);
        given.Draw(first.dc, CRect(0, 0, 300, 200));
        stored.Draw(second.dc, CRect(0, 0, 300, 200));
        EXPECT_TRUE(first.Pixels() == second.Pixels()) << static_cast<int>(kind);
    }
}

TEST(PointStore, GrowsWhileItIsDrawn) {
    constexpr std::size_t kPoints = 20'000, kThreads = 2;
    qel::Chart chart;
    chart.axes[0].low = 0, chart.axes[0].high = 1, chart.axes[1].low = -2, chart.axes[1].high = 2;
    chart.series.push_back({.store = std::make_shared<qel::PointStore>()});
    qel::PointStore& store = *chart.series[0].store;
    const auto measure = [&] {
        for (std::size_t i = 0; i < kPoints; ++i) store.Append(CGraphData(0.5, static_cast<double>(i)));
    };
    std::vector<std::thread> instruments;
    for (std::size_t i = 0; i < kThreads; ++i) instruments.emplace_back(measure);
    Canvas canvas(200, 150);
    do {
        EXPECT_TRUE(chart.Draw(canvas.dc, CRect(0, 0, 200, 150)).isDrawn);
    } while (store.Count() < kThreads * kPoints);
    for (std::thread& instrument : instruments) instrument.join();
    double sum = 0;
    for (std::size_t i = 0; i < store.Count(); ++i) sum += store.At(i).GetYData();
    EXPECT_EQ(sum, kThreads * kPoints * (kPoints - 1) / 2.0);
    EXPECT_LE(store.Reserved(), 2 * 18 * store.Count() + 200'000);
}
