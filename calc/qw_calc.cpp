#include "qellib10/calc/qw_calc.h"

#include <algorithm>

#include "qellib10/calc/formula_folding.h"
#include "qellib10/calc/formula_grammar.h"
#include "qellib10/platform/archive/result.h"

namespace {

constexpr std::size_t npos = std::string_view::npos;

using qel::FailureKind;

constexpr bool IsBlank(char character) { return character == ' ' || character == '\t'; }

// The position in the formula of byte @p index, counted from 0 without blanks.
int PositionIn(std::string_view formula, std::ptrdiff_t index) {
    std::size_t position = 0;
    for (; position < formula.size() && formula[position] != '\0'; ++position) {
        if (!IsBlank(formula[position]) && index-- == 0) break;
    }
    return static_cast<int>(position);
}

// The light form of a result, good while its variable lives.
qel::CheckedOperand Light(const CCalcVariable& result) {
    return {.state = result.m_nState, .value = result.m_dValue, .name = result.m_szName.View()};
}

}  // namespace

struct CQWCalc::CheckPass {
    using Operand = qel::CheckedOperand;
    CQWCalc& calc;
    qel::FormulaFault& fault;

    Operand Error() const { return qel::FailedOperand(); }

    // A constant counts without its sign, even if a name follows it.
    Operand Number(const qel::FormulaNumber& number) const {
        if (!number.name.empty() && !calc.MarkVariable(number.name)) {
            fault = {FailureKind::kUnknownName, number.name};
            return Error();
        }
        if (number.hasDigits) return qel::KnownOperand(number.digits);
        return {.state = qel::kStateUnknown, .value = number.sign, .name = number.name};
    }

    Operand Combine(const char* operation, const Operand& a, const Operand& b) const {
        switch (*operation) {
            case '+':
                return qel::FoldSum(a, b);
            case '-':
                return qel::FoldDifference(a, b);
            case '*':
                return qel::FoldProduct(a, b);
            default:
                const Operand quotient = qel::FoldQuotient(a, b);
                if (quotient.Failed()) fault = {FailureKind::kZeroDivisor, {operation, 1}};
                return quotient;
        }
    }
};

struct CQWCalc::CalculatePass {
    struct Operand {
        double value;
        bool failed;
        bool Failed() const { return failed; }
    };
    CQWCalc& calc;
    qel::FormulaFault& fault;

    Operand Error() const { return {0.0, true}; }

    Operand Number(const qel::FormulaNumber& number) const {
        if (number.name.empty()) return {number.sign * number.digits, false};
        const int index = calc.m_CalcVarList.FindIgnoringCase(number.name);
        if (index >= 0) return {number.sign * calc.m_CalcVarList.ValueAt(index), false};
        fault = {FailureKind::kUnknownName, number.name};
        return Error();
    }

    Operand Combine(const char* operation, const Operand& a, const Operand& b) const {
        switch (*operation) {
            case '+':
                return {a.value + b.value, false};
            case '-':
                return {a.value - b.value, false};
            case '*':
                return {a.value * b.value, false};
            default:
                if (b.value != 0.0) return {a.value / b.value, false};
                fault = {FailureKind::kZeroDivisor, {operation, 1}};
                return Error();
        }
    }
};

CQWCalc::CQWCalc() { InitParameter(); }

CQWCalc::~CQWCalc() = default;

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): it copies nothing, on purpose
CQWCalc& CQWCalc::operator=(const CQWCalc& /*other*/) { return *this; }

void CQWCalc::InitParameter() {
    m_CalcVarList.InitParameter();
    m_ErrorResult.m_nState = qel::kStateError;
}

void CQWCalc::SetCalcVarList(const CCalcVariableList& list) { m_CalcVarList = list; }

void CQWCalc::SetAllVariable(const CCalcVariableList& list) { SetCalcVarList(list); }

const CCalcVariableList& CQWCalc::GetCalcVarList() const { return m_CalcVarList; }

const CCalcVariableList& CQWCalc::GetAllVariable() const { return m_CalcVarList; }

int CQWCalc::GetUseVariableCount() const { return m_CalcVarList.GetUseVariableCount(); }

int CQWCalc::GetVariableData(int index, CCalcVariable* out) const { return m_CalcVarList.GetVariableData(index, out); }

int CQWCalc::CheckCalcFormula(CString name, CString formula) {
    return qel::AsResult("CQWCalc::CheckCalcFormula", [&] {
        m_nMode = Mode::kCheck;
        MarkVariable(name.View());
        if (!SetFormula(formula.View())) return RefuseTooLong();
        if (IsAtEnd()) return 1;
        qel::FormulaFault fault;
        const auto result = Read<CheckPass>(fault, [](auto& grammar) { return grammar.Express(); });
        return !result.Failed() && IsAtEnd() ? 1 : Refuse(fault, formula.View());
    });
}

int CQWCalc::ConcCalculation(CString formula, double* result) {
    return qel::AsResult("CQWCalc::ConcCalculation", [&] {
        m_nMode = Mode::kCalculate;
        if (result == nullptr) return qel::RefuseNull("CQWCalc::ConcCalculation");
        if (!SetFormula(formula.View())) return RefuseTooLong();
        if (IsAtEnd()) {
            *result = 0.0;
            return 1;
        }
        qel::FormulaFault fault;
        const auto calculated = Read<CalculatePass>(fault, [](auto& grammar) { return grammar.Express(); });
        if (calculated.Failed() || !IsAtEnd()) return Refuse(fault, formula.View());
        *result = calculated.value;
        return 1;
    });
}

