#include "qellib10/quantity/unit.h"

#include <fstream>
#include <iterator>
#include <sstream>

#include "../support/output_of.h"
#include "../support/test.h"
#include "qellib10/base/read_number.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/string_table.h"
#include "qellib10/platform/units/unit_library.h"
#include "qellib10/quantity/formula_constants.h"
#include "qellib10/quantity/ucum_codes.h"
#include "qellib10/quantity/unit_symbols.h"

#include "qellib10/resource/qel_resource.h"
#include "qellib10/resource/string_ids.h"

namespace {

using qel::Decimal;
using qel::Unit;

Unit Parsed(const std::string& text) {
    std::string error;
    const std::optional<Unit> unit = Unit::Parse(text, error);
    EXPECT_TRUE(unit.has_value()) << text << ": " << error;
    return unit.value_or(Unit());
}

// The value in the other unit, with a mark where digits are missing; "none" where no factor converts it.
std::string Converted(const std::string& value, const std::string& from, const std::string& to,
                      const std::string& molarMass = "") {
    qel::DecimalFlags flags;
    std::optional<Decimal> mass;
    if (!molarMass.empty()) mass = Decimal::OfText(molarMass, flags);
    const auto result = qel::Convert(Decimal::OfText(value, flags), Parsed(from), Parsed(to), flags, mass);
    if (!result) return "none";
    return (flags.isInexact ? "~" : "") + result->Reduced().PlainText();
}

std::string ErrorOf(const std::string& text) {
    std::string error;
    EXPECT_FALSE(Unit::Parse(text, error)) << text;
    return error;
}

}  // namespace

TEST(Unit, ReadsTheTextsOfTheStringTable) {
    for (const bool isJapanese : {false, true}) {
        qel::SetTableLanguage(isJapanese ? qel::Language::Japanese : qel::Language::English);
        for (UINT id = qel::kFirstUnitId; id <= qel::kLastUnitId; ++id) {
            const std::string text = qel::ToUtf8(CQELResource::GetUnitText(id).View());
            const Unit unit = Parsed(text);
            EXPECT_FALSE(unit.IsNumber()) << text;
            EXPECT_EQ(unit.Text(), text);
        }
    }
    for (const auto& [japanese, english] :
         Cases<const char*, const char*>{{"℃", "°C"}, {"秒", "s"}, {"分", "min"}, {"時間", "h"}, {"回", "times"}})
        EXPECT_EQ(Parsed(japanese), Parsed(english)) << japanese;
}

