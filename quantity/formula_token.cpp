#include "qellib10/quantity/formula_token.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_hints.h"

namespace qel {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kNotInWords = " \t\r\n()*+-/=^<>,[]";

constexpr std::array<std::string_view, 3> kOperatorWords = {"and", "or", "not"};

constexpr std::array<bool, 256> Among(std::string_view characters) {
    std::array<bool, 256> among = {};
    for (const char c : characters) among[static_cast<unsigned char>(c)] = true;
    return among;
}
constexpr auto kIsBlank = Among(kBlanks), kIsNotInWord = Among(kNotInWords);

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsBlank(char c) { return kIsBlank[static_cast<unsigned char>(c)]; }
bool IsInWord(char c) { return !kIsNotInWord[static_cast<unsigned char>(c)]; }

[[noreturn]] void Refuse(std::size_t position, std::size_t length, std::string expected) {
    throw FormulaError{FormulaError::Kind::kSyntax, position, length, std::move(expected), {}, {}};
}

}  // namespace

bool IsOperatorWord(std::string_view word) { return std::ranges::find(kOperatorWords, word) != kOperatorWords.end(); }

void FormulaTokens::SkipBlanks() {
    for (;;) {
        while (m_at < m_text.size() && IsBlank(m_text[m_at])) ++m_at;
        if (At(m_at) != '/') return;
        const std::string_view rest = m_text.substr(m_at);
        if (rest.starts_with("//")) {
            m_at += std::min(rest.find('\n'), rest.size());
        } else if (rest.starts_with("/*")) {
            const std::size_t end = rest.find("*/", 2);
            if (end == std::string_view::npos) Refuse(m_at, 2, "*/ after the comment");
            m_at += end + 2;
        } else {
            return;
        }
    }
}

FormulaToken FormulaTokens::Next() {
    SkipBlanks();
    if (m_at == m_text.size()) return {FormulaToken::Kind::kEnd, m_at, 0, {}};
    const char c = m_text[m_at];
    if (IsDigit(c) || c == '.') return Number();
    if (c == '[') return Bracketed();
    return IsInWord(c) ? Word() : Operator();
}

// An exponent follows without a blank: "1e-3"; "1 e" is a number before a name.
void FormulaTokens::PassExponent() {
    if (At(m_at) != 'e' && At(m_at) != 'E') return;
    const std::size_t sign = At(m_at + 1) == '-' || At(m_at + 1) == '+' ? 1 : 0;
    if (!IsDigit(At(m_at + 1 + sign))) return;
    for (m_at += 1 + sign; IsDigit(At(m_at));) ++m_at;
}

std::string_view FormulaTokens::WithoutBlanks(std::size_t first, std::size_t end) {
    const std::string_view all = m_text.substr(first, end - first);
    if (std::ranges::none_of(all, IsBlank)) return all;
    std::string joined;
    std::ranges::copy_if(all, std::back_inserter(joined), [](char c) { return !IsBlank(c); });
    return Kept(std::move(joined));
}

FormulaToken FormulaTokens::Number() {
    FormulaToken token{FormulaToken::Kind::kNumber, m_at, 0, {}};
    bool hasPoint = false, hasDigit = false;
    std::size_t end = m_at;
    for (std::size_t at = m_at; IsDigit(At(at)) || At(at) == '.' || IsBlank(At(at)); ++at) {
        const char c = m_text[at];
        if (IsBlank(c)) continue;
        if (c == '.' && std::exchange(hasPoint, true)) Refuse(at, 1, "one decimal point in a number");
        hasDigit |= c != '.';
        end = at + 1;
    }
    m_at = end;
    if (!hasDigit) Refuse(token.position, end - token.position, "a digit");
    PassExponent();
    token.length = m_at - token.position;
    token.text = WithoutBlanks(token.position, m_at);
    const std::size_t start = m_at;
    SkipBlanks();
    if (m_at < m_text.size() && (IsInWord(m_text[m_at]) || m_text[m_at] == '[')) {
        const std::size_t after = m_at;
        const FormulaToken name = m_text[m_at] == '[' ? Bracketed() : Word();
        if (!IsOperatorWord(name.text)) {
            if (name.kind == FormulaToken::Kind::kWord) RefuseLookAlikes(m_text, after, name.length);
            Refuse(after, name.length, "an operator between a number and a name");
        }
    }
    m_at = start;
    return token;
}

FormulaToken FormulaTokens::Word() {
    FormulaToken token{FormulaToken::Kind::kWord, m_at, 0, {}};
    std::string joined;  // of several pieces
    std::size_t end = m_at;
    for (std::size_t at = m_at; at < m_text.size() && IsInWord(m_text[at]);) {
        std::size_t past = at;
        while (past < m_text.size() && IsInWord(m_text[past])) ++past;
        const std::string_view piece = m_text.substr(at, past - at);
        if (token.text.empty()) {
            token.text = piece;
        } else {
            if (IsOperatorWord(piece)) break;
            if (joined.empty()) joined = token.text;
            token.text = joined += piece;
        }
        end = past;
        if (IsOperatorWord(token.text)) break;
        at = past;
        while (at < m_text.size() && IsBlank(m_text[at])) ++at;
    }
    m_at = end;
    token.length = end - token.position;
    if (!joined.empty()) token.text = Kept(std::move(joined));
    return token;
}

FormulaToken FormulaTokens::Bracketed() {
    FormulaToken token{FormulaToken::Kind::kBracketed, m_at, 0, {}};
    std::string name;
    for (std::size_t at = m_at + 1; at < m_text.size(); ++at) {
        if (m_text[at] == ']' && At(at + 1) != ']') {
            m_at = at + 1;
            token.length = m_at - token.position;
            if (name.empty()) Refuse(token.position, token.length, "a name in [ ]");
            token.text = Kept(std::move(name));
            return token;
        }
        if (m_text[at] == ']') ++at;
        name += m_text[at];
    }
    Refuse(m_at, 1, "] after the name");
}

FormulaToken FormulaTokens::Operator() {
    const std::string_view rest = m_text.substr(m_at);
    const bool isDouble = rest.starts_with("<=") || rest.starts_with(">=") || rest.starts_with("<>");
    FormulaToken token{FormulaToken::Kind::kOperator, m_at, isDouble ? 2U : 1U, {}};
    token.text = rest.substr(0, token.length);
    if (token.Is("]")) Refuse(m_at, 1, "[ before ]");
    m_at += token.length;
    return token;
}

std::string WrittenName(const std::string& name) {
    const bool isWord = !name.empty() && std::ranges::all_of(name, IsInWord) && !IsDigit(name.front()) &&
                        name.front() != '.' && !IsOperatorWord(name);
    if (isWord || name.empty()) return name;
    std::string written = "[";
    for (const char c : name) written.append(c == ']' ? 2 : 1, c);
    return written + ']';
}

}  // namespace qel
