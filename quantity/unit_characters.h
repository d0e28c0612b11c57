#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

// The characters that texts of units are made of.
namespace qel {

constexpr std::array<std::string_view, 12> kSuperscripts = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹", "⁻", "⁺"};
constexpr std::array<std::string_view, 2> kDots = {"·", "⋅"};

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }

/// The bytes of the character of a name that @p text starts with; 0 if there is none.
std::size_t NameCharacter(std::string_view text);
/// For an error.
std::string Quoted(std::string_view text);

}  // namespace qel
