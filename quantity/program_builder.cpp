#include "qellib10/quantity/program_builder.h"

#include <algorithm>
#include <utility>

namespace qel {

void ProgramBuilder::Add(FormulaOperation operation, const FormulaToken& at, std::size_t index, int change) {
    m_program.steps.push_back({operation, static_cast<std::uint32_t>(index), static_cast<std::uint32_t>(at.position),
                               static_cast<std::uint32_t>(at.length)});
    m_stack = change < 0 ? m_stack - static_cast<std::size_t>(-change) : m_stack + static_cast<std::size_t>(change);
    m_program.stack = std::max(m_program.stack, m_stack);
}

void ProgramBuilder::AddNumber(const WrittenNumber& number, const FormulaToken& at) {
    Add(FormulaOperation::kNumber, at, m_program.numbers.size(), 1);
    m_program.numbers.push_back(number);
}

void ProgramBuilder::AddVariable(std::size_t position, const FormulaToken& at) {
    Add(FormulaOperation::kVariable, at, SlotOf(position), 1);
}

// Most formulas have few variables, which are found faster without a map.
std::size_t ProgramBuilder::SlotOf(std::size_t position) {
    constexpr std::size_t kFew = 16;
    std::vector<std::size_t>& variables = m_program.variables;
    const auto few = variables.begin() + static_cast<std::ptrdiff_t>(std::min(variables.size(), kFew));
    const auto found = std::find(variables.begin(), few, position);
    if (found != few) return static_cast<std::size_t>(found - variables.begin());
    if (variables.size() >= kFew) {
        const auto [slot, isNew] = m_slots.emplace(position, variables.size());
        if (!isNew) return slot->second;
    }
    variables.push_back(position);
    return variables.size() - 1;
}

void ProgramBuilder::AddRounding(const RoundingRule& rule, const FormulaToken& at) {
    Add(FormulaOperation::kRound, at, m_program.rules.size(), 0);
    m_program.rules.push_back(rule);
}

std::size_t ProgramBuilder::AddJump(FormulaOperation operation, const FormulaToken& at, int change) {
    Add(operation, at, 0, change);
    return m_program.steps.size() - 1;
}

void ProgramBuilder::LandHere(std::size_t jump) {
    m_program.steps[jump].index = static_cast<std::uint32_t>(m_program.steps.size());
}

FormulaProgram ProgramBuilder::Finish(bool isTruth, std::size_t position, std::size_t length) {
    m_program.isTruth = isTruth;
    m_program.position = static_cast<std::uint32_t>(position);
    m_program.length = static_cast<std::uint32_t>(length);
    return std::move(m_program);
}

}  // namespace qel
