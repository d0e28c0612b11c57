#include "calc_exact.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

#include "calc_input.h"
#include "tool.h"
#include "variables.h"

namespace tool {
namespace {

constexpr const char* kGroup = "Results that can be computed again";

unsigned Threads() { return std::max(std::thread::hardware_concurrency(), 1U); }

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

std::optional<qel::Decimal> LimitOf(const std::string& text) {
    if (text.empty()) return {};
    qel::DecimalFlags flags;
    const qel::Decimal limit = qel::Decimal::OfText(text, flags);
    if (!limit.IsFinite() || flags.isInexact) throw CLI::ValidationError('"' + text + "\" is no number");
    return limit;
}

// The sentence has the formula's place.
Failure FaultOf(const qel::Trace& trace) {
    const std::string& name = trace.Fault()->name;
    return Failure(Shown((name.empty() ? "" : name + ": ") + trace.Fault()->sentence), kFailed);
}

// The result, and what was asked for beside it, a line each.
std::string ShortForm(const qel::Trace& trace) {
    const bool showsLost = !trace.Rounded() && trace.Result()->result->flags.isInexact;
    std::string text = Shown(trace.ResultWithUncertainty()) + (showsLost ? " (inexact)\n" : "\n");
    if (const auto& decided = trace.Decision())
        text += std::string(decided->isPassed ? "passed" : "not passed") +
                (!decided->isUndecided               ? "\n"
                 : trace.Result()->result->IsLimit() ? ", its possible values are on both sides of a limit\n"
                                                     : ", the uncertainty reaches over a limit\n");
    if (const auto& check = trace.FirstOrder())
        text += std::string("first order is ") + (check->isEnough ? "enough" : "not enough") +
                (check->isStable ? "\n" : "; more trials are needed to be sure\n");
    for (const std::string& remark : trace.Remarks()) text += Shown(remark) + '\n';
    return text;
}

const CLI::Option* FirstGiven(const std::vector<const CLI::Option*>& options) {
    const auto given = std::ranges::find_if(options, [](const CLI::Option* each) { return !each->empty(); });
    return given == options.end() ? nullptr : *given;
}

// The variables of an archived list, and the inputs of the command line, which replace those of the same name. The
// evaluator ignores the case of names.
std::vector<qel::CalculationInput> Joined(const std::string& archive, std::vector<qel::CalculationInput> given) {
    if (archive.empty()) return given;
    const CCalcVariableList list = ReadVariables(archive, false);
    const auto readings = qel::ReadingsOf(list, qel::RoundedList::kRefuse);
    if (!readings) throw CLI::ValidationError("--from: the list rounds its values, so no result of them is exact");
    qel::FormulaScope names;
    for (const qel::CalculationInput& input : given) names.Add(input.name);
    std::vector<qel::CalculationInput> inputs;
    CCalcVariable variable;
    for (int i = 0; list.GetVariableData(i, &variable) != 0; ++i) {
        const std::string name = Utf8(variable.m_szName.View());
        if (!names.Find(name))
            inputs.push_back({name, (*readings)[static_cast<std::size_t>(i)], "", Shown(archive), {}});
    }
    std::ranges::move(given, std::back_inserter(inputs));
    return inputs;
}

bool HasUncertainty(const qel::Trace& trace) {
    return std::ranges::any_of(trace.Parts(), [](const qel::TracePart& part) {
        return part.budget.has_value() || !part.withoutBudget.empty();
    });
}

// A trace that a file has, computed again.
qel::TraceCheck Checked(const std::string& path) {
    const std::string json = ReadAll(path);
    std::string error;
    const std::optional<qel::TraceCheck> check = qel::CheckTrace(json, error, Threads());
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
    add(command.add_option("--correlation", correlations, "Correlation coefficient of two inputs with uncertainties"))
        ->type_name("A,B,R")
        ->allow_extra_args(false);
    add(command.add_option("--lower", lower, "What the result must not be below"))->type_name("NUMBER");
    add(command.add_option("--upper", upper, "What the result must not be above"))->type_name("NUMBER");
    add(command.add_option("--decision", decision, "Rule, such as \"guarded acceptance, w = 1 U\""))->type_name("RULE");
    add(command.add_flag("--unrounded", comparesUnrounded,
                         "Compare all digits with the limits, not the rounded value"));
    CLI::Option* const count =
        add(command.add_option("--trials", trials, "Monte Carlo trials that show whether first order is enough"));
    count->transform(WholeNumber(10'000, qel::MonteCarloOptions::kMostTrials))->type_name("N");
    add(command.add_option("--seed", seed, "Of the trials"))
        ->needs(count)
        ->transform(WholeNumber(0, std::numeric_limits<std::int64_t>::max()))
        ->type_name("N");
    add(command.add_flag("--kept", isKept, "The grammar of the older evaluator"));
    CLI::Option* const trace =
        command.add_option("--trace", tracePath, "Compute a recorded trace again and compare each digit");
    trace->group(kGroup)->type_name("FILE")->excludes(exact);
    for (const char* const other : {"--digits", "--check"})
        for (CLI::Option* const option : {exact, trace}) option->excludes(command.get_option(other));
    for (const char* const other : {"--from", "FORMULA", "NAME=VALUE"}) trace->excludes(command.get_option(other));
    command.add_option("--write-trace", newTracePath, "Write the trace, as JSON")->group(kGroup)->type_name("FILE");
    CLI::Option* const steps = command.add_flag("--steps", showsSteps, "Show the whole trace");
    steps->group(kGroup)->excludes(command.get_option("--json"));
    command.add_option("--language", language, "Of the trace: en or ja")
        ->group(kGroup)
        ->needs(steps)
        ->check(CLI::IsMember({"en", "ja"}));
    m_ofTraces = {command.get_option("--write-trace"), steps};
    m_ofUncertainties = {coverage, command.get_option("--k"), command.get_option("--correlation")};
    m_ofLimits = {command.get_option("--decision"), command.get_option("--unrounded")};
}

bool ExactCalculation::IsWanted() const {
    if (isExact || !tracePath.empty()) return true;
    if (const CLI::Option* const option = FirstGiven(m_ofTraces))
        throw CLI::ValidationError(option->get_name() + " requires --exact or --trace");
    return false;
}

void ExactCalculation::Run(const std::string& formula, const std::string& archive,
                           const std::vector<std::string>& values, bool json) const {
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
        calculation.inputs = Joined(archive, std::move(calculation.inputs));
        calculation.substitution = *qel::LimitSubstitutionOf(substitution);
        if (!rule.empty()) calculation.rule = RuleOf(rule);
        if (lower.empty() && upper.empty()) {
            if (const CLI::Option* const option = FirstGiven(m_ofLimits))
                throw CLI::ValidationError(option->get_name() + " requires --lower or --upper");
        } else {
            const auto named = decision.empty() ? std::optional(qel::DecisionRule::SimpleAcceptance())
                                                : qel::DecisionRule::OfName(decision);
            if (!named)
                throw CLI::ValidationError("--decision: \"" + decision +
                                           "\" is no rule: " + qel::DecisionRule::SimpleAcceptance().Name() + ", \"" +
                                           qel::DecisionRule::GuardedAcceptance().Name() + "\" or \"" +
                                           qel::DecisionRule::GuardedRejection().Name() + '"');
            calculation.limits = {LimitOf(lower), LimitOf(upper), *named, !comparesUnrounded};
        }
        calculation.trials = trials;
        calculation.seed = seed;
        if (!(probability > 0.0 && probability < 1.0))
            throw CLI::ValidationError("--coverage: a probability is between 0 and 1");
        if (factor && !(*factor > 0.0 && std::isfinite(*factor)))
            throw CLI::ValidationError("--k: a coverage factor is a number above 0");
        calculation.uncertainty.coverageProbability = probability;
        calculation.uncertainty.coverageFactor = factor;
        for (const std::string& correlation : correlations)
            calculation.uncertainty.correlations.push_back(CorrelationOf(correlation, calculation.inputs));
        trace = qel::Trace::Of(calculation, Threads());
        const CLI::Option* const option = FirstGiven(m_ofUncertainties);
        if (option != nullptr && trace.Fault() == nullptr && !HasUncertainty(trace))
            throw CLI::ValidationError(option->get_name() + ": no value has an uncertainty");
    }
    if (!newTracePath.empty()) {
        RequireFolderOf(newTracePath);
        const std::string text = trace.Json();
        if (text.empty() && trace.Fault() != nullptr) throw FaultOf(trace);
        if (text.empty()) throw Failure(Shown(newTracePath) + ": the trace would be too long", kTooLarge);
        WriteAsAWhole(newTracePath, true, [&](const qel::Descriptor& file) {
            qel::WriteFully(file, std::as_bytes(std::span(text)), newTracePath);
        });
    }
    if (json)
        Print(trace.Json());
    else if (showsSteps)
        Print(trace.Text(language == "ja" ? qel::TraceLanguage::kJapanese : qel::TraceLanguage::kEnglish));
    else if (trace.Fault() == nullptr)
        Print(ShortForm(trace));
    if (trace.Fault() != nullptr) throw FaultOf(trace);
}

}  // namespace tool
