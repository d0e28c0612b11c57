#include "calc_exact.h"

#include "calc_input.h"
#include "tool.h"

namespace tool {
namespace {

constexpr const char* kGroup = "Results that can be computed again";

std::string ReadAll(const std::string& path) {
    return OnFile(path, [&] {
        CQFile file;
        Open(file, path, CFile::modeRead | CFile::shareDenyWrite);
        constexpr ULONGLONG kLongest = 64 << 20;
        if (file.GetLength() > kLongest) throw Failure("is too large for a trace", kTooLarge);
        std::string bytes(static_cast<std::size_t>(file.GetLength()), '\0');
        bytes.resize(file.Read(bytes.data(), static_cast<UINT>(bytes.size())));
        return bytes;
    });
}

qel::RoundingRule RuleOf(const std::string& name) {
    const std::optional<qel::RoundingRule> rule = qel::RoundingRule::OfName(name);
    if (!rule)
        throw CLI::ValidationError(
            "--round: \"" + name + "\" is no rule: half even, half away from zero, truncation or " +
            "away from zero, then for example \", 2 decimal places\", \", 3 significant digits\", " +
            "\", multiples of 0.05\" or \", 2 digits of the uncertainty\"");
    return *rule;
}

// The sentence has the formula's place.
Failure FaultOf(const qel::Trace& trace) {
    return Failure(Shown(trace.Fault()->name + ": " + trace.Fault()->sentence), kFailed);
}

// A trace that a file has, computed again.
qel::TraceCheck Checked(const std::string& path) {
    const std::string json = ReadAll(path);
    std::string error;
    const std::optional<qel::TraceCheck> check = qel::CheckTrace(json, error);
    if (!check) throw Failure(Shown(path) + ": " + Shown(error), kUnknown);
    return *check;
}

void Report(const std::string& path, const qel::TraceCheck& check) {
    if (check.differences.empty()) return;
    std::string lines;
    for (const std::string& difference : check.differences) lines += Shown(difference) + '\n';
    Print(lines);
    throw Failure(Shown(path) + ": " + Count(check.differences.size(), "difference", "differences") +
                      " from what version " + Shown(check.recordedEngine) + " computed",
                  kChanged);
}

}  // namespace

void ExactCalculation::AddTo(CLI::App& command) {
    CLI::Option* const exact =
        command.add_flag("--exact", isExact, "Exact decimals, functions, limits as values, uncertainties");
    const auto add = [&](CLI::Option* option) {
        option->group(kGroup)->needs(exact);
        return option;
    };
    exact->group(kGroup);
    add(command.add_option("--name", name, "Name of the result"));
    add(command.add_option("--unit", unit, "Unit that the result is to have"));
    add(command.add_option("--define", helpers, "A formula that others use by its name"))
        ->type_name("NAME=FORMULA")
        ->allow_extra_args(false);
    add(command.add_option("--round", rule, "Rule of rounding, such as \"half even, 2 decimal places\""))
        ->type_name("RULE");
    add(command.add_option("--substitute", substitution, "For limits in min, max and mean"))
        ->check(CLI::IsMember({"none", "zero", "half of the limit", "limit"}));
    CLI::Option* const coverage =
        add(command.add_option("--coverage", probability, "Probability of the expanded uncertainty"));
    add(command.add_option("--k", factor, "Coverage factor, in place of a probability"))->excludes(coverage);
    add(command.add_flag("--kept", isKept, "The grammar of the older evaluator"));
    CLI::Option* const trace =
        command.add_option("--trace", tracePath, "Compute a recorded trace again and compare each digit");
    trace->group(kGroup)->type_name("FILE")->excludes(exact);
    command.add_option("--write-trace", newTracePath, "Write the trace, as JSON")->group(kGroup)->type_name("FILE");
    command.add_flag("--steps", showsSteps, "Show the whole trace")->group(kGroup);
    command.add_option("--language", language, "Of the trace: en or ja")
        ->group(kGroup)
        ->check(CLI::IsMember({"en", "ja"}));
}

void ExactCalculation::Run(const std::string& formula, const std::vector<std::string>& values, bool json) const {
    qel::Trace trace;
    if (!tracePath.empty()) {
        qel::TraceCheck check = Checked(tracePath);
        Report(tracePath, check);
        trace = std::move(check.computed);
    } else {
        qel::Calculation calculation;
        calculation.result = {name, formula, unit};
        calculation.isKept = isKept;
        for (const std::string& helper : helpers) calculation.helpers.push_back(FormulaOf(helper));
        for (const std::string& value : values) calculation.inputs.push_back(InputOf(value));
        calculation.substitution = *qel::LimitSubstitutionOf(substitution);
        if (!rule.empty()) calculation.rule = RuleOf(rule);
        calculation.uncertainty.coverageProbability = probability;
        if (factor != 0.0) calculation.uncertainty.coverageFactor = factor;
        trace = qel::Trace::Of(calculation);
    }
    if (!newTracePath.empty()) {
        RequireFolderOf(newTracePath);
        const std::string text = trace.Json();
        WriteAsAWhole(newTracePath, true, [&](const qel::Descriptor& file) {
            qel::WriteFully(file, std::as_bytes(std::span(text)), newTracePath);
        });
    }
    if (json)
        Print(trace.Json());
    else if (showsSteps)
        Print(trace.Text(language == "ja" ? qel::TraceLanguage::kJapanese : qel::TraceLanguage::kEnglish));
    else if (trace.Fault() == nullptr)
        Print(Shown(trace.ResultWithUncertainty()) + '\n');
    if (trace.Fault() != nullptr) throw FaultOf(trace);
}

}  // namespace tool
