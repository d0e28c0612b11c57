#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/shown_number.h"
#include "qellib10/quantity/trace.h"
#include "qellib10/quantity/trace_phrases.h"
#include "qellib10/quantity/trace_sentences.h"
#include "qellib10/quantity/trace_words.h"
#include "qellib10/quantity/value_text.h"

namespace qel {
namespace {

constexpr int kFiguresOfUncertainty = 3;
constexpr int kFiguresOfSensitivity = 5;
constexpr int kFiguresOfDouble = 15;

std::string Short(double value, int figures) {
    std::array<char, 40> text;
    return {text.data(),
            std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, figures).ptr};
}

class Tables {
public:
    Tables(const Trace& trace, TraceLanguage language) : m_trace(trace), m_language(language) {}

    std::vector<TraceTable> All() {
        AddResult();
        AddInputs();
        AddCorrelations();
        for (const TracePart& part : m_trace.Parts()) AddSteps(part);
        AddRounding();
        for (const TracePart& part : m_trace.Parts())
            if (part.budget) AddBudget(part);
        AddTrials();
        AddDecision();
        for (const std::string& remark : m_trace.Remarks())
            m_tables.front().rows.push_back({Word(TraceWord::kRemark), Sentence(remark)});
        return std::move(m_tables);
    }

private:
    std::string Word(TraceWord word) const { return std::string(TextOf(word, m_language)); }
    std::string Phrase(std::string_view english) const {
        return m_language == TraceLanguage::kJapanese ? JapaneseOf(english) : std::string(english);
    }
    std::string Sentence(const std::string& english) const {
        return m_language == TraceLanguage::kJapanese ? JapaneseSentence(english) : english;
    }

    TraceTable& Add(TraceWord title, const std::string& name, std::initializer_list<TraceWord> columns) {
        TraceTable& table = m_tables.emplace_back();
        table.title = Word(title) + (name.empty() ? "" : ": " + name);
        for (const TraceWord column : columns) table.columns.push_back(Word(column));
        return table;
    }

    void AddResult() {
        const Calculation& request = m_trace.Request();
        if (const TraceFault* const fault = m_trace.Fault()) {
            TraceTable& table = Add(TraceWord::kFault, fault->name, {});
            table.rows.push_back({Word(TraceWord::kFault), Sentence(fault->sentence)});
        } else {
            TraceTable& table = Add(TraceWord::kResult, request.result.name, {});
            table.rows.push_back({Word(TraceWord::kResult), Phrase(m_trace.ResultWithUncertainty())});
        }
        auto& rows = m_tables.back().rows;
        rows.push_back(
            {Word(TraceWord::kFormula), request.result.name + " = " + request.result.formula +
                                            (request.isKept ? " (" + Word(TraceWord::kOlderGrammar) + ')' : "")});
        for (const CalculationFormula& helper : request.helpers)
            rows.push_back({Word(TraceWord::kHelper),
                            helper.name + " = " + helper.formula +
                                (helper.unit.empty() ? "" : " (" + Word(TraceWord::kUnit) + ": " + helper.unit + ')')});
        if (request.substitution != LimitSubstitution::kNone)
            rows.push_back({Word(TraceWord::kSubstitution), Phrase(NameOf(request.substitution))});
        rows.push_back({Word(TraceWord::kEngine), m_trace.Engine()});
    }

    void AddInputs() {
        TraceTable& table = Add(
            TraceWord::kInputs, "",
            {TraceWord::kName, TraceWord::kValue, TraceWord::kUnit, TraceWord::kOrigin, TraceWord::kUncertaintyStated});
        for (const CalculationInput& input : m_trace.Request().inputs) {
            std::string origin = input.origin;
            const auto addRemark = [&](const std::string& remark) { origin += (origin.empty() ? "" : "; ") + remark; };
            if (input.reading.isFromBinary) addRemark(Word(TraceWord::kFromBinary));
            if (input.reading.places)
                addRemark(Word(TraceWord::kRoundedByList) + std::to_string(*input.reading.places));
            std::string stated;
            for (const UncertaintyComponent& component : input.components)
                stated += (stated.empty() ? "" : "; ") + Phrase(component.Statement()) +
                          (component.source.empty() ? "" : " (" + component.source + ')');
            table.rows.push_back({input.name, input.reading.Text(), input.unit, origin, stated});
        }
    }

