#include "qellib10/quantity/formula_error.h"

#include <algorithm>

namespace qel {
namespace {

// Counted as people count: characters from 1, not bytes.
std::string PlaceOf(std::string_view formula, std::size_t position) {
    if (position >= formula.size()) return " at its end";
    const auto before = std::ranges::count_if(formula.substr(0, position),
                                              [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
    return " at character " + std::to_string(before + 1);
}

}  // namespace

std::string FormulaError::Text(std::string_view formula) const {
    const std::string place = PlaceOf(formula, position);
    const std::string piece(formula.substr(std::min(position, formula.size()), length));
    const std::string quoted = piece.empty() ? "" : ": \"" + piece + '"';
    switch (kind) {
        case Kind::kSyntax:
            return "the formula is not valid" + place + quoted + ": " + expected + " is expected";
        case Kind::kName:
            return expected + " that nobody knows" + place + quoted +
                   (nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?");
        case Kind::kArguments:
            return "wrong arguments" + place + quoted + ": " + expected + " is expected";
        case Kind::kType:
            return expected + " is needed" + place + quoted;
        case Kind::kTooLong:
            return "the formula is too long";
        case Kind::kTooDeep:
            return "the formula is nested too deeply" + place;
        case Kind::kText:
            return "the formula is not UTF-8" + place;
        case Kind::kDividedByZero:
            return "a division by zero" + place + quoted;
        case Kind::kUndefined:
            return "the result is not defined" + place + quoted;
        case Kind::kTooLarge:
            return "the number is too large" + place + quoted + (expected.empty() ? "" : ": " + expected);
        case Kind::kReading:
            return "not determinable" + place + quoted + ", because of " + expected;
        case Kind::kCycle:
            return "the formula needs its own result" + place + quoted + ": " + expected;
        case Kind::kUncertainty:
            return "the uncertainty cannot be computed" + (quoted.empty() ? "" : place + quoted) + ", because of " +
                   expected;
        case Kind::kUnit:
            return "the units do not go together" + place + quoted + ": " + expected;
    }
    return {};
}

}  // namespace qel
