#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// JSON with one form for each content: one object, its keys in a fixed order and all of them there, no blanks, whole
// numbers below 2^53, UTF-8. In texts the quotation mark and the backslash have a backslash before them, U+0000 to
// U+001F are \u and four lower-case digits, every other character is itself.
namespace qel {

class JsonWriter {
public:
    void Text(std::string_view key, std::string_view value);
    void Number(std::string_view key, std::uint64_t value);

    /// What was written up to now; the closing brace is the caller's.
    const std::string& Written() const noexcept { return m_text; }

private:
    void Key(std::string_view key);

    std::string m_text;
};

/// Takes such an object apart, key by key. Texts that only differ in their form are refused, but for what the caller
/// compares with the writer's own: see ReadEntry.
class JsonReader {
public:
    /// @param refusal what a text that is refused is not, such as "the line is no entry of a trail"; a literal
    explicit JsonReader(std::string_view text, const char* refusal = "the line is no entry of a trail")
        : m_rest(text), m_refusal(refusal) {}

    // All of them: @throws DataError when anything else comes next
    std::string Text(std::string_view key);
    std::uint64_t Number(std::string_view key);
    void End();

private:
    [[noreturn]] void Refuse(std::string_view key) const;
    void Key(std::string_view key);
    char Next();
    char Escaped();

    std::string_view m_rest;
    const char* m_refusal;
    bool m_isFirst = true;
};

inline constexpr std::uint64_t kLargestJsonNumber = (std::uint64_t{1} << 53) - 1;

}  // namespace qel
