#pragma once

#include <cstddef>
#include <unordered_map>

#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/formula_token.h"

namespace qel {

/// Puts a program together, step by step, and counts how many operands are on the stack at once.
class ProgramBuilder {
public:
    ProgramBuilder() { m_program.steps.reserve(kUsual); }

    /// @param at its place in the text
    /// @param change of the number of operands by this step
    void Add(FormulaOperation operation, const FormulaToken& at, std::size_t index, int change);
    void AddNumber(const WrittenNumber& number, const FormulaToken& at);
    /// @param position in the scope
    void AddVariable(std::size_t position, const FormulaToken& at);
    void AddRounding(const RoundingRule& rule, const FormulaToken& at);

    /// Adds a jump forwards. @return it, for LandHere
    std::size_t AddJump(FormulaOperation operation, const FormulaToken& at, int change);
    /// The jump goes on at the step that is added next.
    void LandHere(std::size_t jump);
    /// What follows is carried out instead of what gave an operand.
    void Forget() { --m_stack; }

    /// @param position, length of the whole in the text
    FormulaProgram Finish(bool isTruth, std::size_t position, std::size_t length);

private:
    static constexpr std::size_t kUsual = 32;  // steps

    std::size_t SlotOf(std::size_t position);

    FormulaProgram m_program;
    std::unordered_map<std::size_t, std::size_t>
        m_slots;  // of variables after the first ones, by position in the scope
    std::size_t m_stack = 0;
};

}  // namespace qel
