#include "qellib10/calc/formula_sentence.h"

#include <algorithm>

namespace qel {
namespace {

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

// A place, and what is there.
std::string At(std::string_view formula, std::size_t position) {
    return " at byte " + std::to_string(position + 1) + ": " + Quoted(formula.substr(position));
}

}  // namespace

std::string FormulaSentence(std::string_view formula, const Failure& why) {
    const std::string_view text = formula.substr(0, formula.find('\0'));  // what CQWCalc reads
    const std::size_t position = std::min(static_cast<std::size_t>(std::max(why.position, 0)), text.size());
    switch (why.kind) {
        case FailureKind::kTooLong:
            return "the formula has more than 255 bytes";
        case FailureKind::kUnknownName:
            return "the formula names " + Quoted(why.item) + ", which has no value";
        case FailureKind::kZeroDivisor:
            return "the formula divides by zero" + At(text, position);
        case FailureKind::kSyntax:
            if (position == text.size()) return "the formula is not valid: a closing bracket is missing at its end";
            return "the formula is not valid" + At(text, position);
        default:
            return "the formula cannot be computed: " + why.text;
    }
}

}  // namespace qel
