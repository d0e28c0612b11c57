#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/formula_scope.h"
#include "qellib10/quantity/formula_token.h"
#include "qellib10/quantity/program_builder.h"

namespace qel {

/// The grammar of formulas, parsed by recursive descent into steps; the later a row, the more tightly it binds:
///
///     condition    all { "or" all }
///     all          negation { "and" negation }
///     negation     [ "not" ] comparison
///     comparison   sum [ ( = <> < <= > >= ) sum ]
///     sum          product { ( + - ) product }                left to right
///     product      signed { ( * / ) signed }                  left to right
///     signed       [ + - ] signed  or  power                  -2^2 is -4
///     power        atom [ "^" signed ]                        right to left: 2^3^2 is 2^9; 2^-1 is 0.5
///     atom         number, name, "[" name "]", "const." name, "(" condition ")",
///                  function "(" condition { "," condition } ")"
class FormulaParser {
public:
    FormulaParser(std::string_view text, const FormulaScope& scope);

    /// @throws FormulaError
    FormulaProgram Parse();

private:
    enum class Type { kNumber, kTruth };
    struct Part {
        Type type = Type::kNumber;
        std::size_t position = 0, length = 0;
    };
    // Counts how deep the parser is.
    struct Nested {
        Nested(FormulaParser& parser, const FormulaToken& at);
        ~Nested() { --depth; }
        Nested(const Nested&) = delete;
        Nested& operator=(const Nested&) = delete;
        int& depth;
    };

    Part Condition();
    Part All();
    Part Negation();
    Part Comparison();
    Part Sum();
    Part Product();
    Part Signed();
    Part Power();
    Part Atom();
    Part Number();
    Part Word();
    Part Variable(const FormulaToken& name);
    Part Call(const FormulaToken& name);
    Part If(const FormulaToken& name);
    Part Round(const FormulaToken& name);
    RoundingRule Rule();

    template <class Next>
    Part Joined(FormulaOperation jump, FormulaOperation operation, std::string_view word, Next next);
    template <class Next, class... Operations> Part Numbers(Next next, Operations... operations);
    void Require(const Part& part, Type wanted) const;
    void Advance() { m_token = m_tokens.Next(); }
    FormulaToken Taken();
    FormulaToken Need(std::string_view operation, std::string expected);
    Part Since(std::size_t position, Type type) const { return {type, position, m_end - position}; }
    [[noreturn]] void Expect(std::string expected) const;
    [[noreturn]] static void Refuse(FormulaError::Kind kind, const FormulaToken& at, std::string expected,
                                    std::string nearest = {});

    std::string_view m_text;
    const FormulaScope& m_scope;
    FormulaTokens m_tokens;
    FormulaToken m_token;
    std::size_t m_end = 0;  // of the last token that was taken
    ProgramBuilder m_builder;
    int m_depth = 0;
};

}  // namespace qel
