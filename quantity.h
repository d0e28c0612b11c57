#pragma once

// The public headers of the component quantity: formulas, rounding and units, over the core.
#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/platform/decimal/decimal_functions.h"
#include "qellib10/platform/statistics/student.h"
#include "qellib10/quantity/calculation.h"
#include "qellib10/quantity/exact_result.h"
#include "qellib10/quantity/formula.h"
#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_scope.h"
#include "qellib10/quantity/formula_set.h"
#include "qellib10/quantity/monte_carlo.h"
#include "qellib10/quantity/reading.h"
#include "qellib10/quantity/rounding_rule.h"
#include "qellib10/quantity/trace.h"
#include "qellib10/quantity/uncertainty.h"
#include "qellib10/quantity/uncertainty_budget.h"
