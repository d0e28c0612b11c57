#pragma once

#include <array>
#include <string_view>

#include "qellib10/calc/calc_variable.h"
#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/platform/archive/object.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {
struct CheckedOperand;
struct FormulaFault;
}  // namespace qel

/// Checks and evaluates result formulas such as "(VOL-BLANK)*CONC*F/SAMPLE", which users write, over the named
/// variables of a list. A formula is checked when it is written, so that a misspelt name or a missing bracket does not
/// show up on the day of the measurement; and the check marks the variables that the result depends on.
///
/// @code
/// CCalcVariableList list;
/// CCalcVariable variable;
/// variable.m_szName = "EP";
/// variable.m_dValue = 16.519;
/// list.AddVariableData(variable);
/// CQWCalc calculator;
/// calculator.SetCalcVarList(list);
/// double result = 0;
/// if (!calculator.CheckCalcFormula("", "ep * 0.1")) return;              // also rounds what it uses, see there
/// if (!calculator.ConcCalculation("ep * 0.1", &result)) return;          // a division by zero
/// @endcode
///
///     expression   terms joined by + and -, left to right
///     term         factors joined by * and /, left to right
///     factor       "(" expression ")" or a number
///     number       an optional "-", decimal digits with at most one ".", then possibly a variable's name
///
/// Names are found without regard to the case of letters (the operations of the list distinguish it). They may hold any
/// character but blank, tab and ( ) * + - / =. The first entry of the list that matches counts.
///
/// A formula has at most 255 bytes; text after a zero byte is not read. Names may be as long as the formula. Operations
/// return 1, or 0 for every failure; qel::LastFailure then says what is wrong (syntax, an unknown name, a division by
/// zero, too long) and where in the formula. Nothing is thrown but std::bad_alloc: by construction, by operations that
/// copy a list or a variable, and by the steps of the grammar. A check or a calculation without memory returns 0.
/// Nothing depends on the locale. One thread at a time.
///
/// Kept, so that formulas already in the field mean what they always meant:
/// - Blanks and tabs are skipped everywhere, so "1 2" is 12 and "ab c" is the variable abc.
/// - An operator may not follow another; a minus sign may only begin an expression, and not before "(": "2*(-3)" is
///   right, "2*-3" and "-(3)" are errors.
/// - A number may be empty and counts as 0: "2*" is 0, "+3" is 3, an empty formula is 0.
/// - A name replaces the digits before it: "2x" is x.
/// - The check pass reads constants without their leading minus, so "1/(2-2)" is refused, and so is "1/(-2-2)".
/// - It takes the difference of two single variables of one name, or of two combined expressions, for 0.
class QELLIB10_API CQWCalc : public CObject {
public:
    CQWCalc();
    CQWCalc(const CQWCalc&) = delete;
    /// Copies nothing, on purpose: fill an evaluator with SetCalcVarList.
    CQWCalc& operator=(const CQWCalc& other);
    ~CQWCalc() override;

    /// Removes all variables and sets the list's round-up flag and digit to 0.
    void InitParameter();

    /// Copies the round-up setting and all variables, use flags included. Both do the same.
    void SetCalcVarList(const CCalcVariableList& list);
    void SetAllVariable(const CCalcVariableList& list);

    /// Its own list, with use flags as the check passes left them.
    const CCalcVariableList& GetCalcVarList() const;
    const CCalcVariableList& GetAllVariable() const;

    /// Like those of its own list.
    int GetUseVariableCount() const;
    int GetVariableData(int index, CCalcVariable* out) const;

    /// The check pass: whether @p formula can be calculated with the variables of the list. The variables in it, and
    /// the one called @p name if there is one, get their use flag set. A variable whose flag is set for the first time
    /// is stored back, rounded by the list's setting. Flags of earlier checks stay.
    /// @return 1 for a valid formula, including an empty one; 0 for a syntax error, an unknown variable, a division by
    /// a constant zero, or more than 255 bytes. Variables before the error keep their flag.
    int CheckCalcFormula(CString name, CString formula);

    /// The calculation pass, in doubles. Values of variables are rounded by the list's setting when they are read; the
    /// result is not rounded. It can be infinite or NaN if the calculation overflows.
    /// @return 0 for a syntax error, an unknown variable, a division by exactly 0 or more than 255 bytes; @p result
    /// does not change then
    int ConcCalculation(CString formula, double* result);

protected:
    /// Stores the formula for a pass, without its blanks, and starts at its first character.
    /// @return false if it is too long; there is no formula then
    bool SetFormula(std::string_view formula);

    /// The levels of the grammar. Each reads from the current character on; the current character is then the first one
    /// after its part. The result's state is 1 for a known number (m_dValue; always so in the calculation pass), 0 for
    /// something that depends on a variable (m_szName: a single variable as written, m_dValue: its sign), -1 for an
    /// error.
    CCalcVariable CalcFormulaExpress();
    CCalcVariable CalcFormulaTerm();
    CCalcVariable CalcFormulaFactor();
    CCalcVariable CalcFormulaNumber();

    /// Combines two such results in the check pass; state -1 if @p b has it, or for a division by a known zero.
    CCalcVariable CheckCalcFormulaAdd(CCalcVariable a, CCalcVariable b);
    CCalcVariable CheckCalcFormulaSub(CCalcVariable a, CCalcVariable b);
    CCalcVariable CheckCalcFormulaMul(CCalcVariable a, CCalcVariable b);
    CCalcVariable CheckCalcFormulaDiv(CCalcVariable a, CCalcVariable b);

    /// Moves to the next character that is neither blank nor tab; stays at the end of the formula.
    void GetNextCharacter();

    /// 1 for ( ) * + - / = and 0 for all others.
    int IsExpressCharacter(char character) const;

    /// 1 if both the current character and the one before it are among * + - / =.
    int IsArithmeticDuplicate() const;

    /// Finds a variable, ignoring case. In the check pass it is marked as used.
    /// @return 1 and the rounded value in @p value, or 0 if the list has no such variable
    int CheckVariableExist(char* name, double* value);

private:
    enum class Mode { kCheck, kCalculate };
    struct CheckPass;
    struct CalculatePass;

    bool IsAtEnd() const { return *m_pCursor == '\0'; }
    bool MarkVariable(std::string_view name);
    static int RefuseTooLong();
    int Refuse(const qel::FormulaFault& fault, std::string_view formula) const;
    CCalcVariable ResultOf(const qel::CheckedOperand& operand) const;
    template <typename Pass, typename Level> typename Pass::Operand Read(qel::FormulaFault& fault, Level level);
    template <typename Level> CCalcVariable Step(Level level);

    static constexpr std::size_t kLongestFormula = 255;

    CCalcVariableList m_CalcVarList;
    // The formula without its blanks, between two zeros, so that the current character always has one before it.
    std::array<char, kLongestFormula + 2> m_szFormula = {};
    const char* m_pCursor = m_szFormula.data() + 1;  // the current character
    CCalcVariable m_ErrorResult;
    Mode m_nMode = Mode::kCheck;
};