TEST(Unit, ConvertsExactly) {
    for (const auto& [value, from, to, expected] : Cases<const char*, const char*, const char*, const char*>{
             {"5", "mg/mL", "g/L", "5"},
             {"1", "mg/dL", "µg/mL", "10"},
             {"90", "min", "h", "1.5"},
             {"10", "min", "h", "~0.1666666666666666666666666666666667"},
             {"1.5", "時間", "分", "90"},
             {"6", "mL/min", "µL/s", "100"},
             {"1413", "µS/cm", "mS/cm", "1.413"},
             {"0.1", "mol/L", "mmol/mL", "0.1"},
             {"7", "U/L", "nkat/L", "~116.6666666666666666666666666666667"},
             {"25", "°C", "K", "298.15"},
             {"25", "°C", "degF", "77"},
             {"25", "° C", "° F", "77"},
             {"50", "degF", "℃", "10"},
             {"0", "K", "°C", "-273.15"},
             {"1", "lb", "g", "453.59237"},
             // Where udunits2 has rounded factors, or old ones, those of the definitions.
             {"1", "gallon", "mL", "3785.411784"},
             {"2", "pints", "mL", "946.352946"},
             {"1", "oz", "mL", "29.5735295625"},
             {"1", "teaspoon", "mL", "4.92892159375"},
             {"1", "hp", "W", "745.69987158227022"},
             {"1", "kilogallon", "L", "3785.411784"},
             {"1", "troy_ounce", "mg", "31103.4768"},
             {"1", "light_year", "m", "9460730472580800"},
             {"1", "megaelectronvolt", "MeV", "1"},
             {"1", "lbf", "N", "4.4482216152605"},
             {"1", "amu", "g", "~0.0000000000000000000000016605390666"},
             {"6.02214076", "Ymolecule", "mol", "10"},
             {"1", "slug", "kg", "~14.59390293720636482939632545931759"},
             {"1", "bar", "psi", "~14.5037737730209215154241027951194"},
             {"1", "sidereal_day", "s", "~86164.09"},  // rounded there
             {"1", "kg/day", "g/h", "~41.66666666666666666666666666666667"},
             {"2", "mg/g", "%(m/m)", "0.2"},
             {"0.5", "%(w/w)", "ppm(m/m)", "5000"},
             {"0.9", "%(m/v)", "g/L", "9"},
             {"3", "ppm(m/v)", "mg/L", "3"},
             {"2", "mL/L", "%(v/v)", "0.2"},
             {"2", "mmol/mol", "ppm(n/n)", "2000"},
             {"5", "%(m/m)", "1", "0.05"},
             {"4", "M", "mol/m3", "4000"},
             {"1", "mg/100 mL", "mg*mL", "0.01"},  // from left to right
             {"1", "degree", "rad", "~0.017453292519943295"},
             {"3", "回", "times", "3"},
             {"2", "kEU/L", "EU/mL", "2"},
             {"2", "MU/L", "kU/mL", "2"},
             {"2", "% (w/w)", "mg/g", "20"},
             {"2", "ppm m/m", "mg/kg", "2"},
             {"2", "% / min", "%/h", "120"},
             {"5", "%(m/m)*%(v/v)", "1", "0.0005"},
             // A share of a mass is a mass, of a flow a flow, of a pressure a pressure.
             {"5", "%(m/m)*g", "g", "0.05"},
             {"5", "%(m/m)*g/min", "g/min", "0.05"},
             {"5", "%(m/m)*(g/min)", "g/min", "0.05"},
             {"5", "%(m/m)*(J/g)", "J/g", "0.05"},
             {"5", "%(m/m)*(IU/mg)", "IU/mg", "0.05"},
             {"5", "%(v/v)*(mL/min)", "mL/min", "0.05"},
             {"5", "%(n/n)*kPa", "Pa", "50"},
             {"5", "mol/(mol/L)", "L", "5"},
             {"5", "%(m/m)/min", "mg/(g*min)", "50"},
             // What converts to nothing else.
             {"1", "%(m/m)", "%(v/v)", "none"},
             {"1", "%", "%(m/m)", "none"},
             {"1", "%", "1", "none"},
             {"1", "ppm", "ppb", "none"},
             {"1", "1", "%(m/m)", "none"},
             {"1", "mg/g", "mL/L", "none"},
             {"1", "pH", "1", "none"},
             {"1", "pH", "mV", "none"},
             {"1", "meq/L", "mmol/L", "none"},
             {"1", "mgKOH/g", "mg/g", "none"},
             {"1", "times", "1", "none"},
             {"1", "IU/L", "U/L", "none"},
             {"1", "EU/L", "U/L", "none"},
             {"1", "EU", "IU", "none"},
             {"1", "%(m/m)*%(v/v)", "%(m/m)", "none"},
             {"1", "%(m/m)/%(v/v)", "%(v/v)", "none"},
             {"1", "%(m/m)*%(v/v)/%(v/v)", "%(v/v)", "none"},
             {"1", "%(m/m)/min", "%(v/v)/min", "none"},
             {"1", "%(m/m)/min", "1/min", "none"},
             {"1", "mg/(g*min)", "1/min", "none"},
             {"1", "%(m/m)*mL", "mL", "none"},
             {"1", "mL", "%(m/m)*mL", "none"},
             {"1", "%(m/m)*mV", "mV", "none"},
             {"1", "mg", "mL", "none"},
         })
        EXPECT_EQ(Converted(value, from, to), expected) << from << " -> " << to;
}

TEST(Unit, AMolarMassJoinsMassAndAmountOnly) {
    for (const auto& [value, from, to, mass, expected] :
         Cases<const char*, const char*, const char*, const char*, const char*>{
             {"5.5", "mmol/L", "mg/dL", "180.156", "99.0858"},
             {"99.0858", "mg/dL", "mmol/L", "180.156", "5.5"},
             {"2", "mol", "g", "18.015", "36.03"},
             {"1", "mmol/g", "mg/g", "40", "40"},
             {"4", "%(m/m)", "mmol/g", "40", "1"},
             {"40", "kJ/mol", "kJ/g", "20", "2"},
             {"5", "mmol/L", "mg/dL", "", "none"},
             {"5", "mmol/L", "mg/dL", "0", "none"},
             {"5", "mmol/L", "mg/dL", "NaN", "none"},
             {"1", "meq/L", "mg/L", "40", "none"},
             {"1", "%(v/v)", "mmol/g", "40", "none"},
             {"1", "%(n/n)", "%(m/m)", "40", "none"},
             {"1", "1", "g/mol", "40", "none"},
         })
        EXPECT_EQ(Converted(value, from, to, mass), expected) << from << " -> " << to;
}

