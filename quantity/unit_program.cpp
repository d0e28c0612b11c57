#include "qellib10/quantity/unit_program.h"

#include <algorithm>
#include <utility>

namespace qel {

UnitProgram::UnitProgram(const FormulaProgram& source)
    : m_program{{},           source.numbers, source.rules,    source.variables,
                source.stack, source.isTruth, source.position, source.length} {}

void UnitProgram::AddNumber(std::vector<FormulaStep>& steps, const Decimal& number, FormulaOperation operation,
                            bool isExact, const FormulaStep& place) {
    const auto index = static_cast<std::uint32_t>(m_program.numbers.size());
    m_program.numbers.push_back({number, number.ToDouble(), !isExact});
    steps.push_back({FormulaOperation::kNumber, index, place.position, place.length});
    steps.push_back({operation, 0, place.position, place.length});
}

void UnitProgram::Convert(std::size_t end, const UnitConversion& conversion, const FormulaStep& place) {
    if (conversion.IsNothing()) return;
    const auto add = [&](std::vector<FormulaStep>& steps, const Decimal& number, FormulaOperation operation,
                         const Decimal& neutral) {
        if (number != neutral) AddNumber(steps, number, operation, conversion.isExact, place);
    };
    std::vector<FormulaStep> steps;
    add(steps, conversion.before, FormulaOperation::kAdd, Decimal(0));
    add(steps, conversion.numerator, FormulaOperation::kMultiply, Decimal(1));
    add(steps, conversion.denominator, FormulaOperation::kDivide, Decimal(1));
    add(steps, conversion.after, FormulaOperation::kAdd, Decimal(0));
    m_isConverted = true;
    if (end == End())
        m_steps.insert(m_steps.end(), steps.begin(), steps.end());
    else
        m_insertions.push_back({end, std::move(steps)});
}

// A jump to a step goes to what was inserted before it: what is inserted belongs to the operand that ends there.
FormulaProgram UnitProgram::Finish() {
    std::ranges::stable_sort(m_insertions, {}, &Insertion::at);
    std::vector<FormulaStep> steps;
    std::vector<std::uint32_t> places;
    auto next = m_insertions.begin();
    for (std::size_t i = 0; i <= m_steps.size(); ++i) {
        places.push_back(static_cast<std::uint32_t>(steps.size()));
        for (; next != m_insertions.end() && next->at == i; ++next)
            steps.insert(steps.end(), next->steps.begin(), next->steps.end());
        if (i < m_steps.size()) steps.push_back(m_steps[i]);
    }
    for (FormulaStep& step : steps)
        if (Jumps(step.operation)) step.index = places[step.index];
    m_program.steps = std::move(steps);
    if (m_isConverted) ++m_program.stack;  // for the number, next to the operand that is converted
    return std::move(m_program);
}

}  // namespace qel
