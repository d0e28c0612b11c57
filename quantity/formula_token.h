#pragma once

#include <cstddef>
#include <forward_list>
#include <string>
#include <string_view>
#include <utility>

namespace qel {

struct FormulaToken {
    enum class Kind { kEnd, kNumber, kWord, kBracketed, kOperator };

    Kind kind = Kind::kEnd;
    std::size_t position = 0, length = 0;
    /// Of a number and a word without the blanks in it; of a name in [ ] what is inside, with ]] as ]; of an operator
    /// itself: ( ) , + - * / ^ = <> < <= > >=
    /// It stays as long as the formula and its FormulaTokens.
    std::string_view text;

    bool Is(std::string_view wanted) const {
        return kind == Kind::kOperator && text.size() == wanted.size() && text.front() == wanted.front() &&
               text.back() == wanted.back();  // of two characters at most
    }
    bool IsWord(std::string_view wanted) const {
        return kind == Kind::kWord && text.size() == wanted.size() && text == wanted;
    }
};

/// Takes a formula apart. Blanks within numbers and names are passed over, as they always were: "1 2" is 12, and "ab c"
/// the name abc; but and, or, not end a name where they are between blanks. Comments are from // to the end of the
/// line, and from /* to */.
class FormulaTokens {
public:
    /// @p text stays the caller's
    explicit FormulaTokens(std::string_view text) : m_text(text) {}
    FormulaTokens(const FormulaTokens&) = delete;
    FormulaTokens& operator=(const FormulaTokens&) = delete;

    /// @throws FormulaError
    FormulaToken Next();

private:
    void SkipBlanks();
    FormulaToken Number();
    FormulaToken Word();
    FormulaToken Bracketed();
    FormulaToken Operator();
    void PassExponent();
    std::string_view Kept(std::string text) { return m_joined.emplace_front(std::move(text)); }
    std::string_view WithoutBlanks(std::size_t first, std::size_t end);
    char At(std::size_t at) const { return at < m_text.size() ? m_text[at] : '\0'; }

    std::string_view m_text;
    std::size_t m_at = 0;
    std::forward_list<std::string> m_joined;  // texts of tokens that differ from the formula
};

/// and, or, not
bool IsOperatorWord(std::string_view word);

/// A variable's name as a formula has it: in [ ] where it is not read otherwise.
std::string WrittenName(const std::string& name);

}  // namespace qel
