#include "qellib10/quantity/trace.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "qellib10/quantity/shown_number.h"
#include "qellib10/quantity/trace_computation.h"
#include "qellib10/quantity/traced_calculation.h"
#include "qellib10/quantity/value_text.h"

namespace qel {
namespace {

std::string WithUnit(const std::string& text, const std::string& unit) { return text + AfterValue(unit); }

std::string Shortest(double value) {
    std::array<char, 32> text;
    return {text.data(),
            std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 4).ptr};
}

}  // namespace

Trace Trace::Of(const Calculation& calculation, unsigned threads) {
    Trace trace;
    trace.m_calculation = AsTraced(calculation);
    trace.m_engine = QELLIB10_QUANTITY_VERSION;
    TraceComputation(trace, threads).Run();
    return trace;
}

std::string Trace::ResultText() const {
    const TracePart* const part = Result();
    if (part == nullptr) return {};
    ExactResult shown = *part->result;
    if (!shown.IsNumberOrLimit()) return shown.cause ? shown.Text() + ": " + NameOf(*shown.cause) : shown.Text();
    if (m_rounded) shown.value = m_rounded->rounded;
    return WithUnit(ShownResult(shown, m_rounded.has_value()), part->unit);
}

// Positions after the inputs are those of the helpers, which are variables of the other formulas.
std::string Trace::NameOf(std::size_t position) const {
    const std::vector<CalculationInput>& inputs = m_calculation.inputs;
    if (position < inputs.size()) return inputs[position].name;
    const std::size_t helper = position - inputs.size();
    return helper < m_calculation.helpers.size() ? m_calculation.helpers[helper].name : m_calculation.result.name;
}

std::string Trace::ResultWithUncertainty() const {
    const TracePart* const part = Result();
    if (part == nullptr || !m_roundedUncertainty) return ResultText();
    const std::string factor = " (k = " + Shortest(part->budget->coverageFactor) + ')';
    const Decimal &value = m_rounded ? m_rounded->rounded : part->result->value, &uncertainty = *m_roundedUncertainty;
    const int power = value.IsZero() ? uncertainty.Magnitude() : std::max(value.Magnitude(), uncertainty.Magnitude());
    if (IsPlain(power)) return ResultText() + " ± " + WithUnit(uncertainty.PlainText(), part->unit) + factor;
    if (m_rounded && value.IsZero()) return ResultText() + " ± " + WithUnit(uncertainty.Text(), part->unit) + factor;
    // One power of ten for both.
    DecimalFlags exact;
    const Decimal scale = Decimal::Scaled(1, -power, exact);
    const std::string both = (value.IsZero() ? Decimal() : Multiply(value, scale, exact)).PlainText() + " ± " +
                             Multiply(uncertainty, scale, exact).PlainText();
    return WithUnit('(' + both + ")E" + (power < 0 ? "" : "+") + std::to_string(power), part->unit) + factor;
}

}  // namespace qel