    void AddCorrelations() {
        const Calculation& request = m_trace.Request();
        if (request.uncertainty.correlations.empty()) return;
        TraceTable& table =
            Add(TraceWord::kCorrelations, "", {TraceWord::kName, TraceWord::kName, TraceWord::kCoefficient});
        const auto nameOf = [&](std::size_t input) {
            return input < request.inputs.size() ? request.inputs[input].name : std::to_string(input);
        };
        for (const InputCorrelation& each : request.uncertainty.correlations)
            table.rows.push_back({nameOf(each.first), nameOf(each.second), Short(each.coefficient, kFiguresOfDouble)});
    }

    std::string RemarkOf(const DecimalFlags& flags) const {
        if (flags.isTooSmall) return Word(TraceWord::kTooSmall);
        return flags.isInexact ? Word(TraceWord::kInexact) : std::string();
    }

    void AddSteps(const TracePart& part) {
        TraceTable& table =
            Add(TraceWord::kSteps, part.name,
                {TraceWord::kStep, TraceWord::kFormula, TraceWord::kOperation, TraceWord::kValue, TraceWord::kRemark});
        for (const ExactStep& step : part.steps)
            table.rows.push_back({std::to_string(table.rows.size() + 1),
                                  part.formula.substr(step.position, step.length), Phrase(step.operation),
                                  Phrase(step.result), RemarkOf(step.flags)});
    }

    void AddRounding() {
        if (m_trace.Result() == nullptr) return;
        TraceTable& table = Add(TraceWord::kRounding, "", {});
        const std::optional<RoundingRule>& rule = m_trace.Request().rule;
        ExactResult result = *m_trace.Result()->result;
        table.rows.push_back(
            {Word(TraceWord::kRule), (rule ? Phrase(rule->Name()) : Word(TraceWord::kNoRounding)) +
                                         (rule && result.IsLimit() ? Word(TraceWord::kLimitRounding) : "")});
        const std::string unit = result.IsNumberOrLimit() ? UnitOf(*m_trace.Result()) : "";
        table.rows.push_back({Word(TraceWord::kUnrounded), Phrase(result.Text()) + unit});
        if (!m_trace.Rounded()) return;
        result.value = m_trace.Rounded()->rounded;
        table.rows.push_back({Word(TraceWord::kRounded), ShownResult(result, true) + unit});
    }

    // Of a value, after a blank.
    static std::string UnitOf(const TracePart& part) { return AfterValue(part.unit); }
    // Of an input, another formula or a constant.
    std::string UnitOf(const std::string& name) const {
        const auto& inputs = m_trace.Request().inputs;
        const auto input = std::ranges::find(inputs, name, &CalculationInput::name);
        if (input != inputs.end()) return AfterValue(input->unit);
        const auto part = std::ranges::find(m_trace.Parts(), name, &TracePart::name);
        if (part != m_trace.Parts().end()) return UnitOf(*part);
        for (const FormulaConstant& constant : FormulaConstants())
            if (name == "const." + std::string(constant.name)) return AfterValue(std::string(constant.unit));
        return {};
    }

    std::string Freedom(const std::optional<double>& value) const {
        if (!value) return Word(TraceWord::kNotDefined);
        return std::isinf(*value) ? Word(TraceWord::kInfinite) : Short(*value, 6);
    }

    void AddBudget(const TracePart& part) {
        const UncertaintyBudget& budget = *part.budget;
        TraceTable& table =
            Add(TraceWord::kBudget, part.name,
                {TraceWord::kName, TraceWord::kSource, TraceWord::kValue, TraceWord::kStandardUncertainty,
                 TraceWord::kDegreesOfFreedom, TraceWord::kSensitivity, TraceWord::kContribution, TraceWord::kShare});
        const std::string unit = UnitOf(part);
        for (const UncertaintyRow& row : budget.rows) {
            const std::string itsUnit = UnitOf(row.name);
            table.rows.push_back({row.name, row.source, Short(row.value, 10) + itsUnit,
                                  Short(row.uncertainty, kFiguresOfUncertainty) + itsUnit,
                                  Freedom(row.degreesOfFreedom), Short(row.sensitivity, kFiguresOfSensitivity),
                                  Short(row.contribution, kFiguresOfUncertainty) + unit,
                                  Short(100.0 * row.share + 0.0, 3) + " %"});
        }
        TraceTable& sum = Add(TraceWord::kExpanded, part.name, {});
        sum.rows.push_back({Word(TraceWord::kCombined), Short(budget.uncertainty, kFiguresOfUncertainty) + unit});
        sum.rows.push_back({Word(TraceWord::kDegreesOfFreedom), Freedom(budget.degreesOfFreedom)});
        const std::string probability =
            budget.coverageProbability ? " (" + Short(100.0 * *budget.coverageProbability, 4) + " %)" : "";
        sum.rows.push_back({Word(TraceWord::kCoverage), Short(budget.coverageFactor, 4) + probability});
        sum.rows.push_back(
            {Word(TraceWord::kExpanded), Short(budget.expandedUncertainty, kFiguresOfUncertainty) + unit});
        if (budget.isAtKink) sum.rows.push_back({Word(TraceWord::kRemark), Word(TraceWord::kAtKink)});
    }

