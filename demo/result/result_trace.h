#pragma once

#include <string>

#include <qellib10/qellib10.h>
#include <qellib10/quantity.h>

#include "demo/method/settings.h"

namespace titration {

struct Result;

/// Computes a result a second time, in decimal numbers, from the values that the first computation has used: with each
/// step, the rule of rounding, and the uncertainty. What went wrong is in Trace::Fault.
/// @param variables with those used marked; rounded, where the list rounds them
/// @param endPoint whose uncertainty is used where the settings name it
qel::Trace TraceOf(const Settings& settings, const CCalcVariableList& variables, const qel::CurveResult& endPoint);

/// The result is rounded as a binary number, which counts what is below a half by up to a thousandth of its last place
/// as the half. So it may differ from the rounded value of its trace; the result is what counts.
/// @return "in binary numbers; in decimal ones it is 2.349"; empty where both are the same
std::string RoundingRemark(const Result& result);

/// @throws Failure if the two computations differ by more than that, if there is no trace, and if it has no uncertainty
/// although the method gives some for values that the formula uses, or its limits cannot be decided by their rule
void RequireTrace(const Result& result);

/// "± 0.25 g/L (k = 2)"; empty without an uncertainty.
std::string UncertaintyText(const Result& result);
/// "passed by guarded acceptance, w = 1 U"; empty without limits, and without a trace.
std::string DecisionText(const Result& result);
/// "half away from zero, 1 decimal place"; empty without a trace.
std::string RuleText(const Result& result);

}  // namespace titration