TEST(Unit, ErrorsSayWhatIsWrong) {
    const std::string apart = ": an exponent follows its number without a blank, as in 5e3; of charges e it is e^3";
    for (const auto& [text, expected] : Cases<std::string, std::string>{
             {"mgg", "\"mgg\" is not a unit that is known"},
             {"mg/", "\"mg/\" is not a unit: its end is missing"},
             {"(mg", "\"(mg\" is not a unit: its end is missing"},
             {"mg)", "\"mg)\" is not a unit: a name is expected at \")\""},
             {"m^", "\"m^\" is not a unit: its end is missing"},
             {"m^0.5", "\"m^0.5\": an exponent is one whole number"},
             {"g**1.5", "\"g**1.5\": an exponent is one whole number"},
             {"m0.5", "\"m0.5\": an exponent is one whole number"},
             {"10^2.5", "\"10^2.5\": an exponent is one whole number"},
             {"m²3", "\"m²3\": an exponent is one whole number"},
             {"m^2-1", "\"m^2-1\": an exponent is one whole number"},
             {"5 e3", "\"5 e3\"" + apart},
             {"10 e -3/L", "\"10 e -3/L\"" + apart},
             {"e 3", "\"e 3\"" + apart},
             {"12 345", "\"12 345\": a number is written without blanks, as 12345"},
             {"mg/(1 000.5 mL)", "\"mg/(1 000.5 mL)\": a number is written without blanks, as 12345"},
             {"m.5", "\"m.5\": a point before a digit is neither a product nor a whole exponent"},
             {"s⁻", "\"s⁻\" is not a unit: its end is missing"},
             {"s⁻/m", "\"s⁻/m\" is not a unit: a name is expected at \"/m\""},
             {"m^200", "\"m^200\" is out of the range of units"},
             {"m^99999999999", "\"m^99999999999\" is out of the range of units"},
             {"1e400 m", "\"1e400 m\" is out of the range of units"},
             {"0 m", "\"0 m\": a unit is not 0"},
             {"GU", "\"GU\" is not a unit that is known"},
             {"mg/L as N", "\"mg/L as N\": a unit does not say of which substance it is, as \"as N\" does"},
             {"% (v/m)", "\"%(v/m)\" needs a basis, as in %(m/m), ppm(v/v) or ppb(n/n)"},
             {"ppmv", "\"ppmv\" needs a basis, as in %(m/m), ppm(v/v) or ppb(n/n)"},
             {"Percent", "\"Percent\" needs a basis, as in %(m/m), ppm(v/v) or ppb(n/n)"},
             {"W/(m °C)", "\"W/(m °C)\": a temperature such as °C has no products and quotients; K has"},
             {"°C^2", "\"°C^2\": a temperature such as °C has no powers; K has"},
             {"s @ 5", "\"s @ 5\" has a zero that no conversion is for"},
             {"ucum:mg/dl", "\"mg/dl\" is not a code of UCUM that is known here"},
             {"\xff", "the unit is not UTF-8"},
             {std::string(257, 'm'), "a unit has at most 256 bytes"},
             {std::string(100, '(') + "m" + std::string(100, ')'), "the unit is nested too deeply"},
             {std::string("m\0g", 3), "\"m?g\" is not a unit: a name is expected at \"?g\""},
         })
        EXPECT_EQ(ErrorOf(text), expected);
}

