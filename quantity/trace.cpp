#include "qellib10/quantity/trace.h"

#include <array>
#include <charconv>

#include "qellib10/quantity/trace_computation.h"

namespace qel {
namespace {

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
    if (m_rounded) {
        shown.value = m_rounded->rounded;
        return WithUnit(shown.PlainText(), part->unit);
    }
    return WithUnit(shown.Text(), part->unit);
}

std::string Trace::ResultWithUncertainty() const {
    const TracePart* const part = Result();
    if (part == nullptr || !m_roundedUncertainty) return ResultText();
    return ResultText() + " ± " + WithUnit(m_roundedUncertainty->PlainText(), part->unit) +
           " (k = " + Shortest(part->budget->coverageFactor) + ')';
}

}  // namespace qel
