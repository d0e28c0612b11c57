#pragma once

#include <optional>

#include "qellib10/quantity/quantity_formula.h"
#include "qellib10/quantity/trace.h"
#include "qellib10/quantity/trace_uncertainty.h"

namespace qel {

/// What follows the last formula of a trace: trials, rounding, and the decision at the limits. What was asked for and
/// cannot be given is a remark.
class TraceConclusion {
public:
    /// @param trace with the part of its result, and no fault
    explicit TraceConclusion(Trace& trace) : m_trace(trace), m_part(trace.m_parts.back()) {}

    /// @param result its formula
    void Draw(const QuantityFormula& result, const TraceUncertainty& uncertainty, unsigned threads);

private:
    void TryOut(const QuantityFormula& result, const TraceUncertainty& uncertainty, unsigned threads);
    void RemarkKink();
    void Round();
    std::optional<Decimal> RoundedUncertainty(const Decimal& expanded) const;
    void Decide();

    Trace& m_trace;
    const TracePart& m_part;
};

}  // namespace qel
