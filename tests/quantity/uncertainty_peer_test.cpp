#include <algorithm>
#include <cmath>

#include "../support/output_of.h"
#include "../support/soak.h"
#include "../support/test.h"
#include "qellib10/base/read_number.h"
#include "qellib10/quantity/monte_carlo.h"
#include "uncertain_inputs.h"

namespace {

double Number(const std::string& text) { return qel::ReadNumber(text).value(); }

// A line of formulas_with_uncertainties.
struct PeerLine {
    explicit PeerLine(const std::string& line) : inputs({}) {
        std::istringstream fields(line);
        std::string given, correlation, result, resultUncertainty, resultScale;
        for (std::string* field : {&formula, &given, &correlation, &result, &resultUncertainty, &resultScale})
            std::getline(fields, *field, '\t');
        std::istringstream each(given);
        for (std::string number, deviation, source; each >> number >> deviation >> source;) {
            const std::string name(1, static_cast<char>('A' + inputs.inputs.size()));
            inputs.inputs.push_back(Input(name, Number(number), Number(deviation), source == "-" ? "" : source));
            inputs.scope.Add(name);
        }
        options.coverageFactor = 2.0;
        std::istringstream pair(correlation);
        std::size_t first, second;
        if (std::string r; pair >> first >> second >> r) options.correlations = {{first, second, Number(r)}};
        value = Number(result);
        uncertainty = Number(resultUncertainty);
        // Where the parts of a derivative cancel by more than two digits, what is lost is rounding in both.
        scale = std::max(uncertainty, 0.01 * Number(resultScale));
    }

    std::string formula;
    UncertainInputs inputs;
    qel::UncertaintyOptions options;
    double value, uncertainty, scale;
};

std::istringstream PeerLines(int count) {
    return std::istringstream(OutputOf(QELLIB10_TEST_DATA "/../quantity/formulas_with_uncertainties " +
                                       std::to_string(count) + " " + std::to_string(SoakSeed())));
}

bool IsNear(double value, double expected, double scale) { return std::abs(value - expected) <= 1e-12 * scale; }

}  // namespace

TEST(UncertaintyPeer, FirstOrderIsThatOfUncertainties) {
    const int count = SoakCount(2000);
    std::istringstream lines = PeerLines(count);
    int tried = 0;
    for (std::string line; std::getline(lines, line); ++tried) {
        const PeerLine peer(line);
        qel::FormulaError error;
        const auto budget =
            qel::PropagateUncertainty(peer.inputs.Parsed(peer.formula), peer.inputs.inputs, peer.options, error);
        ASSERT_TRUE(budget) << line << "\n" << error.Text(peer.formula);
        EXPECT_TRUE(IsNear(budget->value, peer.value, std::abs(peer.value))) << line;
        EXPECT_TRUE(IsNear(budget->uncertainty, peer.uncertainty, peer.scale)) << line << "\n" << budget->uncertainty;
    }
    EXPECT_EQ(tried, count);
    Tried("formulas", tried);
}

// With uncertainties so small that the formula is straight within them, the trials have to say that first order is
// enough. Where the first derivatives cancel, only smaller ones make it so.
TEST(UncertaintyPeer, FirstOrderIsThatOfTrials) {
    const int count = SoakCount(100);
    std::istringstream lines = PeerLines(count);
    int tried = 0;
    for (std::string line; std::getline(lines, line); ++tried) {
        PeerLine peer(line);
        if (peer.uncertainty < 1e-3 * peer.scale) continue;  // all of it cancels
        peer.options.coverageFactor = 2.0;
        qel::MonteCarloOptions options;
        options.trials = 100'000;
        options.correlations = peer.options.correlations;
        const qel::Formula formula = peer.inputs.Parsed(peer.formula);
        bool isEnough = false;
        for (double smaller = 1e-3; !isEnough && smaller >= 1e-7; smaller *= 1e-2) {
            std::vector<qel::UncertainInput> inputs = peer.inputs.inputs;
            for (qel::UncertainInput& input : inputs) input.components[0].uncertainty *= smaller;
            qel::FormulaError error;
            const auto budget = qel::PropagateUncertainty(formula, inputs, peer.options, error);
            const auto trials = qel::PropagateDistributions(formula, inputs, options, error);
            ASSERT_TRUE(budget && trials) << line << "\n" << error.Text(peer.formula);
            isEnough = qel::ValidateFirstOrder(*budget, *trials).value().isEnough;
        }
        EXPECT_TRUE(isEnough) << line;
    }
    Tried("formulas by trials", tried);
}
