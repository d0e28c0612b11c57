#pragma once

#include "qellib10/platform/json/json_value.h"
#include "qellib10/quantity/calculation_json.h"
#include "qellib10/quantity/trace.h"

namespace qel {

constexpr const char* kTraceFormat = "qellib10-trace-1";

/// All of a trace that is computed.
JsonValue OutcomeOf(const Trace& trace);

}  // namespace qel
