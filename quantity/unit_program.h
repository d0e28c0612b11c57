#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/unit.h"

namespace qel {

/// A copy of a program that grows by conversions: steps that add a number and multiply by one.
class UnitProgram {
public:
    explicit UnitProgram(const FormulaProgram& source);

    /// Where the next step goes.
    std::size_t End() const { return m_steps.size(); }
    void Add(const FormulaStep& step) { m_steps.push_back(step); }
    /// Sets the target of a jump to the next step.
    void LandHere(std::size_t jump) { m_steps[jump].index = static_cast<std::uint32_t>(End()); }
    /// Converts the operand that the steps before @p end give, also where others have been added since. At the end the
    /// steps are added now: a jump that lands there before passes through them, one that lands there later does not.
    /// @param place of the operand in the text
    void Convert(std::size_t end, const UnitConversion& conversion, const FormulaStep& place);

    FormulaProgram Finish();

private:
    struct Insertion {
        std::size_t at;
        std::vector<FormulaStep> steps;
    };

    void AddNumber(std::vector<FormulaStep>& steps, const Decimal& number, FormulaOperation operation, bool isExact,
                   const FormulaStep& place);

    FormulaProgram m_program;  // without steps until Finish
    std::vector<FormulaStep> m_steps;
    std::vector<Insertion> m_insertions;
    bool m_isConverted = false;
};

}  // namespace qel
