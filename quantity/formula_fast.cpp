#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "qellib10/quantity/formula_double.h"

// A formula as a chain of functions, each of which ends by calling the next one: the compiler makes jumps of these
// calls. The upper end of the stack is in a register; the place below it in memory is written first and means nothing.
//
// What is not finite stays so until the end, or the evaluation is given up at once where it would not: a number divided
// by infinity is 0, and infinity compares like a number.

namespace qel {
namespace {

using Operation = FormulaOperation;
using Step = FastFormula::Step;

constexpr std::size_t kMostSteps = 1000;  // without optimisation each one takes room on the stack
constexpr std::size_t kUsualStack = 32;   // values; more take memory

// Where an operand is.
enum class From { kStack, kVariable, kNumber };

double GoOn(const Step* step, const double* values, double* below, double top) {
    return step->run(step, values, below, top);
}
double GiveUp() { return NAN; }
bool IsFinite(double value) { return std::abs(value) <= std::numeric_limits<double>::max(); }

template <From kFrom> double Fetched(const FastFormula::Operand& operand, const double* values) {
    return kFrom == From::kVariable ? values[operand.index] : operand.number;
}

double End(const Step* /*step*/, const double* /*values*/, double* /*below*/, double top) { return top; }

template <From kFrom> double Push(const Step* step, const double* values, double* below, double top) {
    *below = top;
    return GoOn(step + 1, values, below + 1, Fetched<kFrom>(step->right, values));
}

double PushEarlier(const Step* step, const double* values, double* below, double top) {
    const double earlier = step->right.index == 0 ? top : *(below - step->right.index);
    *below = top;
    return GoOn(step + 1, values, below + 1, earlier);
}

template <Operation kOperation> double Computed(double left, double right) {
    if constexpr (kOperation == Operation::kAdd) return left + right;
    if constexpr (kOperation == Operation::kSubtract) return left - right;
    if constexpr (kOperation == Operation::kMultiply) return left * right;
    if constexpr (kOperation == Operation::kDivide) return left / right;
    if constexpr (kOperation == Operation::kPower) return std::pow(left, right);
    if constexpr (kOperation == Operation::kLess) return left < right;
    if constexpr (kOperation == Operation::kLessOrEqual) return left <= right;
    if constexpr (kOperation == Operation::kGreater) return left > right;
    if constexpr (kOperation == Operation::kGreaterOrEqual) return left >= right;
    if constexpr (kOperation == Operation::kEqual) return left == right;
    if constexpr (kOperation == Operation::kNotEqual) return left != right;
}

// Whether the result would hide an operand that is not finite, or is not defined.
template <Operation kOperation> bool IsHidden(double left, double right) {
    if constexpr (kOperation == Operation::kDivide) return right == 0.0 || !IsFinite(right);
    if constexpr (kOperation == Operation::kPower)
        return !IsFinite(left) || !IsFinite(right) || (left == 0.0 && right <= 0.0);
    if constexpr (kOperation >= Operation::kLess) return !IsFinite(left) || !IsFinite(right);
    return false;
}

template <Operation kOperation, From kLeft, From kRight>
double Two(const Step* step, const double* values, double* below, double top) {
    double left = top, right = top;
    if constexpr (kLeft != From::kStack) {
        *below++ = top;
        left = Fetched<kLeft>(step->left, values);
    } else if constexpr (kRight == From::kStack) {
        left = *--below;
    }
    if constexpr (kRight != From::kStack) right = Fetched<kRight>(step->right, values);
    if (IsHidden<kOperation>(left, right)) [[unlikely]]
        return GiveUp();
    return GoOn(step + 1, values, below, Computed<kOperation>(left, right));
}

using Handler = double (*)(const Step*, const double*, double*, double);

template <Operation kOperation> Handler TwoOf(From left, From right) {
    static constexpr Handler kHandlers[3][3] = {
        {Two<kOperation, From::kStack, From::kStack>, Two<kOperation, From::kStack, From::kVariable>,
         Two<kOperation, From::kStack, From::kNumber>},
        {nullptr, Two<kOperation, From::kVariable, From::kVariable>, Two<kOperation, From::kVariable, From::kNumber>},
        {nullptr, Two<kOperation, From::kNumber, From::kVariable>, Two<kOperation, From::kNumber, From::kNumber>},
    };
    return kHandlers[static_cast<int>(left)][static_cast<int>(right)];
}

template <Operation kOperation> double ComputedOne(double value) {
    if constexpr (kOperation == Operation::kNegate) return -value;
    if constexpr (kOperation == Operation::kAbs) return std::abs(value);
    if constexpr (kOperation == Operation::kSqrt) return std::sqrt(value);
    if constexpr (kOperation == Operation::kExp) return IsFinite(value) ? std::exp(value) : NAN;
    if constexpr (kOperation == Operation::kLn) return std::log(value);
    if constexpr (kOperation == Operation::kLog10) return std::log10(value);
    if constexpr (kOperation == Operation::kLog2) return std::log2(value);
    if constexpr (kOperation == Operation::kNot) return value == 0.0 ? 1.0 : 0.0;
}

template <Operation kOperation> double One(const Step* step, const double* values, double* below, double top) {
    return GoOn(step + 1, values, below, ComputedOne<kOperation>(top));
}

double Round(const Step* step, const double* values, double* below, double top) {
    return GoOn(step + 1, values, below, Rounded(top, *step->rule));
}

template <Operation kOperation> double Many(const Step* step, const double* values, double* below, double top) {
    const std::uint32_t count = step->right.index;
    *below = top;
    below -= count - 1;
    const double *const first = below, *const last = below + count;
    if constexpr (kOperation == Operation::kMin || kOperation == Operation::kMax) {
        if (!std::all_of(first, last, IsFinite)) return GiveUp();
        top = kOperation == Operation::kMin ? *std::min_element(first, last) : *std::max_element(first, last);
    } else {
        top = std::accumulate(first, last, 0.0);
        if constexpr (kOperation == Operation::kMean) top /= count;
    }
    return GoOn(step + 1, values, below, top);
}

// The left side did not decide.
double Joined(const Step* step, const double* values, double* below, double top) {
    return GoOn(step + 1, values, below - 1, top);
}

double AndThen(const Step* step, const double* values, double* below, double top) {
    return GoOn(top == 0.0 ? step->target : step + 1, values, below, top);
}
double OrElse(const Step* step, const double* values, double* below, double top) {
    return GoOn(top != 0.0 ? step->target : step + 1, values, below, top);
}
double IfNot(const Step* step, const double* values, double* below, double top) {
    return GoOn(top == 0.0 ? step->target : step + 1, values, below - 1, below[-1]);
}
double Jump(const Step* step, const double* values, double* below, double top) {
    return GoOn(step->target, values, below, top);
}

Handler HandlerOf(Operation operation, From left, From right) {
    switch (operation) {
        case Operation::kNumber:
        case Operation::kConstant:
            return Push<From::kNumber>;
        case Operation::kVariable:
            return Push<From::kVariable>;
        case Operation::kEarlier:
            return PushEarlier;
        case Operation::kNegate:
            return One<Operation::kNegate>;
        case Operation::kAbs:
            return One<Operation::kAbs>;
        case Operation::kSqrt:
            return One<Operation::kSqrt>;
        case Operation::kExp:
            return One<Operation::kExp>;
        case Operation::kLn:
            return One<Operation::kLn>;
        case Operation::kLog10:
            return One<Operation::kLog10>;
        case Operation::kLog2:
            return One<Operation::kLog2>;
        case Operation::kRound:
            return Round;
        case Operation::kNot:
            return One<Operation::kNot>;
        case Operation::kAdd:
            return TwoOf<Operation::kAdd>(left, right);
        case Operation::kSubtract:
            return TwoOf<Operation::kSubtract>(left, right);
        case Operation::kMultiply:
            return TwoOf<Operation::kMultiply>(left, right);
        case Operation::kDivide:
            return TwoOf<Operation::kDivide>(left, right);
        case Operation::kPower:
            return TwoOf<Operation::kPower>(left, right);
        case Operation::kLess:
            return TwoOf<Operation::kLess>(left, right);
        case Operation::kLessOrEqual:
            return TwoOf<Operation::kLessOrEqual>(left, right);
        case Operation::kGreater:
            return TwoOf<Operation::kGreater>(left, right);
        case Operation::kGreaterOrEqual:
            return TwoOf<Operation::kGreaterOrEqual>(left, right);
        case Operation::kEqual:
            return TwoOf<Operation::kEqual>(left, right);
        case Operation::kNotEqual:
            return TwoOf<Operation::kNotEqual>(left, right);
        case Operation::kAnd:
        case Operation::kOr:
            return Joined;
        case Operation::kMin:
            return Many<Operation::kMin>;
        case Operation::kMax:
            return Many<Operation::kMax>;
        case Operation::kMean:
            return Many<Operation::kMean>;
        case Operation::kSum:
            return Many<Operation::kSum>;
        case Operation::kAndThen:
            return AndThen;
        case Operation::kOrElse:
            return OrElse;
        case Operation::kIfNot:
            return IfNot;
        case Operation::kGoOn:
            return Jump;
    }
    return nullptr;
}

// The source of a step that only pushes an operand.
From SourceOf(Handler run) {
    if (run == Push<From::kVariable>) return From::kVariable;
    return run == Push<From::kNumber> ? From::kNumber : From::kStack;
}

}  // namespace

FastFormula::FastFormula(const FormulaProgram& program)
    : m_rules(program.rules), m_stack(program.stack + 1), m_others(program.others) {
    if (program.steps.size() > kMostSteps) return;
    std::vector<std::size_t> places;  // of each step of the program
    places.reserve(program.steps.size() + 1);
    m_steps.reserve(program.steps.size() + 1);
    std::vector<bool> isTarget(program.steps.size() + 1);
    for (const FormulaStep& step : program.steps)
        if (Jumps(step.operation)) isTarget[step.index] = true;
    std::size_t firstFree = 0;  // of the steps that may become operands
    for (std::size_t i = 0; i < program.steps.size(); ++i) {
        if (isTarget[i]) firstFree = m_steps.size();
        places.push_back(m_steps.size());
        AddStep(program, program.steps[i], firstFree);
        if (Jumps(program.steps[i].operation)) firstFree = m_steps.size();
    }
    places.push_back(m_steps.size());
    m_steps.push_back({End, {}, {}, nullptr, nullptr});
    for (std::size_t i = 0; i < program.steps.size(); ++i)
        if (Jumps(program.steps[i].operation)) m_steps[places[i]].target = &m_steps[places[program.steps[i].index]];
}

// An operation whose operands are numbers or variables takes them from there and not from the stack.
void FastFormula::AddStep(const FormulaProgram& program, const FormulaStep& step, std::size_t firstFree) {
    Operand first, last;
    if (step.operation == Operation::kNumber)
        last.number = program.numbers[step.index].nearest;
    else if (step.operation == Operation::kConstant)
        last.number = ConstantValue(step.index);
    else if (step.operation == Operation::kVariable)
        last.index = static_cast<std::uint32_t>(program.variables[step.index]);
    else if (step.operation != Operation::kRound)
        last.index = step.index;
    From left = From::kStack, right = From::kStack;
    if (TakesTwo(step.operation) && step.operation != Operation::kAnd && step.operation != Operation::kOr) {
        const auto taken = [&](Operand& operand) {
            if (m_steps.size() <= firstFree) return From::kStack;
            const From from = SourceOf(m_steps.back().run);
            if (from == From::kStack) return from;
            operand = m_steps.back().right;
            m_steps.pop_back();
            return from;
        };
        right = taken(last);
        if (right != From::kStack) left = taken(first);
    }
    Step& fast = m_steps.emplace_back();
    fast.run = HandlerOf(step.operation, left, right);
    fast.left = first;
    fast.right = last;
    if (step.operation == Operation::kRound) fast.rule = &m_rules[step.index];
}

// No branch may have taken the result of another formula, and without it there is none of the whole.
double FastFormula::EvaluateWithOthers(const double* values) const {
    double usual[kUsualStack];
    std::vector<double> more(m_stack <= kUsualStack ? 0 : m_stack);
    double* const stack = more.empty() ? usual : more.data();
    const double value = GoOn(m_steps.data(), values, stack, 0.0);
    return IsFinite(value) && std::all_of(stack + 1, stack + 1 + m_others, IsFinite) ? value : GiveUp();
}

double FastFormula::Evaluate(const double* values) const {
    if (m_steps.empty()) return GiveUp();
    if (m_others > 0) [[unlikely]]
        return EvaluateWithOthers(values);
    double value = 0.0;
    if (m_stack <= kUsualStack) {
        double stack[kUsualStack];
        value = GoOn(m_steps.data(), values, stack, 0.0);
    } else {
        std::vector<double> stack(m_stack);
        value = GoOn(m_steps.data(), values, stack.data(), 0.0);
    }
    return IsFinite(value) ? value : GiveUp();
}

}  // namespace qel
