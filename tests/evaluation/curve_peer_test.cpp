#include <charconv>
#include <cmath>
#include <functional>
#include <map>
#include <sstream>

#include "../support/output_of.h"
#include "../support/soak.h"
#include "../support/test.h"
#include "qellib10/evaluation/curve.h"

namespace {

using Numbers = std::vector<double>;

// A line of the peer.
struct PeerRow {
    std::string what;
    Numbers numbers, expected;
    qel::Curve curve;
};

Numbers NumbersOf(const std::string& text) {
    Numbers numbers;
    for (const char *at = text.data(), *const end = at + text.size(); at < end; ++at) {
        double value = 0;
        at = std::from_chars(at, end, value).ptr;
        numbers.push_back(value);
    }
    return numbers;
}

PeerRow RowOf(const std::string& line) {
    std::istringstream stream(line);
    std::string what, numbers, x, y, expected;
    for (std::string* const field : {&what, &numbers, &x, &y, &expected}) std::getline(stream, *field, '\t');
    std::vector<qel::CurvePoint> points;
    for (const double value : NumbersOf(x)) points.push_back({value, 0});
    const Numbers signals = NumbersOf(y);
    for (std::size_t i = 0; i < points.size(); ++i) points[i].y = signals.at(i);
    qel::CurveOptions options{.leaveOutStrays = false};
    if (what == "baseline") options.noise = NumbersOf(numbers).at(0);
    return {what, NumbersOf(numbers), NumbersOf(expected), qel::Curve::Of(points, options)};
}

// The values, and how far each may be off, of that of the largest.
struct Found {
    Numbers values;
    double tolerance;
};

Found FitOf(const PeerRow& row) {
    const auto window = static_cast<std::size_t>(row.numbers[0]), degree = static_cast<std::size_t>(row.numbers[1]);
    const auto order = static_cast<std::size_t>(row.numbers[2]);
    const qel::CurveValues values =
        order == 0 ? row.curve.Smoothed(window, degree) : row.curve.Derivative(order, window, degree);
    Found found{{}, 1e-9};
    for (const qel::CurveValue& value : values.values) found.values.push_back(value.y);
    return found;
}

Found DriftOf(const PeerRow& row) {
    const qel::CurveResult drift = row.curve.Drift();
    return {{drift.value.value_or(NAN), drift.uncertainty}, 1e-9};
}

Found EquivalenceOf(const PeerRow& row) {
    const auto shape = row.numbers.at(0) == 0 ? qel::EquivalenceShape::kNernst : qel::EquivalenceShape::kSigmoid;
    const qel::EquivalenceFit fit = row.curve.FitEquivalence(shape);
    const double leastUncertainty = std::min(fit.uncertainty, row.expected.at(3));  // the peer's is by noise alone
    return {{fit.value.value_or(NAN), fit.width, fit.scatter, leastUncertainty}, 1e-6};
}

Found GranOf(const PeerRow& row) {
    const qel::CurveEndPoint found =
        row.curve.EndPointBy({.method = qel::EndPointMethod::kGran, .startVolume = row.numbers.at(0), .perDecade = -1});
    return {{found.value.value_or(NAN), found.uncertainty}, 1e-9};
}

Found PeaksOf(const PeerRow& row) {
    Found found{{}, 1e-3};
    qel::PeakOptions options{.leastHeight = 0.5};
    options.baseline.method = qel::BaselineMethod::kZero;
    for (const qel::CurvePeak& peak : row.curve.Peaks(options).peaks)
        found.values.insert(found.values.end(), {peak.width.value.value_or(NAN), peak.area.value.value_or(NAN)});
    return found;
}

Found BaselineOf(const PeerRow& row) {
    const qel::CurveValues values = row.curve.Baseline(
        {.method = qel::BaselineMethod::kAsymmetric, .smoothness = row.numbers.at(1), .asymmetry = row.numbers.at(2)});
    Found found{{}, 1e-7};  // the system is badly conditioned
    for (const qel::CurveValue& value : values.values) found.values.push_back(value.y);
    return found;
}

}  // namespace

TEST(CurvePeer, EvaluatesAsScipyDoes) {
    const std::map<std::string, std::function<Found(const PeerRow&)>> evaluations = {
        {"fit", FitOf},   {"drift", DriftOf}, {"equivalence", EquivalenceOf},
        {"gran", GranOf}, {"peaks", PeaksOf}, {"baseline", BaselineOf}};
    const std::string command = QELLIB10_TEST_DATA "/../evaluation/curves_of_scipy " + std::to_string(SoakCount(1000)) +
                                " " + std::to_string(SoakSeed());
    std::istringstream lines(OutputOf(command));
    std::map<std::string, int> tried;
    for (std::string line; std::getline(lines, line);) {
        const PeerRow row = RowOf(line);
        const Found found = evaluations.at(row.what)(row);
        ASSERT_EQ(found.values.size(), row.expected.size()) << line.substr(0, 40) << row.curve.Reason();
        double largest = 0;
        for (const double value : row.expected) largest = std::max(largest, std::abs(value));
        for (std::size_t i = 0; i < found.values.size(); ++i) {
            ASSERT_NEAR(found.values[i], row.expected[i], found.tolerance * largest)
                << "curve " << tried[row.what] << ", " << line.substr(0, 40) << ", value " << i;
        }
        ++tried[row.what];
    }
    for (const auto& [what, evaluate] : evaluations) EXPECT_GE(tried[what], SoakCount(1000) / 5) << what;
    Tried("curves", tried["fit"]);
}