TEST(Unit, TextsReadAsTheSameUnit) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"", "1"},
             {" mg / mL ", "mg/mL"},
             {"J mol-1 K-1", "J/(mol*K)"},
             {"kg·m²·s⁻²", "kg*m^2/s^2"},
             {"m per s", "m/s"},
             {"kg.m-3", "kg/m^3"},
             {"m-s", "m*s"},
             {"m**2", "m^2"},
             {"g/g", "g/g"},
             {"(g/g)*(L/L)", "(g/g)*(L/L)"},
             {"g/L*mL/g", "0.001*(g/g)"},
             {"1/L*mL", "0.001*((g*mol/L)/(g*mol/L))"},
             {"(g/L)/(mg/L)", "1000*((g/L)/(g/L))"},
             {"%(m/m)*%(v/v)/%(v/v)", "0.01*(g/g)*(L/L)"},
             {"% w/w", "%(m/m)"},
             {"% m/min", "%*m/min"},
             {"s/min", "s/min"},
             {"mg/g/min", "mg/(g*min)"},
             {"mL*(mg/g)", "0.000000001*(g/g)*m^3"},
             {"%(m/m)*(mg/g)*V", "0.00001*(g/g)*(m^2*kg/(s^3*A))"},
             {"mV/mL", "mV/mL"},
             {"%(w/v)/min", "%(m/v)/min"},
             {"K @ 273.15", "K @ 273.15"},
             {"1/(1/s)", "s"},
             {"e^3*e/eV", "e^4/eV"},
             {"12 10^3/µL", "12*10^3/µL"},
             {"10*500 mg", "10*500*mg"},
             {"ucum:10*3/uL", "10^3/µL"},
         }) {
        const Unit unit = Parsed(text);
        EXPECT_EQ(unit.Text(), expected) << text;
        EXPECT_EQ(Parsed(unit.Text()), unit) << text;
    }
    for (const qel::UcumCode& code : qel::UcumCodes()) {
        const Unit unit = Parsed("ucum:" + std::string(code.code));
        EXPECT_EQ(Parsed(unit.Text()), unit) << code.code;
    }
    for (const qel::FormulaConstant& constant : qel::FormulaConstants()) Parsed(std::string(constant.unit));
}

TEST(Unit, ARatioIsOneOfWhatWasDivided) {
    const int m = qel::kRatioOfMasses, v = qel::kRatioOfVolumes, n = qel::kRatioOfAmounts, mixed = qel::kRatioOfMixed;
    for (const auto& [text, expected] : Cases<const char*, int>{
             {"mL*mol/L*g/mol/g", m},
             {"g/L/(g/mL)", m | v},
             {"mg/mL/g*mL", qel::kRatioOfAny},
             {"mV/mV", 0},
             {"%(m/m)/%(m/m)", 0},
             {"5*%(m/m)", m},
             {"%(v/v)*(1/mL*mL)", qel::kRatioOfAny},
             {"%(m/m)*%(m/m)", m},
             {"%(m/m)*%(v/v)", mixed},
             // By molar masses a mass fraction becomes an amount fraction, by densities one of volumes.
             {"%(m/m)*((g/mol)/(g/mol))", m | n},
             {"%(m/m)*(g/mol)/(g/mol)", m | n},
             {"%(m/m)/((g/mol)/(g/mol))", m | n},
             {"%(n/n)/(g/mol)*(g/mol)", m | n},
             {"%(m/m)/(g/mol)*(g/mol)", m | n},
             {"%(m/m)/(g/mol)*(g/mol*%(v/v))", mixed},
             {"%(n/n)*kPa/Pa", n},
             {"%(m/m)*(g/min)/(g/min)", m},
             {"%(m/m)*(g/L)/(g/mL)", m | v},
             {"%(v/v)*((g/mol)/(g/mol))", mixed},
             {"%(v/v)*(g/mol)/(g/mol)", mixed},
             // A dilution by volumes, with brackets and without.
             {"%(m/m)*(mL/L)", mixed},
             {"%(m/m)*mL/L", mixed},
             {"mL*%(m/m)/L", mixed},
             {"%(m/m)*mol/L*mL/mol", mixed},
             {"%(v/v)*mL/L", v},
             // A mass fraction of a mass is a mass, and a slope gives back what it is of.
             {"%(m/m)*g/g", m},
             {"%(m/m)*mL*g/L/(g/mol)/mol", n},
             {"%(m/m)/mL*mL", m},
             {"mV/(mV/%(m/m))", m},
         })
        EXPECT_EQ(int{Parsed(text).Value().ratios}, expected) << text;
}

TEST(Unit, ThePageHasAllCodes) {
    std::ifstream file(QELLIB10_UNITS_PAGE);
    const std::string page(std::istreambuf_iterator<char>(file), {});
    for (const qel::UcumCode& code : qel::UcumCodes())
        EXPECT_NE(page.find('`' + std::string(code.code) + '`'), std::string::npos) << code.code;
}

