#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/unit.h"

namespace qel {

/// A formula whose numbers have units: its conversions are steps like any others, so that each way of evaluating it
/// carries them out.
struct BoundFormula {
    FormulaProgram program;
    Unit unit;  ///< of the result; 1 of a condition
};

/// Checks the dimensions of a formula and converts where units differ only by a factor: the right operand to the unit
/// of the left one, the arguments of min, max, mean and sum to that of the first, the second branch of an if to that of
/// the first.
///
///     a number of the formula       has the unit 1; so 5 is added to no volume. A 0 as an operand has any unit, except
///                                   temperatures such as °C
///     a number and a ratio          are added where the ratio has no factor or was computed: 1 - m1/m2 in g/g, but not
///                                   1 - w in %(m/m)
///     a computed ratio              of two like units is a number or what was divided, as is asked for: m1/m2 is one
///                                   or the other, V * (m1/m2) is added to V, and m1/(m2*t) converts to 1/h and to
///                                   mg/(g*h). A stated one, such as %(m/m), stays what it is
///     exp, ln, log10, log2          need a ratio, and the argument becomes a plain number
///     x ^ n                         of a unit needs n written as a whole number or as a half: 2, -1, 0.5
///     round                         rounds the number in the unit that it has
///     °C - °C                       is a difference in K; °C + K and °C - K are °C; nothing else is computed with °C,
///                                   but they are compared, and min, max, mean and if take them
///     K that was computed           by + - * / ^ abs sqrt sum becomes no °C and is compared with none, since it may be
///                                   a difference; K of a variable, also through min, max, mean, if and round, does
///
/// @param units of the variables, by position in the scope
/// @param wanted of the result; without one it is what follows
/// @return nothing where dimensions differ; @p error has the kind kUnit and the place
std::optional<BoundFormula> BindUnits(const FormulaProgram& program, std::span<const Unit> units,
                                      const std::optional<Unit>& wanted, FormulaError& error);

}  // namespace qel
