#include "demo/result/result_trace.h"

#include <algorithm>
#include <cmath>

#include "demo/result/calculation.h"
#include "demo/support/failure.h"

namespace titration {
namespace {

constexpr double kHalf = 0.501;             // what is rounded up, in units of the last place
constexpr double kBinaryPrecision = 1e-12;  // relative, of a result in doubles

qel::UncertaintyComponent OfCurve(const qel::CurveResult& endPoint) {
    const auto component =
        qel::UncertaintyComponent::Standard(endPoint.uncertainty, "curve", endPoint.degreesOfFreedom);
    if (!component) throw Failure("the end point's uncertainty by the curve is not a number");
    return *component;
}

qel::CalculationInput InputOf(const Settings& settings, const std::string& name, const qel::Reading& reading,
                              const qel::CurveResult& endPoint) {
    qel::CalculationInput input;
    input.name = name;
    input.reading = reading;
    input.origin = name == settings.endPoint ? "end point of the curve" : "method";
    const auto unit = std::ranges::find(settings.units, name, &NamedUnit::name);
    if (unit != settings.units.end()) input.unit = unit->unit;
    const auto given = std::ranges::find(settings.uncertainties, name, &NamedUncertainty::name);
    if (given == settings.uncertainties.end()) return input;
    input.components = given->stated.components;
    if (given->stated.hasThatOfCurve) input.components.push_back(OfCurve(endPoint));
    return input;
}

// The result's text is what counts, so its limits are compared with the rounded value.
std::optional<qel::ResultLimits> LimitsOf(const Settings& settings) {
    if (!settings.low && !settings.high) return {};
    qel::ResultLimits limits;
    if (settings.low) limits.lower = qel::Decimal::OfDouble(*settings.low);
    if (settings.high) limits.upper = qel::Decimal::OfDouble(*settings.high);
    limits.rule = settings.rule;
    return limits;
}

// Without units of inputs that of the result is only shown; with them it is checked, and converted to.
qel::Calculation CalculationOf(const Settings& settings, const CCalcVariableList& variables,
                               const qel::CurveResult& endPoint) {
    qel::Calculation calculation;
    calculation.result = {settings.name, settings.formula, settings.unit};
    calculation.isKept = true;
    calculation.rule = qel::RoundingRule::ToPlaces(qel::DecimalRounding::kHalfAwayFromZero, settings.digits);
    calculation.limits = LimitsOf(settings);
    const auto readings = qel::ReadingsOf(variables, qel::RoundedList::kAccept);
    CCalcVariable variable;
    for (int i = 0; variables.GetVariableData(i, &variable) != 0; ++i) {
        if (variable.m_nUse == 0) continue;
        calculation.inputs.push_back(
            InputOf(settings, std::string(variable.m_szName), readings->at(static_cast<std::size_t>(i)), endPoint));
    }
    return calculation;
}

const qel::Decimal& Exact(const Result& result) { return result.trace.Rounded()->unrounded; }

bool HasUncertainInputs(const qel::Calculation& calculation) {
    return std::ranges::any_of(calculation.inputs, [](const auto& input) { return !input.components.empty(); });
}

bool HasUnits(const qel::Calculation& calculation) {
    return std::ranges::any_of(calculation.inputs, [](const auto& input) { return !input.unit.empty(); });
}

}  // namespace

qel::Trace TraceOf(const Settings& settings, const CCalcVariableList& variables, const qel::CurveResult& endPoint) {
    return qel::Trace::Of(CalculationOf(settings, variables, endPoint));
}

std::string RoundingRemark(const Result& result) {
    if (!result.trace.Rounded()) return "";
    qel::DecimalFlags flags;
    const qel::Decimal& rounded = result.trace.Rounded()->rounded;
    if (qel::Decimal::OfText(result.text, flags) == rounded) return "";
    return "in binary numbers; in decimal ones it is " + rounded.PlainText();
}

void RequireTrace(const Result& result) {
    const qel::Trace& trace = result.trace;
    if (trace.Fault() != nullptr) throw Failure("in decimal numbers there is no result: " + trace.Fault()->sentence);
    if (!trace.Rounded() || !trace.Rounded()->rounded.IsFinite())
        throw Failure("in decimal numbers the result has more digits than can be kept");
    const double unit = std::pow(10.0, trace.Rounded()->rounded.Exponent()), exact = Exact(result).ToDouble();
    if (std::abs(result.value - exact) > kHalf * unit + kBinaryPrecision * std::abs(exact))
        throw Failure("binary numbers give " + result.text + ", and decimal ones " + trace.ResultText() +
                      ": the formula loses digits, as by the difference of two large values" +
                      (HasUnits(trace.Request()) ? ", or it does not have a factor that [units] need" : ""));
    if (!trace.Result()->budget && HasUncertainInputs(trace.Request()))
        throw Failure("the result has no uncertainty: " + trace.Result()->withoutBudget + "; see [uncertainties]");
    if (trace.Request().limits && !trace.Decision())
        throw Failure("the limits are not decided: " + trace.Remarks().back() + "; see [limits] rule");
}

std::string UncertaintyText(const Result& result) {
    const qel::TracePart* const part = result.trace.Result();
    if (part == nullptr || !part->budget || !result.trace.RoundedUncertainty()) return "";
    CString factor;
    factor.Format(" (k = %.4g)", part->budget->coverageFactor);
    return "± " + result.trace.RoundedUncertainty()->PlainText() + ' ' + result.unit + std::string(factor);
}

std::string DecisionText(const Result& result) {
    if (!result.trace.Decision()) return "";
    const qel::ResultDecision& decision = *result.trace.Decision();
    return std::string(decision.isPassed ? "passed" : "not passed") + " by " +
           result.trace.Request().limits->rule.Name();
}

std::string RuleText(const Result& result) {
    const auto& rule = result.trace.Request().rule;
    return rule ? rule->Name() : "";
}

}  // namespace titration
