#pragma once

#include <optional>
#include <span>
#include <vector>

#include "qellib10/quantity/exact_result.h"
#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/reading.h"

namespace qel {

/// Takes note of each step that is carried out; of nothing without a list.
class StepLog {
public:
    explicit StepLog(std::vector<ExactStep>* steps) : m_steps(steps) {}

    bool IsKept() const { return m_steps != nullptr; }
    /// What a list read before it rounded the value of the variable.
    void AddBeforeRounding(const FormulaStep& step, const Reading& reading);
    void Add(const FormulaStep& step, const ExactResult& result, const DecimalFlags& happened);

private:
    std::vector<ExactStep>* m_steps;
};

/// Whether each of the program's readings is a number.
bool AreNumbers(const FormulaProgram& program, std::span<const Reading> readings);

/// In exact numbers. @p readings by position in the scope, one for each that the program names. @throws FormulaError
ExactResult EvaluateNumbers(const FormulaProgram& program, std::span<const Reading> readings, StepLog log);

/// In intervals, of which the numbers are a part. @throws FormulaError
ExactResult EvaluateIntervals(const FormulaProgram& program, std::span<const Reading> readings,
                              const ExactOptions& options, StepLog log);

/// Either, by what the readings are; nothing where EvaluateExactly of a formula has none.
std::optional<ExactResult> EvaluateProgram(const FormulaProgram& program, std::span<const Reading> readings,
                                           const ExactOptions& options, FormulaError& error,
                                           std::vector<ExactStep>* steps);

}  // namespace qel
