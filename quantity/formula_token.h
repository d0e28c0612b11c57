#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qel {

struct FormulaToken {
    enum class Kind { kEnd, kNumber, kWord, kBracketed, kOperator };

    Kind kind = Kind::kEnd;
    std::size_t position = 0, length = 0;
    /// Of a number and a word without the blanks in it; of a name in [ ] what is inside, with ]] as ]; of an operator
    /// itself: ( ) , + - * / ^ = <> < <= > >=
    std::string text;

    bool Is(std::string_view wanted) const { return kind == Kind::kOperator && text == wanted; }
    bool IsWord(std::string_view wanted) const { return kind == Kind::kWord && text == wanted; }
};

/// Takes a formula apart. Blanks within numbers and names are passed over, as they always were: "1 2" is 12, and "ab c"
/// the name abc; but and, or, not end a name where they are between blanks. Comments are from // to the end of the
/// line, and from /* to */.
class FormulaTokens {
public:
    /// @p text stays the caller's
    explicit FormulaTokens(std::string_view text) : m_text(text) {}

    /// @throws FormulaError
    FormulaToken Next();

private:
    void SkipBlanks();
    FormulaToken Number();
    FormulaToken Word();
    FormulaToken Bracketed();
    FormulaToken Operator();
    void ReadExponent(std::string& number);
    char At(std::size_t at) const { return at < m_text.size() ? m_text[at] : '\0'; }

    std::string_view m_text;
    std::size_t m_at = 0;
};

}  // namespace qel
