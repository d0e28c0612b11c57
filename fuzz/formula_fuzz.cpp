// A formula as Formula::Parse and as Formula::Kept read it, with readings from the bytes before it. Laws: the place of
// an error is within the text; both ways of computing in double have the same result, or the same lack of one; exact
// numbers and intervals of single numbers have the same result; and the exact result of sums and products of positive
// numbers is that of double but for its rounding.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "law.h"
#include "qellib10/quantity/formula.h"
#include "qellib10/quantity/formula_double.h"
#include "qellib10/quantity/formula_exact.h"
#include "qellib10/quantity/formula_kept.h"
#include "qellib10/quantity/formula_parser.h"

namespace {

using qel::ExactResult;
using qel::Formula;
using qel::FormulaError;
using qel::FormulaOperation;
using qel::Reading;

// A power of a number with 34 digits takes decNumber milliseconds.
constexpr std::size_t kLongestUsefulInput = 2000;

constexpr std::array kNames = {"A", "B", "C", "D", "x^2", "F", "min", "試料"};
using Bytes = std::array<std::uint8_t, kNames.size()>;

qel::FormulaScope Scope() {
    qel::FormulaScope scope;
    for (const char* name : kNames) scope.Add(name);
    return scope;
}

// A byte chooses a reading: its upper half the kind, its lower half the number.
Reading ReadingOf(std::uint8_t byte, bool isValue) {
    static constexpr std::array kNumbers = {
        "0",  "1",    "-1",    "2.5", "0.1",   "-0.02",  "10",    "1000",
        "-7", "1e30", "1e-30", "3",   "1e-10", "16.519", "1e307", "1234567890123456789012345678901234"};
    qel::DecimalFlags ignored;
    const qel::Decimal number = qel::Decimal::OfText(kNumbers[byte % 16], ignored);
    const int kind = isValue ? 0 : byte / 16;
    switch (kind) {
        case 1:
            return Reading::Below(number);
        case 2:
            return Reading::Above(number);
        case 3:
            return Reading{};
        case 4:
            return *Reading::OfText("invalid");
        case 5:
            return Reading::OfDouble(number.ToDouble());
        default:
            return Reading::Of(number);
    }
}

std::vector<Reading> ReadingsOf(const Bytes& bytes, bool areValues) {
    std::vector<Reading> readings;
    for (const std::uint8_t byte : bytes) readings.push_back(ReadingOf(byte, areValues));
    return readings;
}

void CheckPlace(const FormulaError& error, std::string_view text) {
    Require(error.position <= text.size() && error.length <= text.size() - error.position);
    Require(!error.Text(text).empty());
}

// The bits of a result, or of none.
bool AreSame(const std::optional<double>& a, const std::optional<double>& b) {
    return a.has_value() == b.has_value() && (!a || *a == *b);
}

// Whether nothing in it cancels, so that each step in double is right to some units of its last digit.
bool IsWellConditioned(const qel::FormulaProgram& program, const std::vector<double>& values) {
    return std::ranges::all_of(program.variables, [&](std::size_t at) { return values[at] > 0.0; }) &&
           std::ranges::all_of(program.steps, [](const qel::FormulaStep& step) {
               return step.operation == FormulaOperation::kNumber || step.operation == FormulaOperation::kConstant ||
                      step.operation == FormulaOperation::kVariable || step.operation == FormulaOperation::kAdd ||
                      step.operation == FormulaOperation::kMultiply || step.operation == FormulaOperation::kDivide ||
                      step.operation == FormulaOperation::kSum || step.operation == FormulaOperation::kMean ||
                      step.operation == FormulaOperation::kMin || step.operation == FormulaOperation::kMax;
           });
}

// A double loses its digits, or all of its value, near 0.
bool IsOrdinary(const qel::ExactStep& step) {
    qel::DecimalFlags ignored;
    const double value = qel::Decimal::OfText(step.result, ignored).ToDouble();
    return value == 0.0 || (value > 1e-290 && value < 1e290);
}

void CheckDouble(const Formula& formula, const qel::FormulaProgram& program, const std::vector<double>& values) {
    FormulaError error;
    const std::optional<double> plain = EvaluatePlainly(program, values, error);
    if (!plain) CheckPlace(error, formula.Text());
    const double fast = qel::FastFormula(program).Evaluate(values.data());
    if (!std::isnan(fast)) Require(plain && *plain == fast);
    Require(AreSame(formula.Evaluate(values, error), plain));
}

std::optional<ExactResult> Exactly(const Formula& formula, const std::vector<Reading>& readings,
                                   qel::LimitSubstitution substitution, std::vector<qel::ExactStep>& steps) {
    FormulaError error;
    const std::optional<ExactResult> result = formula.EvaluateExactly(readings, {substitution}, error, &steps);
    if (!result) CheckPlace(error, formula.Text());
    for (const qel::ExactStep& step : steps)
        Require(step.position <= formula.Text().size() && step.length <= formula.Text().size() - step.position);
    return result;
}

void CheckExact(const Formula& formula, const qel::FormulaProgram& program, const std::vector<double>& values,
                const Bytes& bytes) {
    const std::vector<Reading> readings = ReadingsOf(bytes, true);
    std::vector<qel::ExactStep> steps;
    const std::optional<ExactResult> exact = Exactly(formula, readings, qel::LimitSubstitution::kNone, steps);
    try {
        const ExactResult whole = EvaluateIntervals(program, readings, {}, qel::StepLog(nullptr));
        Require(exact && exact->Text() == whole.Text() && exact->flags == whole.flags);
    } catch (const FormulaError&) {
        Require(!exact);
    }
    if (!exact || !IsWellConditioned(program, values) || !std::ranges::all_of(steps, IsOrdinary)) return;
    FormulaError error;
    const std::optional<double> value = formula.Evaluate(values, error);
    Require(value && std::abs(exact->value.ToDouble() - *value) <= 1e-9 * *value);
}

using Parser = std::optional<Formula> (*)(std::string_view, const qel::FormulaScope&, FormulaError&);

template <class Program> void Check(Parser parser, Program programOf, std::string_view text, const Bytes& bytes) {
    static const qel::FormulaScope scope = Scope();
    FormulaError error;
    const std::optional<Formula> formula = parser(text, scope, error);
    if (!formula) return CheckPlace(error, text);
    Require(formula->Text() == text);
    const qel::FormulaProgram program = programOf(text, scope);
    std::vector<double> values;
    for (const Reading& reading : ReadingsOf(bytes, true)) values.push_back(reading.value.ToDouble());
    CheckDouble(*formula, program, values);
    CheckExact(*formula, program, values, bytes);
    const auto substitution = static_cast<qel::LimitSubstitution>(bytes[0] / 16 % 4);
    std::vector<qel::ExactStep> steps;
    const std::optional<ExactResult> result = Exactly(*formula, ReadingsOf(bytes, false), substitution, steps);
    Require(!result || !result->Text().empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes = {};
    if (size < bytes.size() || size > kLongestUsefulInput) return 0;
    std::copy_n(data, bytes.size(), bytes.begin());
    const std::string text = Text(data + bytes.size(), size - bytes.size());
    Check(
        Formula::Parse,
        [](std::string_view formula, const qel::FormulaScope& scope) {
            return qel::FormulaParser(formula, scope).Parse();
        },
        text, bytes);
    Check(Formula::Kept, qel::ParseKept, text, bytes);
    return 0;
}
