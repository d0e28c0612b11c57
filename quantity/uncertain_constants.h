#pragma once

#include <new>
#include <optional>
#include <span>
#include <vector>

#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/uncertainty.h"

namespace qel {

/// Whether a program names constants that are not exact, such as const.u.
bool HasUncertainConstants(const FormulaProgram& program);

/// The program with such constants as variables, each at a position after those of @p inputs, which get their values
/// and standard uncertainties. Each is its own source in all formulas, "const.u"; that some constants are correlated
/// is not regarded.
/// @throws FormulaError where an input is missing
FormulaProgram WithUncertainConstants(FormulaProgram program, std::vector<UncertainInput>& inputs);

/// What @p compute makes of a program and its inputs, with the constants that are not exact among them.
/// @return nothing where it threw a FormulaError, which @p error gets, or memory ran out
template <class Compute>
auto ComputedWithConstants(const FormulaProgram& program, std::span<const UncertainInput> inputs, FormulaError& error,
                           Compute compute) -> std::optional<decltype(compute(program, inputs))> {
    try {
        if (!HasUncertainConstants(program)) return compute(program, inputs);
        std::vector<UncertainInput> all(inputs.begin(), inputs.end());
        const FormulaProgram varied = WithUncertainConstants(program, all);
        return compute(varied, all);
    } catch (const FormulaError& failure) {
        error = failure;
    } catch (const std::bad_alloc&) {
        error = {FormulaError::Kind::kUncertainty, 0, 0, "no memory", {}, {}};  // a text that needs none
    }
    return {};
}

}  // namespace qel
