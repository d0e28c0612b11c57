#include "qellib10/quantity/uncertain_constants.h"

#include <algorithm>

#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/formula_double.h"

namespace qel {
namespace {

bool IsUncertain(const FormulaStep& step) {
    return step.operation == FormulaOperation::kConstant && FormulaConstants()[step.index].uncertainty != "0";
}

UncertainInput InputOf(std::size_t constant) {
    const FormulaConstant& row = FormulaConstants()[constant];
    DecimalFlags ignored;
    const std::string name = "const." + std::string(row.name);
    UncertaintyComponent component;
    component.source = name;
    component.uncertainty = component.stated = Decimal::OfText(row.uncertainty, ignored).ToDouble();
    return {name, ConstantValue(constant), {component}};
}

}  // namespace

bool HasUncertainConstants(const FormulaProgram& program) { return std::ranges::any_of(program.steps, IsUncertain); }

FormulaProgram WithUncertainConstants(FormulaProgram program, std::vector<UncertainInput>& inputs) {
    const auto isMissing = [&](std::size_t position) { return position >= inputs.size(); };
    if (std::ranges::any_of(program.variables, isMissing))  // or a constant would be taken for it
        throw FormulaError{FormulaError::Kind::kReading, 0, 0, "values that are not there", {}, {}};
    std::vector<std::pair<std::uint32_t, std::uint32_t>> slots;  // of constants
    for (FormulaStep& step : program.steps) {
        if (!IsUncertain(step)) continue;
        auto slot = std::ranges::find(slots, step.index, &std::pair<std::uint32_t, std::uint32_t>::first);
        if (slot == slots.end()) {
            slots.emplace_back(step.index, static_cast<std::uint32_t>(program.variables.size()));
            slot = slots.end() - 1;
            program.variables.push_back(inputs.size());
            inputs.push_back(InputOf(step.index));
        }
        step = {FormulaOperation::kVariable, slot->second, step.position, step.length};
    }
    return program;
}

}  // namespace qel
