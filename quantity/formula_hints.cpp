#include "qellib10/quantity/formula_hints.h"

#include <algorithm>
#include <array>
#include <string>

#include "qellib10/platform/text/unicode.h"
#include "qellib10/platform/text/utf8_name.h"
#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_token.h"

namespace qel {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

struct LookAlike {
    std::string_view sign, meant;
};
constexpr std::array kLookAlikes = {
    LookAlike{"＋", "\"+\""},        // full width
    LookAlike{"－", "\"-\""},        // full width
    LookAlike{"−", "\"-\""},         // U+2212, the minus sign
    LookAlike{"–", "\"-\""},         // U+2013, a dash
    LookAlike{"＊", "\"*\""},        // full width
    LookAlike{"×", "\"*\""},         // U+00D7
    LookAlike{"／", "\"/\""},        // full width
    LookAlike{"÷", "\"/\""},         // U+00F7
    LookAlike{"＾", "\"^\""},        // full width
    LookAlike{"（", "\"(\""},        // full width
    LookAlike{"）", "\")\""},        // full width
    LookAlike{"，", "\",\""},        // full width
    LookAlike{"、", "\",\""},        // U+3001
    LookAlike{"＝", "\"=\""},        // full width
    LookAlike{"＜", "\"<\""},        // full width
    LookAlike{"＞", "\">\""},        // full width
    LookAlike{"≤", "\"<=\""},        // U+2264
    LookAlike{"≥", "\">=\""},        // U+2265
    LookAlike{"≠", "\"<>\""},        // U+2260
    LookAlike{"\u3000", "a blank"},  // ideographic
    LookAlike{"\u00A0", "a blank"},  // that breaks no line
};

}  // namespace

std::size_t EndOfUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        const bool isCharacter = NextCharacter(text, at) != kReplacementCharacter;
        if (!isCharacter && text.substr(start, at - start) != "\uFFFD") return start;
    }
    return text.size();
}

void RefuseLookAlikes(std::string_view formula, std::size_t position, std::size_t length) {
    const std::string_view name = formula.substr(position, length);
    for (std::size_t at = 0; at < name.size(); ++at)
        for (const auto& [sign, meant] : kLookAlikes)
            if (name.substr(at).starts_with(sign))
                throw FormulaError{FormulaError::Kind::kSyntax, position + at, sign.size(), std::string(meant), {}, {}};
    for (std::size_t at = 0; at < name.size();) {
        const std::size_t end = std::min(name.find_first_of(kBlanks, at), name.size());
        const std::string word = FoldUtf8Name(name.substr(at, end - at));
        if (IsOperatorWord(word))
            throw FormulaError{FormulaError::Kind::kName, position + at, end - at, "an operator", word, {}};
        at = std::min(name.find_first_not_of(kBlanks, end), name.size());
    }
}

}  // namespace qel
