#include <algorithm>
#include <cmath>
#include <map>

#include "../support/output_of.h"
#include "../support/soak.h"
#include "../support/test.h"
#include "qellib10/base/read_number.h"
#include "qellib10/quantity/monte_carlo.h"
#include "uncertain_inputs.h"

namespace {

constexpr int kTrials = 100'000;

double Number(const std::string& text) { return qel::ReadNumber(text).value(); }

qel::CoverageInterval Range(const std::string& text) {
    const std::size_t blank = text.find(' ');
    const auto end = [](const std::string& number) {
        return number.ends_with("inf") ? (number.front() == '-' ? -INFINITY : INFINITY) : Number(number);
    };
    return {end(text.substr(0, blank)), end(text.substr(blank + 1))};
}

// A line of formulas_with_uncertainties.
struct PeerLine {
    explicit PeerLine(const std::string& line) : inputs({}) {
        std::istringstream fields(line);
        const auto next = [&fields] {
            std::string field;
            std::getline(fields, field, '\t');
            return field;
        };
        formula = next();
        std::istringstream each(next());
        for (std::string number, deviation, source; each >> number >> deviation >> source;) {
            const std::string name(1, static_cast<char>('A' + inputs.inputs.size()));
            inputs.inputs.push_back(Input(name, Number(number), Number(deviation), source == "-" ? "" : source));
            inputs.scope.Add(name);
        }
        options.coverageFactor = 2.0;
        std::istringstream pair(next());
        std::size_t first, second;
        if (std::string r; pair >> first >> second >> r) options.correlations = {{first, second, Number(r)}};
        value = Number(next());
        uncertainty = Number(next());
        exact = Number(next());
        lost = Number(next());
        verdict = next();
        if (verdict.empty()) return;
        low = Range(next());
        high = Range(next());
    }

    std::string formula;
    UncertainInputs inputs;
    qel::UncertaintyOptions options;
    double value, uncertainty, exact, lost;
    std::string verdict;
    qel::CoverageInterval low, high;
};

std::istringstream PeerLines(int count, int trials) {
    return std::istringstream(OutputOf(QELLIB10_TEST_DATA "/../quantity/formulas_with_uncertainties " +
                                       std::to_string(count) + " " + std::to_string(SoakSeed()) + " " +
                                       std::to_string(trials)));
}

bool IsNear(double value, double expected) { return std::abs(value - expected) <= 1e-12 * std::abs(expected); }

bool IsWithin(double end, const qel::CoverageInterval& range) { return range.low <= end && end <= range.high; }

}  // namespace

// To 12 digits of the uncertainty, all formulas. Where its parts cancel, as in A / A, at least one of the two has fewer
// digits: what is left here must then be that of 50 digits but for what numbers of 53 bits lose of it, which the script
// reckons with intervals and with the sizes of the parts.
TEST(UncertaintyPeer, FirstOrderIsThatOfUncertainties) {
    const int count = SoakCount(1000);
    std::istringstream lines = PeerLines(count, 0);
    int tried = 0, cancelled = 0;
    for (std::string line; std::getline(lines, line); ++tried) {
        const PeerLine peer(line);
        qel::FormulaError error;
        const auto budget =
            qel::PropagateUncertainty(peer.inputs.Parsed(peer.formula), peer.inputs.inputs, peer.options, error);
        ASSERT_TRUE(budget) << line << "\n" << error.Text(peer.formula);
        EXPECT_TRUE(IsNear(budget->value, peer.value)) << line;
        if (IsNear(budget->uncertainty, peer.uncertainty)) continue;
        ++cancelled;
        EXPECT_LE(std::abs(budget->uncertainty - peer.exact), std::max(4 * peer.lost, 1e-12 * peer.exact))
            << line << "\n"
            << budget->uncertainty;
    }
    EXPECT_EQ(tried, count);
    EXPECT_LE(cancelled, count / 50);
    Tried("formulas", tried);
    Tried("formulas whose uncertainty cancels", cancelled);
}

// For formulas as they are drawn, with standard uncertainties of up to a third of the values.
TEST(UncertaintyPeer, TrialsAndTheirVerdictAreThoseOfNumpy) {
    const int count = SoakCount(200);
    std::istringstream lines = PeerLines(count, kTrials);
    std::map<std::string, int> verdicts;
    for (std::string line; std::getline(lines, line);) {
        const PeerLine peer(line);
        qel::MonteCarloOptions options;
        options.trials = kTrials;
        options.correlations = peer.options.correlations;
        const qel::Formula formula = peer.inputs.Parsed(peer.formula);
        qel::FormulaError error;
        const auto budget = qel::PropagateUncertainty(formula, peer.inputs.inputs, peer.options, error);
        const auto trials = qel::PropagateDistributions(formula, peer.inputs.inputs, options, error);
        ASSERT_TRUE(budget && (trials || error.kind == qel::FormulaError::Kind::kTooLarge)) << line << "\n"
                                                                                            << error.Text(peer.formula);
        std::string verdict = "not enough";  // nor where a trial is so large that the trials have no standard deviation
        if (trials) {
            EXPECT_TRUE(IsWithin(trials->symmetric.low, peer.low)) << line << "\n" << trials->symmetric.low;
            EXPECT_TRUE(IsWithin(trials->symmetric.high, peer.high)) << line << "\n" << trials->symmetric.high;
            if (qel::ValidateFirstOrder(*budget, *trials).value().isEnough) verdict = "enough";
        }
        EXPECT_TRUE(peer.verdict == "open" || peer.verdict == verdict) << line << "\n" << verdict;
        ++verdicts[peer.verdict];
    }
    EXPECT_EQ(verdicts["enough"] + verdicts["not enough"] + verdicts["open"], count);
    EXPECT_GE(verdicts["enough"], count / 2);
    EXPECT_GE(verdicts["not enough"], count / 20);
    EXPECT_LE(verdicts["open"], count / 3);
    Tried("formulas by trials", count);
    Tried("formulas for which first order is not enough", verdicts["not enough"]);
    Tried("formulas in the border zone", verdicts["open"]);
}
