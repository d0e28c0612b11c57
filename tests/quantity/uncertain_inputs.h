#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "qellib10/quantity/uncertainty_budget.h"

/// Inputs of a test: the scope that names them, and the formulas over it.
struct UncertainInputs {
    explicit UncertainInputs(std::vector<qel::UncertainInput> all) : inputs(std::move(all)) {
        for (const qel::UncertainInput& input : inputs) scope.Add(input.name);
    }

    qel::Formula Parsed(const std::string& text) const {
        qel::FormulaError error;
        std::optional<qel::Formula> formula = qel::Formula::Parse(text, scope, error);
        if (!formula) throw std::runtime_error(error.Text(text));
        return *formula;
    }

    std::vector<qel::UncertainInput> inputs;
    qel::FormulaScope scope;
};

/// An input with a standard uncertainty.
inline qel::UncertainInput Input(const std::string& name, double value, double uncertainty,
                                 const std::string& source = "",
                                 double degreesOfFreedom = qel::UncertaintyComponent::kInfinite) {
    return {name, value, {qel::UncertaintyComponent::Standard(uncertainty, source, degreesOfFreedom).value()}};
}
