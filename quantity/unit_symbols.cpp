#include "qellib10/quantity/unit_symbols.h"

#include <algorithm>
#include <array>

namespace qel {
namespace {

constexpr std::array<std::string_view, kBaseUnits> kBaseSymbols = {
    "m", "kg", "s", "A", "K", "mol", "cd", "rad", "eq", "kgKOH", "pH", "%", "ppm", "ppb", "times", "IU", "osm", "EU"};

constexpr std::string_view kOfActivity = " k M m µ μ u n ";

// clang-format off
constexpr UnitSymbol kSymbols[] = {
    // Length, volume, mass, time.
    {"m", "m", true},
    {"L", "0.001*m^3", true},
    {"l", "L", true},
    {"g", "0.001*kg", true},
    {"t", "1000*kg"},
    {"s", "s", true},
    {"min", "60*s"},
    {"h", "3600*s"},
    {"d", "86400*s"},
    {"秒", "s"},
    {"分", "min"},
    {"時間", "h"},

    // Amount and concentration.
    {"mol", "mol", true},
    {"M", "mol/L", true},
    {"eq", "eq", true},
    {"gKOH", "0.001*kgKOH", true},
    {"osm", "osm", true},
    {"IU", "IU", true},
    // Of enzymes. EU are endotoxin units, not exa: only the prefixes that laboratories use.
    {"U", "10^-6*mol/min", true, true, kOfActivity},
    {"EU", "EU", true, true, kOfActivity},
    {"kat", "mol/s", true},

    // Electricity.
    {"A", "A", true},
    {"V", "kg*m^2/(s^3*A)", true},
    {"C", "A*s", true},
    {"S", "A/V", true},
    {"Ω", "V/A", true},
    {"\u2126", "Ω", true},  // OHM SIGN
    {"Ohm", "Ω", true},
    {"ohm", "Ω", true},

    // Mechanics and heat.
    {"N", "kg*m/s^2", true},
    {"Pa", "N/m^2", true},
    {"bar", "100000*Pa", true},
    {"atm", "101325*Pa"},
    {"Torr", "101325*Pa/760"},
    {"mmHg", "133.322387415*Pa"},  // conventional: 13595.1 kg/m3 at 9.80665 m/s2
    {"J", "N*m", true},
    {"W", "J/s", true},
    {"Hz", "1/s", true},
    {"K", "K", true},
    {"cd", "cd", true},
    {"rad", "rad", true},
    {"sr", "rad^2"},

    // Measured: CODATA 2018. udunits2 has values of 1986.
    {"eV", "1.602176634e-19*J", true},
    {"u", "1.66053906660e-27*kg", false, false},
    {"Da", "u", true, false},

    // With a zero of their own.
    {"°C", "K @ 273.15"},
    {"℃", "°C"},
    {"degC", "°C"},

    // Ratios.
    {"%(m/m)", "0.01*g/g"},
    {"%(v/v)", "0.01*L/L"},
    {"%(n/n)", "0.01*mol/mol"},
    {"%(m/v)", "10*g/L"},
    {"ppm(m/m)", "10^-6*g/g"},
    {"ppm(v/v)", "10^-6*L/L"},
    {"ppm(n/n)", "10^-6*mol/mol"},
    {"ppm(m/v)", "0.001*g/L"},
    {"ppb(m/m)", "10^-9*g/g"},
    {"ppb(v/v)", "10^-9*L/L"},
    {"ppb(n/n)", "10^-9*mol/mol"},
    {"ppb(m/v)", "10^-6*g/L"},

    // Counts.
    {"回", "times"},
    {"count", "times"},
};
// clang-format on

constexpr UnitPrefix kPrefixes[] = {
    {"Y", "1e24"},  {"Z", "1e21"},  {"E", "1e18"},  {"P", "1e15"},  {"T", "1e12"}, {"G", "1e9"},
    {"M", "1e6"},   {"k", "1e3"},   {"h", "100"},   {"da", "10"},   {"d", "0.1"},  {"c", "0.01"},
    {"m", "1e-3"},  {"µ", "1e-6"},  {"μ", "1e-6"},  {"u", "1e-6"},  {"n", "1e-9"}, {"p", "1e-12"},
    {"f", "1e-15"}, {"a", "1e-18"}, {"z", "1e-21"}, {"y", "1e-24"},
};

}  // namespace

std::span<const UnitSymbol> UnitSymbols() { return kSymbols; }
std::span<const UnitPrefix> UnitPrefixes() { return kPrefixes; }

std::string_view BaseUnitSymbol(BaseUnit base) { return kBaseSymbols[static_cast<std::size_t>(base)]; }

std::optional<BaseUnit> FindBaseUnit(std::string_view symbol) {
    const auto found = std::ranges::find(kBaseSymbols, symbol);
    if (found == kBaseSymbols.end()) return {};
    return static_cast<BaseUnit>(found - kBaseSymbols.begin());
}

UnitValue ValueOf(BaseUnit base) {
    UnitValue value;
    value.powers[static_cast<std::size_t>(base)] = 1;
    return value;
}

}  // namespace qel
