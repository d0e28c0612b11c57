#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "qellib10/quantity/formula_units.h"
#include "qellib10/quantity/unit_program.h"

namespace qel {

/// What a unit is called in an error.
std::string NameOfUnit(const Unit& unit);
/// What is added to an error where one unit has an offset and the other one was computed; else empty.
std::string WhyNoZero(const Unit& a, const Unit& b);

/// Goes through a formula with the units of its operands on a stack: formula_units.cpp follows the steps,
/// unit_rules.cpp has what each operation makes of units.
class UnitBinder {
public:
    UnitBinder(const FormulaProgram& program, std::span<const Unit> units)
        : m_program(program), m_units(units), m_bound(program) {}

    /// @throws FormulaError
    BoundFormula Bind(const std::optional<Unit>& wanted);

private:
    struct Operand {
        Unit unit;
        FormulaStep place = {};                  // of the step that gives it
        std::size_t end = 0;                     // after its last step
        const WrittenNumber* literal = nullptr;  // what it is, but for its sign
        bool isNegative = false;                 // the literal's sign

        bool IsZero() const { return literal != nullptr && literal->value.IsZero(); }
    };
    struct Jump {
        FormulaStep source;
        std::size_t step;  // of the copy
        Operand first;     // of kGoOn: what the first branch gives
    };

    [[noreturn]] static void Refuse(const FormulaStep& place, std::string reason);

    FormulaStep Whole() const;
    void Take(const FormulaStep& step);
    void TakeJump(const FormulaStep& step);
    // Jumps that go on here, the inner ones first.
    void Land(std::size_t at);
    Operand Taken();
    void Convert(Operand& operand, const UnitConversion& conversion);
    void ConvertTo(const Unit& wanted, Operand& whole);

    // The second operand in the unit of the first. What they have in common is the result, at the place of the step.
    Operand Agreed(Operand first, Operand& second, const FormulaStep& step, const std::string& verb);
    void AgreeAsNumbers(Operand& first, Operand& second, const FormulaStep& step);
    // For functions that only numbers have.
    void BecomeNumber(const FormulaStep& step, Operand& operand);
    Operand OfOne(const FormulaStep& step, Operand operand);
    Unit OfTwo(const FormulaStep& step, Operand& left, Operand& right);
    Unit OfMany(const FormulaStep& step);
    Unit Sum(const FormulaStep& step, Operand& left, Operand& right);
    Unit Power(const FormulaStep& step, Operand& base, Operand& exponent);

    const FormulaProgram& m_program;
    std::span<const Unit> m_units;
    UnitProgram m_bound;
    std::vector<Operand> m_stack;
    std::vector<Jump> m_jumps;
};

}  // namespace qel
