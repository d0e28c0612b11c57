#include "qellib10/quantity/library_factors.h"

#include <algorithm>
#include <string_view>

namespace qel {
namespace {

// Between 1 and 10: prefixes change the power of ten only.
struct Row {
    std::string_view theirs;
    std::string_view definition{};  // where it has other digits
    bool isExact = true;
    std::string_view divisor = "1";  // of the definition, where their quotient has no end
};

// clang-format off
constexpr Row kRows[] = {
    {"1"},  // all that is a power of ten, such as dyne and gauss
    {"6"},  // minute
    {"3.6"},  // hour, watt hour
    {"8.64"},  // day
    {"6.048"},  // week
    {"1.2096"},  // fortnight
    {"3.1536"},  // year of 365 days
    {"3.16224"},  // year of 366 days
    {"3.15576"},  // Julian year
    {"3.1556952"},  // Gregorian year
    {"1.495978707"},  // astronomical unit
    {"1.852"},  // nautical mile
    {"3.7"},  // curie
    {"2.58"},  // roentgen
    {"2"},  // carat
    {"4.5359237"},  // pound
    {"6.479891"},  // grain
    {"1.2959782"},  // scruple
    {"3.8879346"},  // apothecary dram
    {"3.11034768"},  // apothecary ounce
    {"3.732417216"},  // apothecary pound
    {"4.263768278"},  // bag of 94 pounds
    {"9.0718474"},  // short ton
    {"1.0160469088"},  // long ton
    {"2.54"},  // inch, mil
    {"3.048"},  // foot
    {"9.144"},  // yard
    {"1.609344"},  // mile
    {"4.54609"},  // gallon of the UK
    {"1.1365225"},  // its quart
    {"5.6826125"},  // its pint
    {"2.84130625"},  // its cup and fluid ounce
    {"1.420653125"},  // its gill
    {"9.80665"},  // standard gravity, kilogram-force, metre of water
    {"4.4482216152605"},  // pound-force
    {"1.01325"},  // atmosphere
    {"1.33322387415"},  // metre of mercury at 13595.1 kg/m3
    {"3.386388640341"},  // inch of mercury
    {"2.98906692"},  // foot of water
    {"4.184"},  // thermochemical calorie
    {"4.1868"},  // calorie of the international table
    {"1.05505585262"},  // Btu of the international table
    {"7.46"},  // electric horsepower
    {"1.55"},  // clo
    {"1.8"},  // degree Rankine: K/1.8

    // Rounded there, or older; the definitions of today.
    {"3.785412", "3.785411784"},  // gallon of the US
    {"9.46353", "9.46352946"},  // its quart
    {"4.731765", "4.73176473"},  // its pint
    {"2.3658825", "2.365882365"},  // its cup
    {"1.18294125", "1.1829411825"},  // its gill
    {"2.957353125", "2.95735295625"},  // its fluid ounce
    {"1.4786765625", "1.478676478125"},  // tablespoon
    {"4.928921875", "4.92892159375"},  // teaspoon
    {"3.69669140625", "3.6966911953125"},  // its fluid dram
    {"1.58987304", "1.58987294928"},  // barrel of oil
    {"3.9746826", "3.9746823732"},  // firkin
    {"4.404884", "4.40488377086"},  // dry gallon
    {"1.101221", "1.101220942715"},  // its quart
    {"5.506105", "5.506104713575"},  // its pint
    {"3.523907", "3.523907016688"},  // bushel
    {"8.8097675", "8.80976754172"},  // peck
    {"2.359737", "2.359737216"},  // board foot
    {"2.831685", "2.8316846592"},  // register ton
    {"2.834952", "2.8349523125"},  // avoirdupois ounce
    {"1.771845", "1.7718451953125"},  // its dram
    {"3.110348", "3.11034768"},  // troy ounce
    {"3.732417", "3.732417216"},  // troy pound
    {"1.555174", "1.55517384"},  // pennyweight
    {"5.080235", "5.080234544"},  // long hundredweight
    {"4.535924", "4.5359237"},  // short hundredweight
    {"2.780139", "2.7801385095378125"},  // ounce-force
    {"1.38255", "1.38254954376"},  // poundal
    {"7.456999", "7.4569987158227022"},  // horsepower: 550 foot pound-force per second
    {"7.457", "7.4569987158227022"},  // horsepower of the UK
    {"7.35499", "7.3549875"},  // metric horsepower
    {"9.46073", "9.4607304725808"},  // light year
    {"1.60217733", "1.602176634"},  // electronvolt
    {"1.602176487", "1.602176634"},  // elementary charge
    {"6.02214179", "6.02214076"},  // Avogadro constant, molecule
    {"9.648531", "9.64853321233100184"},  // faraday

    {"6.89475729316836", "44.482216152605", true, "6.4516"},  // psi: pound-force per square inch
    {"1.45939", "4.4482216152605", true, "3.048"},  // slug: pound-force per foot per second squared

    // Measured, or without an end.
    {"1.6605402", "1.66053906660", false},  // unified atomic mass unit: CODATA 2018
    {"3.085678", "3.085677581491367279", false},  // parsec: 648000/pi astronomical units
};
// clang-format on

}  // namespace

std::optional<LibraryFactor> DefinedFactor(const Decimal& factor) {
    if (!factor.IsFinite() || factor.IsZero()) return {};
    DecimalFlags flags;
    const int magnitude = factor.Magnitude();
    const Decimal power = Decimal::Scaled(1, magnitude, flags);
    const Decimal digits = Divide(factor, power, flags);
    const auto row =
        std::ranges::find_if(kRows, [&](const Row& each) { return Decimal::OfText(each.theirs, flags) == digits; });
    if (row == std::end(kRows)) return {};
    const Decimal value = Decimal::OfText(row->definition.empty() ? row->theirs : row->definition, flags);
    return LibraryFactor{Multiply(value, power, flags).Reduced(), Decimal::OfText(row->divisor, flags), row->isExact};
}

}  // namespace qel