bool CQWCalc::MarkVariable(std::string_view name) {
    const int index = m_CalcVarList.FindIgnoringCase(name);
    if (index >= 0) m_CalcVarList.MarkUsed(index);
    return index >= 0;
}

int CQWCalc::RefuseTooLong() {
    return qel::Operation(nullptr).Failed({.kind = FailureKind::kTooLong,
                                           .item = "",
                                           .text = "more than 255 bytes",
                                           .position = static_cast<int>(kLongestFormula)});
}

int CQWCalc::Refuse(const qel::FormulaFault& fault, std::string_view formula) const {
    const char* const at = fault.at.empty() ? m_pCursor : fault.at.data();
    const int position = PositionIn(formula, at - m_szFormula.data() - 1);
    qel::Operation step(nullptr);
    switch (fault.kind) {
        case FailureKind::kUnknownName:
            return step.Failed({.kind = fault.kind, .item = fault.at, .text = "unknown name", .position = position});
        case FailureKind::kZeroDivisor:
            return step.Failed({.kind = fault.kind, .item = "", .text = "division by zero", .position = position});
        default:
            return step.Failed({.kind = fault.kind, .item = "", .text = "syntax error", .position = position});
    }
}

CCalcVariable CQWCalc::CalcFormulaExpress() {
    return Step([](auto& grammar) { return grammar.Express(); });
}

CCalcVariable CQWCalc::CalcFormulaTerm() {
    return Step([](auto& grammar) { return grammar.Term(); });
}

CCalcVariable CQWCalc::CalcFormulaFactor() {
    return Step([](auto& grammar) { return grammar.Factor(); });
}

CCalcVariable CQWCalc::CalcFormulaNumber() {
    return Step([](auto& grammar) { return grammar.Number(); });
}

CCalcVariable CQWCalc::CheckCalcFormulaAdd(CCalcVariable a, CCalcVariable b) {
    return ResultOf(qel::FoldSum(Light(a), Light(b)));
}

CCalcVariable CQWCalc::CheckCalcFormulaSub(CCalcVariable a, CCalcVariable b) {
    return ResultOf(qel::FoldDifference(Light(a), Light(b)));
}

CCalcVariable CQWCalc::CheckCalcFormulaMul(CCalcVariable a, CCalcVariable b) {
    return ResultOf(qel::FoldProduct(Light(a), Light(b)));
}

CCalcVariable CQWCalc::CheckCalcFormulaDiv(CCalcVariable a, CCalcVariable b) {
    return ResultOf(qel::FoldQuotient(Light(a), Light(b)));
}

void CQWCalc::GetNextCharacter() {
    if (!IsAtEnd()) ++m_pCursor;
}

int CQWCalc::IsExpressCharacter(char character) const {
    const qel::FormulaByte byte = qel::FormulaByteOf(character);
    return byte == qel::FormulaByte::kParenthesis || byte == qel::FormulaByte::kArithmetic ? 1 : 0;
}

int CQWCalc::IsArithmeticDuplicate() const { return qel::IsDoubledOperator(m_pCursor) ? 1 : 0; }

int CQWCalc::CheckVariableExist(char* name, double* value) {
    const int index = name != nullptr ? m_CalcVarList.FindIgnoringCase(name) : -1;
    if (index < 0) return 0;
    if (value != nullptr) *value = m_CalcVarList.ValueAt(index);
    if (m_nMode == Mode::kCheck) m_CalcVarList.MarkUsed(index);
    return 1;
}

// Formulas are often written without blanks; then they are copied at once.
bool CQWCalc::SetFormula(std::string_view formula) {
    char* end = m_szFormula.data() + 1;
    m_pCursor = end;
    formula = formula.substr(0, formula.find('\0'));
    const bool fits = formula.size() <= kLongestFormula;
    if (fits && formula.find(' ') == npos && formula.find('\t') == npos) {
        end += formula.copy(end, formula.size());
    } else if (fits) {
        end = std::ranges::copy_if(formula, end, [](char character) { return !IsBlank(character); }).out;
    }
    *end = '\0';
    return fits;
}

CCalcVariable CQWCalc::ResultOf(const qel::CheckedOperand& operand) const {
    if (operand.Failed()) return m_ErrorResult;
    CCalcVariable result;
    result.m_nState = operand.state;
    result.m_dValue = operand.value;
    result.m_szName = CString(operand.name);
    return result;
}

// Runs one level of the grammar from the current character on.
template <typename Pass, typename Level> typename Pass::Operand CQWCalc::Read(qel::FormulaFault& fault, Level level) {
    qel::FormulaGrammar<Pass> grammar(Pass{*this, fault}, m_pCursor);
    const auto operand = level(grammar);
    m_pCursor = grammar.Cursor();
    return operand;
}

template <typename Level> CCalcVariable CQWCalc::Step(Level level) {
    qel::FormulaFault fault;
    if (m_nMode == Mode::kCheck) return ResultOf(Read<CheckPass>(fault, level));
    const auto calculated = Read<CalculatePass>(fault, level);
    return ResultOf(calculated.failed ? qel::FailedOperand() : qel::KnownOperand(calculated.value));
}
