#include "qellib10/graph/unit_prefix.h"

#include <algorithm>
#include <array>

namespace qel {
namespace {

// Symbols without a prefix of their own. Both characters that look like an ohm are in use.
constexpr std::array<std::string_view, 37> kSymbols = {
    "m",  "g",  "s",  "A",      "K",      "mol", "cd", "L",   "l",  "Hz",  "N",  "Pa", "bar",
    "J",  "eV", "W",  "C",      "V",      "F",   "S",  "Wb",  "T",  "H",   "lm", "lx", "Bq",
    "Gy", "Sv", "Da", "\u03A9", "\u2126", "kat", "M",  "cal", "AU", "cps", "cpm"};

// Between the factors of a unit.
constexpr std::array<std::string_view, 6> kBetween = {"/", " ", "\u00B7", "\u22C5", "*", "\u00D7"};

}  // namespace

bool TakesPrefix(std::string_view unit) {
    if (unit.find('%') != std::string_view::npos) return false;  // "mol %" is no amount
    std::size_t end = unit.size();
    for (const std::string_view between : kBetween) end = std::min(end, unit.find(between));
    return std::ranges::find(kSymbols, unit.substr(0, end)) != kSymbols.end();
}

}  // namespace qel