    void AddTrials() {
        if (!m_trace.Trials()) return;
        const MonteCarloResult& trials = *m_trace.Trials();
        const std::string unit = UnitOf(*m_trace.Result());
        const auto ends = [&](const CoverageInterval& interval) {
            return Short(interval.low, 10) + " .. " + Short(interval.high, 10) + unit;
        };
        const std::string probability = Short(100.0 * trials.coverageProbability, 4) + " %";
        TraceTable& table = Add(TraceWord::kTrials, "", {});
        table.rows.push_back({Word(TraceWord::kNumberOfTrials), std::to_string(trials.trials + trials.failed)});
        if (trials.failed > 0) table.rows.push_back({Word(TraceWord::kFailedTrials), std::to_string(trials.failed)});
        table.rows.push_back({Word(TraceWord::kSeed), std::to_string(m_trace.Request().seed)});
        table.rows.push_back({Word(TraceWord::kValue), Short(trials.mean, 10) + unit});
        table.rows.push_back(
            {Word(TraceWord::kStandardUncertainty), Short(trials.uncertainty, kFiguresOfUncertainty) + unit});
        table.rows.push_back({probability, ends(trials.symmetric)});
        table.rows.push_back({probability + " (" + Word(TraceWord::kShortest) + ')', ends(trials.shortest)});
        if (m_trace.FirstOrder() && !m_trace.FirstOrder()->isStable)
            table.rows.push_back({Word(TraceWord::kRemark), Word(TraceWord::kMoreTrials)});
        if (m_trace.FirstOrder())
            table.rows.push_back({Word(TraceWord::kFirstOrder),
                                  Word(m_trace.FirstOrder()->isEnough ? TraceWord::kEnough : TraceWord::kNotEnough)});
    }

    void AddDecision() {
        const std::optional<ResultLimits>& limits = m_trace.Request().limits;
        if (!limits || !m_trace.Decision()) return;
        const ResultDecision& decision = *m_trace.Decision();
        const std::string unit = UnitOf(*m_trace.Result());
        TraceTable& table = Add(TraceWord::kLimits, "", {});
        if (limits->lower) table.rows.push_back({Word(TraceWord::kLower), ShownNumber(*limits->lower) + unit});
        if (limits->upper) table.rows.push_back({Word(TraceWord::kUpper), ShownNumber(*limits->upper) + unit});
        table.rows.push_back({Word(TraceWord::kRule), Phrase(limits->rule.Name())});
        table.rows.push_back(
            {Word(TraceWord::kCompared),
             ShownNumber(decision.compared) + unit + " (" +
                 Word(decision.isRounded ? TraceWord::kComparedRounded : TraceWord::kComparedUnrounded) + ')'});
        if (decision.byUncertainty) {
            table.rows.push_back(
                {Word(TraceWord::kGuardBand), Short(decision.byUncertainty->guardBand, kFiguresOfUncertainty) + unit});
            table.rows.push_back(
                {Word(TraceWord::kConformity), Short(100.0 * decision.byUncertainty->conformity, 4) + " %"});
        }
        const TraceWord why = m_trace.Result()->result->IsLimit() ? TraceWord::kOnBothSides : TraceWord::kUndecided;
        table.rows.push_back(
            {Word(TraceWord::kResult), Word(decision.isPassed ? TraceWord::kPassed : TraceWord::kFailed) +
                                           (decision.isUndecided ? " (" + Word(why) + ')' : "")});
    }

    const Trace& m_trace;
    TraceLanguage m_language;
    std::vector<TraceTable> m_tables;
};

}  // namespace

std::vector<TraceTable> Trace::Tables(TraceLanguage language) const { return qel::Tables(*this, language).All(); }

}  // namespace qel
