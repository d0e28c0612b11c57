#include "qellib10/quantity/trace.h"

#include <array>
#include <charconv>

#include "qellib10/quantity/trace_computation.h"

namespace qel {
namespace {

// Powers of ten of results that are shown without an exponent, where no rule says how.
constexpr int kLeastPlain = -6, kMostPlain = 20;

std::string WithUnit(const std::string& text, const std::string& unit) {
    return unit.empty() ? text : text + ' ' + unit;
}

std::string Shortest(double value) {
    std::array<char, 32> text;
    return {text.data(),
            std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, 4).ptr};
}

}  // namespace

Trace Trace::Of(const Calculation& calculation, unsigned threads) {
    Trace trace;
    trace.m_calculation = calculation;
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
    // Of an underflow there may be thousands of zeros.
    const int magnitude = shown.value.IsZero() ? shown.value.Exponent() : shown.value.Magnitude();
    const bool isPlain = m_rounded || (magnitude >= kLeastPlain && magnitude <= kMostPlain);
    return WithUnit(isPlain ? shown.PlainText() : shown.Text(), part->unit);
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
    return ResultText() + " ± " + WithUnit(m_roundedUncertainty->PlainText(), part->unit) +
           " (k = " + Shortest(part->budget->coverageFactor) + ')';
}

}  // namespace qel
