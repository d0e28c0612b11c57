#include "qellib10/calc/qw_calc.h"

#include <algorithm>

#include "qellib10/calc/formula_folding.h"
#include "qellib10/calc/formula_grammar.h"

namespace {

constexpr std::size_t npos = std::string_view::npos;

constexpr bool IsBlank(char character) { return character == ' ' || character == '\t'; }

// The light form of a result, good while its variable lives.
qel::CheckedOperand Light(const CCalcVariable& result) {
    return {.state = result.m_nState, .value = result.m_dValue, .name = result.m_szName.View()};
}

}  // namespace

struct CQWCalc::CheckPass {
    using Operand = qel::CheckedOperand;
    CQWCalc& calc;

    Operand Error() const { return qel::FailedOperand(); }

    // A constant counts without its sign, and also when a name follows it.
    Operand Number(const qel::FormulaNumber& number) const {
        if (!number.name.empty() && !MarkVariable(number.name)) return Error();
        if (number.hasDigits) return qel::KnownOperand(number.digits);
        return {.state = qel::kStateUnknown, .value = number.sign, .name = number.name};
    }

    bool MarkVariable(std::string_view name) const {
        const int index = calc.m_CalcVarList.FindIgnoringCase(name);
        if (index >= 0) calc.m_CalcVarList.MarkUsed(index);
        return index >= 0;
    }

    Operand Combine(char operation, const Operand& a, const Operand& b) const {
        switch (operation) {
            case '+':
                return qel::FoldSum(a, b);
            case '-':
                return qel::FoldDifference(a, b);
            case '*':
                return qel::FoldProduct(a, b);
            default:
                return qel::FoldQuotient(a, b);
        }
    }

    CCalcVariable Result(const Operand& operand) const {
        if (operand.Failed()) return calc.m_ErrorResult;
        CCalcVariable result;
        result.m_nState = operand.state;
        result.m_dValue = operand.value;
        result.m_szName = CString(operand.name);
        return result;
    }
};

struct CQWCalc::CalculatePass {
    struct Operand {
        double value;
        bool failed;
        bool Failed() const { return failed; }
    };
    CQWCalc& calc;

    Operand Error() const { return {0.0, true}; }

    Operand Number(const qel::FormulaNumber& number) const {
        if (number.name.empty()) return {number.sign * number.digits, false};
        const int index = calc.m_CalcVarList.FindIgnoringCase(number.name);
        return index >= 0 ? Operand{number.sign * calc.m_CalcVarList.ValueAt(index), false} : Error();
    }

    Operand Combine(char operation, const Operand& a, const Operand& b) const {
        switch (operation) {
            case '+':
                return {a.value + b.value, false};
            case '-':
                return {a.value - b.value, false};
            case '*':
                return {a.value * b.value, false};
            default:
                return b.value == 0.0 ? Error() : Operand{a.value / b.value, false};
        }
    }

    CCalcVariable Result(const Operand& operand) const {
        if (operand.failed) return calc.m_ErrorResult;
        CCalcVariable result;
        result.m_nState = qel::kStateKnown;
        result.m_dValue = operand.value;
        return result;
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
    m_nMode = Mode::kCheck;
    CheckPass{*this}.MarkVariable(name.View());
    if (!SetFormula(formula.View())) return 0;
    if (IsAtEnd()) return 1;
    const auto result = Read<CheckPass>([](auto& grammar) { return grammar.Express(); });
    return !result.Failed() && IsAtEnd() ? 1 : 0;
}

int CQWCalc::ConcCalculation(CString formula, double* result) {
    m_nMode = Mode::kCalculate;
    if (result == nullptr || !SetFormula(formula.View())) return 0;
    if (IsAtEnd()) {
        *result = 0.0;
        return 1;
    }
    const auto calculated = Read<CalculatePass>([](auto& grammar) { return grammar.Express(); });
    if (calculated.Failed() || !IsAtEnd()) return 0;
    *result = calculated.value;
    return 1;
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
    return CheckPass{*this}.Result(qel::FoldSum(Light(a), Light(b)));
}

CCalcVariable CQWCalc::CheckCalcFormulaSub(CCalcVariable a, CCalcVariable b) {
    return CheckPass{*this}.Result(qel::FoldDifference(Light(a), Light(b)));
}

CCalcVariable CQWCalc::CheckCalcFormulaMul(CCalcVariable a, CCalcVariable b) {
    return CheckPass{*this}.Result(qel::FoldProduct(Light(a), Light(b)));
}

CCalcVariable CQWCalc::CheckCalcFormulaDiv(CCalcVariable a, CCalcVariable b) {
    return CheckPass{*this}.Result(qel::FoldQuotient(Light(a), Light(b)));
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

// Formulas are often written without blanks, and are then copied at once.
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

// Runs one level of the grammar from the current character on.
template <typename Pass, typename Level> typename Pass::Operand CQWCalc::Read(Level level) {
    qel::FormulaGrammar<Pass> grammar(Pass{*this}, m_pCursor);
    const auto operand = level(grammar);
    m_pCursor = grammar.Cursor();
    return operand;
}

template <typename Level> CCalcVariable CQWCalc::Step(Level level) {
    if (m_nMode == Mode::kCheck) return CheckPass{*this}.Result(Read<CheckPass>(level));
    return CalculatePass{*this}.Result(Read<CalculatePass>(level));
}