// What both know must be the same, or a text would change its meaning with udunits2 installed.
TEST(Unit, OurSymbolsAreThoseOfUdunits) {
    int compared = 0;
    for (const qel::UnitSymbol& symbol : qel::UnitSymbols()) {
        const std::string text(symbol.symbol);
        qel::LibraryUnit theirs;
        const Unit ours = Parsed(text);
        // eV and u are measured again since; Torr is not mmHg
        if (text == "eV" || text == "u" || text == "Torr" || text == "times" || text == "count") continue;
        if (qel::FindLibraryUnit(text, theirs) != qel::LibraryAnswer::kFound) continue;
        const double factor = ours.Value().numerator.ToDouble() / ours.Value().denominator.ToDouble();
        EXPECT_NEAR(theirs.scale / factor, 1.0, 1e-14) << text;
        EXPECT_NEAR(theirs.offset, ours.Offset().ToDouble(), 1e-9) << text;
        for (std::size_t i = 0; i < qel::kLibraryUnits; ++i)
            EXPECT_EQ(theirs.powers[i], int{ours.Value().powers[i]}) << text << i;
        ++compared;
    }
    EXPECT_GT(compared, 30);
}

// A second opinion, by a calculator of others.
TEST(Unit, QalcConvertsToTheSame) {
    if (OutputOf("command -v qalc").empty()) GTEST_SKIP() << "qalc is not installed";
    const Cases<std::string, std::string, std::string, std::string> cases = {
        {"5.2", "mg/mL", "g/L", "mg/mL to g/L"},
        {"3.7", "µg/L", "mg/mL", "ug/L to mg/mL"},
        {"2.5", "mol/L", "mmol/mL", "mol/L to mmol/mL"},
        {"1.3", "mL/min", "L/h", "mL/min to L/h"},
        {"7.1", "µS/cm", "S/m", "uS/cm to S/m"},
        {"2.2", "lb", "g", "lb to g"},
        {"1.7", "atm", "kPa", "atm to kPa"},
        {"12", "psi", "bar", "psi to bar"},
        {"4.4", "eV", "J", "eV to J"},
        {"66", "km/h", "m/s", "km/h to m/s"},
        {"3.3", "inch", "mm", "inch to mm"},
        {"5.5", "ft^2", "m^2", "ft^2 to m^2"},
        {"8", "kW h", "MJ", "kWh to MJ"},
        {"1.1", "are", "m^2", "are to m^2"},
        {"9", "week", "h", "week to h"},
        {"30", "arc_degree", "rad", "deg to rad"},
        {"25", "N/m^2", "mbar", "N/m^2 to mbar"},
        {"6", "kat", "µmol/min", "mol/s to umol/min"},
        {"7.7", "yard", "m", "yard to m"},
        {"0.3", "Torr", "Pa", "torr to Pa"},
        {"4", "g/cm^3", "kg/m^3", "g/cm^3 to kg/m^3"},
        {"2", "mile", "km", "mile to km"},
        {"3", "gallon", "L", "gallon to L"},
        {"2", "US_fluid_ounce", "mL", "floz to mL"},
        {"5", "barrel", "L", "barrel to L"},
        {"7", "bushel", "L", "bushel to L"},
        {"4", "troy_ounce", "g", "troy_ounce to g"},
        {"2", "avoirdupois_ounce", "g", "oz to g"},
        {"2", "cup", "mL", "cup to mL"},
        {"6", "light_year", "m", "ly to m"},
        {"0.7", "parsec", "m", "pc to m"},
        {"9", "lbf", "N", "lbf to N"},
        {"15", "kJ/mol", "J/mmol", "kJ/mol to J/mmol"},
        {"33", "kHz", "1/min", "kHz to 1/min"},
    };
    std::string questions;
    for (const auto& [value, from, to, question] : cases) questions += value + ' ' + question + '\n';
    std::istringstream answers(OutputOf(
        "printf '" + questions + "' | LC_ALL=C HOME=/nonexistent qalc -t -set 'precision 12' -set 'exp 1' -f -"));
    for (const auto& [value, from, to, question] : cases) {
        std::string answer;
        std::getline(answers, answer);
        const double theirs = qel::ReadNumber(answer.substr(0, answer.find(' '))).value_or(0);
        const std::string ours = Converted(value, from, to);
        ASSERT_NE(ours, "none") << question;
        const double number = qel::ReadNumber(ours.substr(ours[0] == '~')).value_or(0);
        EXPECT_NEAR(number / theirs, 1.0, 1e-10) << question << ": " << answer;
    }
}
