#include "qellib10/quantity/joined_program.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace qel {
namespace {

using Operation = FormulaOperation;

// How many more values are on the stack after a step. After the first branch of an if the second one gives the value.
std::ptrdiff_t GrowthBy(const FormulaStep& step) {
    if (TakesOne(step.operation) || step.operation == Operation::kAndThen || step.operation == Operation::kOrElse)
        return 0;
    if (TakesTwo(step.operation) || Jumps(step.operation)) return -1;
    return TakesMany(step.operation) ? 1 - static_cast<std::ptrdiff_t>(step.index) : 1;
}

class Joiner {
public:
    explicit Joiner(std::span<const FormulaProgram* const> others) : m_others(others) {}

    FormulaProgram Join(const FormulaProgram& whole) {
        FindOrder(whole);
        m_joined.isTruth = whole.isTruth;
        m_joined.position = whole.position;
        m_joined.length = whole.length;
        m_joined.others = m_order.size() - 1;
        for (std::size_t rank = 0; rank < m_order.size(); ++rank) Append(m_order[rank], rank);
        return std::move(m_joined);
    }

private:
    struct Visit {
        const FormulaProgram* program;
        const FormulaStep* place;  // of its name in the whole formula; null of that itself
        std::size_t position;      // in the scope, but for the whole
        std::size_t next = 0;      // step
    };

    const FormulaProgram* OtherAt(std::size_t position) const {
        return position < m_others.size() ? m_others[position] : nullptr;
    }

    void FindOrder(const FormulaProgram& whole) {
        std::vector<Visit> open = {{&whole, nullptr, 0}};
        while (!open.empty()) {
            Visit& visit = open.back();
            if (visit.next == visit.program->steps.size()) {
                if (visit.place != nullptr) m_indices[visit.position] = static_cast<std::uint32_t>(m_order.size());
                m_order.push_back(visit);
                open.pop_back();
                continue;
            }
            const FormulaStep& step = visit.program->steps[visit.next++];
            if (step.operation != Operation::kVariable) continue;
            const std::size_t position = visit.program->variables[step.index];
            const auto slot = static_cast<std::uint32_t>(m_joined.variables.size());
            if (!m_indices.emplace(position, slot).second) continue;
            if (const FormulaProgram* const other = OtherAt(position))
                open.push_back({other, visit.place != nullptr ? visit.place : &step, position});
            else
                m_joined.variables.push_back(position);
        }
    }

    void Append(const Visit& formula, std::size_t rank) {
        const FormulaProgram& program = *formula.program;
        const auto firstStep = static_cast<std::uint32_t>(m_joined.steps.size()),
                   firstNumber = static_cast<std::uint32_t>(m_joined.numbers.size()),
                   firstRule = static_cast<std::uint32_t>(m_joined.rules.size());
        auto height = static_cast<std::ptrdiff_t>(rank);  // of the stack
        for (FormulaStep step : program.steps) {
            const std::ptrdiff_t growth = GrowthBy(step);
            if (Jumps(step.operation)) step.index += firstStep;
            if (step.operation == Operation::kNumber) step.index += firstNumber;
            if (step.operation == Operation::kRound) step.index += firstRule;
            if (step.operation == Operation::kVariable) {
                const std::size_t position = program.variables[step.index];
                step.index = m_indices.at(position);
                if (OtherAt(position) != nullptr) {
                    step.operation = Operation::kEarlier;
                    step.index = static_cast<std::uint32_t>(height) - 1 - step.index;
                }
            }
            if (formula.place != nullptr) {
                step.position = formula.place->position;
                step.length = formula.place->length;
            }
            m_joined.steps.push_back(step);
            height += growth;
        }
        m_joined.numbers.insert(m_joined.numbers.end(), program.numbers.begin(), program.numbers.end());
        m_joined.rules.insert(m_joined.rules.end(), program.rules.begin(), program.rules.end());
        m_joined.stack = std::max(m_joined.stack, rank + program.stack);
    }

    std::span<const FormulaProgram* const> m_others;
    FormulaProgram m_joined;
    std::vector<Visit> m_order;                                // each formula after those that it needs
    std::unordered_map<std::size_t, std::uint32_t> m_indices;  // by position: slot of an input, place in the order
};

}  // namespace

FormulaProgram JoinedProgram(const FormulaProgram& whole, std::span<const FormulaProgram* const> others) {
    return Joiner(others).Join(whole);
}

}  // namespace qel
