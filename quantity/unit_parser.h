#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/quantity/unit.h"

namespace qel {

/// The grammar of units, from left to right: mg/100 mL is (mg/100)*mL, as udunits2 has it.
///
///     unit      product [ "@" number ]                                  with a zero of its own
///     product   power { ( "*" "." "·" "-" "/" "per" or nothing ) power }
///     power     atom [ [ "^" "**" ] [ + - ] digits  or  superscripts ]
///     atom      number, name, "(" product ")"
class UnitParser {
public:
    static std::optional<Unit> Parse(std::string_view text, std::string& error);
    /// Whether people read the start as a power of ten, as in "5 e3" and "10 e -3/L": it is no unit of charges e.
    static bool StartsWithExponent(std::string_view text);
    /// Whether people read the start as more digits of a number before it, as in "1 500 mg": 10^3/µL and 1/min are
    /// none.
    static bool ContinuesNumber(std::string_view text);

private:
    struct Refusal {
        std::string reason;
    };

    UnitParser(std::string_view text, int depth) : m_text(text), m_depth(depth) {}
    static Unit Read(std::string_view text, int depth);
    static Unit Meaning(std::string_view name, int depth);
    static Unit Named(std::string_view name, std::string_view definition, std::string_view factor, bool isExact,
                      int depth);
    static Unit OfLibrary(std::string_view name);

    Unit Whole();
    Unit Product();
    Unit Power();
    Unit Atom();
    Unit Number();
    Unit Name();
    std::string Basis();
    std::optional<int> Exponent();
    std::optional<int> Superscript();
    std::optional<Decimal> ReadNumber();
    bool Take(std::string_view sign);
    bool StartsAtom() const;
    void SkipBlanks();
    std::string_view Rest() const { return m_text.substr(m_at); }
    [[noreturn]] void RefuseHere() const;

    std::string_view m_text;
    std::size_t m_at = 0;
    int m_depth;  // of brackets and definitions
};

}  // namespace qel
