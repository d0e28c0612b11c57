#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "qellib10/platform/failure.h"

#include "qellib10/base/power_of_ten.h"

namespace qel {

/// What a byte of a formula means in the grammar.
enum class FormulaByte : unsigned char { kName, kParenthesis, kArithmetic, kEnd };

/// The characters ( ) * + - / = end a number or a name. All of them, and blank and tab, are below 40 hex and so never
/// the trail byte of a double-byte character: a formula can be scanned byte by byte.
inline constexpr std::array<FormulaByte, 256> kFormulaBytes = [] {
    std::array<FormulaByte, 256> bytes = {};
    bytes['\0'] = FormulaByte::kEnd;
    for (const unsigned char character : {'(', ')'}) bytes[character] = FormulaByte::kParenthesis;
    for (const unsigned char character : {'*', '+', '-', '/', '='}) bytes[character] = FormulaByte::kArithmetic;
    return bytes;
}();

constexpr FormulaByte FormulaByteOf(char character) { return kFormulaBytes[static_cast<unsigned char>(character)]; }

/// Whether the operator at @p cursor follows directly after another one. The byte before the start of the text is
/// readable.
constexpr bool IsDoubledOperator(const char* cursor) {
    return FormulaByteOf(cursor[0]) == FormulaByte::kArithmetic &&
           FormulaByteOf(cursor[-1]) == FormulaByte::kArithmetic;
}

/// What a pass found wrong; a syntax error where the cursor stopped unless it says more.
struct FormulaFault {
    FailureKind kind = FailureKind::kSyntax;
    std::string_view at;  // of the formula: the unknown name, the operator; empty for a syntax error
};

/// What is at the number level. Without digits and name it is an empty number.
struct FormulaNumber {
    double sign = 1.0;
    double digits = 0.0;  // the digits' value, without the sign
    bool hasDigits = false;
    std::string_view name;  // points into the formula
};

/// The grammar of result formulas, parsed by recursive descent, the same for every pass over a formula:
///
///     expression   term   { "+" or "-"  term }        left to right
///     term         factor { "*" or "/"  factor }
///     factor       "(" expression ")"  or  number
///     number       [ "-" ] digits and at most one "."  [ name ]
///
/// An operator may not follow another, so "2*-3" is an error. A number may be empty and then is 0 ("2*", "+3"). A name
/// ends before the next of ( ) * + - / = and replaces the digits before it, so "2x" is x.
///
/// The text is zero-terminated, without blanks, with a readable byte before it; the cursor never passes its end. A text
/// of n bytes recurses at most n levels. A pass provides:
///
///     Operand                                  the result of a step, with bool Failed() const
///     Operand Error()
///     Operand Number(const FormulaNumber&)     looks the name up
///     Operand Combine(operator, left, right)   neither of them failed; the operator points into the text
template <typename Pass> class FormulaGrammar {
public:
    using Operand = typename Pass::Operand;

    FormulaGrammar(Pass pass, const char* cursor) : m_Pass(pass), m_pCursor(cursor) {}

    const char* Cursor() const { return m_pCursor; }

    Operand Express() {
        return Level<'+', '-'>([this] { return Term(); });
    }
    Operand Term() {
        return Level<'*', '/'>([this] { return Factor(); });
    }

    Operand Factor() {
        if (*m_pCursor != '(') return Number();
        ++m_pCursor;
        const Operand inner = Express();
        if (inner.Failed()) return inner;
        if (*m_pCursor != ')') return m_Pass.Error();
        ++m_pCursor;
        return inner;
    }

    Operand Number() {
        FormulaNumber number;
        if (*m_pCursor == '-') {
            number.sign = -1.0;
            ++m_pCursor;
        }
        if (!ReadDigits(number)) return m_Pass.Error();
        number.name = ReadName();
        return m_Pass.Number(number);
    }

private:
    template <char kFirst, char kSecond, typename Next> Operand Level(Next next) {
        Operand left = next();
        if (left.Failed()) return left;
        if (IsDoubledOperator(m_pCursor)) return m_Pass.Error();
        while (*m_pCursor == kFirst || *m_pCursor == kSecond) {
            const char* const operation = m_pCursor++;
            if (IsDoubledOperator(m_pCursor)) return m_Pass.Error();
            const Operand right = next();
            if (right.Failed()) return right;
            left = m_Pass.Combine(operation, left, right);
            if (left.Failed()) return left;
        }
        return left;
    }

    // False at a second decimal point.
    bool ReadDigits(FormulaNumber& number) {
        int places = -1;  // digits after the point; -1: no point yet
        for (;; ++m_pCursor) {
            const char character = *m_pCursor;
            if (character == '.') {
                if (places >= 0) return false;
                places = 0;
            } else if (character < '0' || character > '9') {
                return true;
            } else {
                const int digit = character - '0';
                number.digits =
                    places < 0 ? number.digits * 10.0 + digit : number.digits + digit / PowerOfTen(++places);
                number.hasDigits = true;
            }
        }
    }

    std::string_view ReadName() {
        const char* const first = m_pCursor;
        while (FormulaByteOf(*m_pCursor) == FormulaByte::kName) ++m_pCursor;
        return {first, static_cast<std::size_t>(m_pCursor - first)};
    }

    Pass m_Pass;
    const char* m_pCursor;
};

}  // namespace qel
