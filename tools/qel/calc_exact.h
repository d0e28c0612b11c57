#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tool {

/// The options of qel calc for results that can be computed again, in a group of their own.
struct ExactCalculation {
    bool isExact = false;

    std::string name = "RESULT", unit, rule, substitution = "none", language = "en";
    std::string tracePath, newTracePath, calculationPath;
    std::vector<std::string> helpers;
    double probability = 0.9545;
    std::optional<double> factor;
    std::vector<std::string> correlations;
    std::string lower, upper, decision;
    std::size_t trials = 0;
    std::uint64_t seed = 1;
    bool isKept = false, comparesUnrounded = false, showsSteps = false;

    void AddTo(CLI::App& command);
    /// Whether they, and not the older evaluator, are asked for.
    bool IsWanted() const { return isExact || !tracePath.empty() || !calculationPath.empty(); }

    /// @param formula and @p values of the command line
    /// @throws Failure
    void Run(const std::string& formula, const std::vector<std::string>& values, bool json) const;
};

}  // namespace tool
