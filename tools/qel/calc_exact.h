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
    std::string tracePath, newTracePath;
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
    /// @throws CLI::ValidationError for an option that the older evaluator would ignore
    bool IsWanted() const;

    /// @param formula and @p values of the command line
    /// @param archive file of an archived list with more values; empty for none
    /// @throws Failure; CLI::ValidationError also for an option that has no effect
    void Run(const std::string& formula, const std::string& archive, const std::vector<std::string>& values,
             bool json) const;

private:
    using Options = std::vector<const CLI::Option*>;
    Options m_ofTraces, m_ofUncertainties, m_ofLimits;  // without these, the options have no effect
};

}  // namespace tool
