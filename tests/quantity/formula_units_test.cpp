#include "qellib10/quantity/formula_units.h"

#include <cmath>

#include "../support/test.h"
#include "qellib10/quantity/formula.h"
#include "qellib10/quantity/formula_access.h"
#include "qellib10/quantity/formula_double.h"

namespace {

using qel::FormulaError;
using qel::Unit;

struct Variable {
    const char* name;
    double value;
    const char* unit;
};
const std::vector<Variable> kVariables = {
    {"EP", 12.5, "mL"},      {"BLANK", 0.0005, "L"},  {"C", 0.1, "mol/L"},
    {"M", 40, "g/mol"},      {"SAMPLE", 500, "mg"},   {"T", 25, "°C"},
    {"T2", 20, "°C"},        {"F", 77, "degF"},       {"DT", 5, "K"},
    {"W", 5, "%(m/m)"},      {"V", 2, "%(v/v)"},      {"TIME", 2, "min"},
    {"SEC", 30, "s"},        {"N", 3, "1"},           {"PH", 7, "pH"},
    {"P", 4, "%"},           {"AREA", 4, "cm^2"},     {"KOH", 56.11, "mgKOH/mmol"},
    {"PPM", 10, "ppm(m/m)"}, {"TEN", 10, "times"},    {"SLOPE", 4, "mV/K"},
    {"Q", 5, "g"},           {"R", 4, "g"},           {"HOUR", 2, "h"},
    {"G", 0.5, "g/g"},       {"RATE", 2, "mg/(g*h)"},
};

// The value and the unit of the result, or the error in words.
std::string Answer(const std::string& text, const char* wanted = nullptr) {
    qel::FormulaScope scope;
    std::vector<Unit> units;
    std::vector<double> values;
    std::string fault;
    for (const Variable& each : kVariables) {
        scope.Add(each.name);
        units.push_back(Unit::Parse(each.unit, fault).value());
        values.push_back(each.value);
    }
    FormulaError error;
    const std::optional<qel::Formula> formula = qel::Formula::Parse(text, scope, error);
    if (!formula) return "not parsed: " + error.Text(text);
    const auto unit = wanted != nullptr ? Unit::Parse(wanted, fault) : std::nullopt;
    const auto bound = qel::BindUnits(qel::ProgramOf(*formula), units, unit, error);
    if (!bound) return error.kind == FormulaError::Kind::kUnit ? error.Text(text) : "another error";
    const std::optional<double> value = qel::EvaluatePlainly(bound->program, values, error);
    if (!value) return error.Text(text);
    EXPECT_NEAR(qel::FastFormula(bound->program).Evaluate(values.data()), *value, std::abs(*value) * 1e-14) << text;
    char shown[32];
    std::snprintf(shown, sizeof shown, "%.10g", *value);
    for (char* at = shown; *at != '\0'; ++at)
        if (*at == ',') *at = '.';
    return shown + (" " + bound->unit.Text());
}

const std::string kMayBeDifference = ": K that was computed may be a difference";

std::string Refusal(const std::string& place, const std::string& reason) {
    return "the units do not go together at character " + place + ": " + reason;
}

}  // namespace

TEST(FormulaUnits, OperandsAreConverted) {
    for (const auto& [text, expected] : Cases<const char*, const char*>{
             {"EP - BLANK", "12 mL"},
             {"BLANK - EP", "-0.012 L"},
             {"(EP - BLANK) * C", "1.2 mL*mol/L"},
             {"TIME + SEC", "2.5 min"},
             {"TIME > SEC", "1 1"},
             {"SEC < TIME and EP > BLANK or TIME = SEC", "1 1"},
             {"if(TIME > SEC, SEC, TIME)", "30 s"},
             {"if(TIME < SEC, SEC, TIME)", "120 s"},
             {"if(TIME < SEC, SEC, if(TIME > SEC, TIME, SEC))", "120 s"},
             {"if(TIME > SEC, if(TIME < SEC, TIME, SEC), TIME) + SEC", "1 min"},
             {"if(TIME > SEC, SEC, 0)", "30 s"},
             {"if(TIME < SEC, 0, SEC) + TIME", "150 s"},
             {"min(SEC, TIME, SEC + TIME)", "30 s"},
             {"max(TIME, SEC, if(TIME > SEC, SEC, TIME))", "2 min"},
             {"mean(TIME, SEC, max(SEC, TIME), SEC)", "1.25 min"},
             {"sum(TIME, sum(SEC, TIME), SEC) * N", "15 min"},
             {"max(0, 0, BLANK - EP)", "0 L"},
             {"EP > 0 and 0 < EP", "1 1"},
             {"sqrt(AREA) + 2 * AREA ^ 0.5", "6 cm"},
             {"AREA ^ 1.5 / AREA ^ -1", "32 cm^5"},
             {"exp(W) - exp(0.05)", "0 1"},
             {"log10(SAMPLE / (N * SAMPLE))", "-0.4771212547 1"},
             {"N ^ W", "1.056467309 1"},
             {"W ^ N ^ 2 * 1e12", "1.953125 1"},
             {"round(EP, 0) + abs(-BLANK)", "13.5 mL"},
             {"W + PPM", "5.001 %(m/m)"},
             {"1 - SAMPLE / (N * SAMPLE)", "0.6666666667 g/g"},
             {"-PH + 0", "-7 pH"},
         })
        EXPECT_EQ(Answer(text), expected) << text;
    EXPECT_EQ(Answer("const.R * (T - T2)", "J/mol"), "41.57231309 J/mol");
}

TEST(FormulaUnits, TemperaturesDifferFromDifferences) {
    for (const auto& [text, expected] : Cases<const char*, std::string>{
             {"T - T2", "5 K"},
             {"T - F", "0 K"},
             {"F - T2", "9 K/1.8"},
             {"T + DT", "30 °C"},
             {"DT + T", "30 °C"},
             {"DT + F", "86 degF"},
             {"F - DT", "68 degF"},
             {"T >= F", "1 1"},
             {"mean(T, F, T2)", "23.33333333 °C"},
             {"if(T > T2, T2, F) - T", "-5 K"},
             {"T + (T - T2)", "30 °C"},
             {"T - T2 > DT or T - T2 = DT", "1 1"},
             // Never 5 K as -268.15 °C, nor 5 K compared with 298.15 K.
             {"T - T2 < T", Refusal("8: \"<\"", "K and °C cannot be compared" + kMayBeDifference)},
             {"T > mean(DT, T - T2)", Refusal("3: \">\"", "°C and K cannot be compared" + kMayBeDifference)},
             {"max(T, SLOPE * (T - T2) / SLOPE)",
              Refusal("1: \"max\"", "°C and K cannot be in one max" + kMayBeDifference)},
             {"T + SLOPE * (T - T2) / SLOPE", "30 °C"},
             {"T + T2",
              Refusal("3: \"+\"", "a temperature such as °C is only compared, or has K added or subtracted; use K")},
             {"2 * T",
              Refusal("3: \"*\"", "a temperature such as °C is only compared, or has K added or subtracted; use K")},
             {"-T",
              Refusal("1: \"-\"", "a temperature such as °C is only compared, or has K added or subtracted; use K")},
             {"T ^ 2",
              Refusal("3: \"^\"", "a temperature such as °C is only compared, or has K added or subtracted; use K")},
             {"DT - T",
              Refusal("4: \"-\"", "a temperature such as °C is only compared, or has K added or subtracted; use K")},
             {"sum(T, T2)",
              Refusal("1: \"sum\"", "a temperature such as °C is only compared, or has K added or subtracted; use K")},
             {"T + 5", Refusal("3: \"+\"", "°C and a number without unit cannot be added")},
             {"T > 0", Refusal("3: \">\"", "°C and a number without unit cannot be compared")},
         })
        EXPECT_EQ(Answer(text), expected) << text;
}

TEST(FormulaUnits, DifferentDimensionsHaveTheirPlace) {
    for (const auto& [text, expected] : Cases<const char*, std::string>{
             {"EP + SAMPLE", Refusal("4: \"+\"", "mL and mg cannot be added")},
             {"N * (EP - SAMPLE)", Refusal("9: \"-\"", "mL and mg cannot be subtracted")},
             {"EP > 5", Refusal("4: \">\"", "mL and a number without unit cannot be compared")},
             {"if(N > 1, EP, SAMPLE)", Refusal("1: \"if\"", "mL and mg cannot be branches of if")},
             {"max(EP, SAMPLE)", Refusal("1: \"max\"", "mL and mg cannot be in one max")},
             {"ln(EP)", Refusal("1: \"ln\"", "ln needs a number or a ratio of like units, not mL")},
             {"10 ^ PH", Refusal("4: \"^\"", "^ needs a number or a ratio of like units, not pH")},
             {"EP ^ N", Refusal("4: \"^\"", "mL needs a whole number as its exponent, which gives a unit")},
             {"EP ^ 0.5", Refusal("4: \"^\"", "mL needs a whole number as its exponent, which gives a unit")},
             {"sqrt(EP)", Refusal("1: \"sqrt\"", "mL has no square root")},
             {"W + V", Refusal("3: \"+\"", "%(m/m) and %(v/v) cannot be added")},
             {"W * EP + EP", Refusal("8: \"+\"", "%(m/m)*mL and mL cannot be added")},
             {"W / TIME > 1 / TIME", Refusal("10: \">\"", "%(m/m)/min and 1/min cannot be compared")},
             {"100 - W", Refusal("5: \"-\"", "a number without unit and %(m/m) cannot be subtracted")},
             {"W + P", Refusal("3: \"+\"", "%(m/m) and % cannot be added")},
             {"TEN + 1", Refusal("5: \"+\"", "times and a number without unit cannot be added")},
             {"EP ^ 30 * EP ^ 30", Refusal("9: \"*\"", "the unit of the result is out of range")},
         })
        EXPECT_EQ(Answer(text), expected) << text;
}

TEST(FormulaUnits, TheResultHasTheWantedUnit) {
    for (const auto& [text, wanted, expected] : Cases<const char*, const char*, std::string>{
             {"(EP - BLANK) * C * M / SAMPLE", "%(m/m)", "9.6 %(m/m)"},
             {"C * M / SAMPLE * (EP - BLANK)", "%(m/m)", "9.6 %(m/m)"},
             {"(EP - BLANK) * C / SAMPLE", "mmol/g", "2.4 mmol/g"},
             {"(EP - BLANK) * C * KOH / SAMPLE", "mgKOH/g", "134.664 mgKOH/g"},
             {"T", "K", "298.15 K"},
             {"T", "degF", "77 degF"},
             {"DT", "°C", "-268.15 °C"},  // K may be a temperature
             {"T - T2", "K", "5 K"},
             {"mean(T, DT, round(min(T, DT), 0))", "°C", "-170.3833333 °C"},
             {"W * (2 * M / M)", "%(m/m)", "10 %(m/m)"},
             {"W * M / (2 * M)", "%(n/n)", "2.5 %(n/n)"},
             {"W * (M / M) + W", "%(n/n)", Refusal("1: \"W * (M / M) + W\"", "0.01*(g/g) is not converted to %(n/n)")},
             {"mean(EP, W * EP) / EP", "%(v/v)", Refusal("1: \"mean\"", "mL and %(m/m)*mL cannot be in one mean")},
             {"W * EP", "L", Refusal("1: \"W * EP\"", "%(m/m)*mL is not converted to L")},
             {"W / TIME", "1/min", Refusal("1: \"W / TIME\"", "%(m/m)/min is not converted to 1/min")},
             {"W * SAMPLE", "g", "0.025 g"},
             {"W / EP * EP", "%(m/m)", "5 %(m/m)"},
             {"W / M * M", "%(m/m)", "5 %(m/m)"},
             {"W / M * M", "%(v/v)", Refusal("1: \"W / M * M\"", "0.01*((g/mol)/(g/mol)) is not converted to %(v/v)")},
             {"W * (M / M)", nullptr, "5 %(m/m)*((g/mol)/(g/mol))"},
             {"W * EP / (2 * EP)", "%(v/v)",
              Refusal("1: \"W * EP / (2 * EP)\"", "0.01*(g/g)*(L/L) is not converted to %(v/v)")},
             {"W * EP / (2 * EP)", "1", "0.025 1"},
             {"if(N > 1, TIME, SEC)", "s", "120 s"},
             {"0", "mL", "0 mL"},
             {"W", "1", "0.05 1"},
             {"EP > BLANK", nullptr, "1 1"},
             {"(EP - BLANK) * C * M / SAMPLE", "%",
              Refusal("1: \"(EP - BLANK) * C * M / SAMPLE\"",
                      "g/g is not converted to %, which needs a basis, as in %(m/m)")},
             {" (EP - BLANK) * C * M / SAMPLE", "%(v/v)",
              Refusal("2: \"(EP - BLANK) * C * M / SAMPLE\"", "g/g is not converted to %(v/v)")},
             {" round(T-T2,0) ", "°C", Refusal("2: \"round(T-T2,0)\"", "K is not converted to °C" + kMayBeDifference)},
             {"5", "mL", Refusal("1: \"5\"", "a number without unit is not converted to mL")},
             {"EP > BLANK", "mL", Refusal("1: \"EP > BLANK\"", "a condition has no unit")},
         })
        EXPECT_EQ(Answer(text, wanted), expected) << text;
}

// g by g that the formula divided is a number or a mass fraction, as is asked for. A ratio that was stated stays what
// it is, and so does one of which nobody knows which of both is meant.
TEST(FormulaUnits, AComputedRatioIsANumberToo) {
    const auto refused = [](const char* text, const char* reason) {
        return Refusal("1: \"" + std::string(text) + '"', reason);
    };
    for (const auto& [text, wanted, expected] : Cases<const char*, const char*, std::string>{
             // A factor of another unit, with brackets and without, before and after.
             {"EP - BLANK * (Q / R)", nullptr, "11.875 mL"},
             {"EP - BLANK * Q / R", nullptr, "11.875 mL"},
             {"EP - Q / R * BLANK", nullptr, "11.875 mL"},
             {"BLANK * (Q / R) - EP", nullptr, "-0.011875 L"},
             {"EP - BLANK * (SAMPLE / Q)", nullptr, "12.45 mL"},
             {"BLANK * (SAMPLE / Q) - EP", nullptr, "-12.45 mL"},
             {"SEC * (SAMPLE / Q) + SEC", nullptr, "33000 0.001*s"},
             {"EP - BLANK * (Q / R) * (SEC / TIME) / (SEC / TIME)", nullptr, "11.875 mL"},
             {"EP - BLANK * ((Q / R) * (EP / BLANK))", nullptr, "-3.125 mL"},
             {"(EP * (Q / R)) ^ 2 + EP ^ 2", nullptr, "400.390625 mL^2"},
             {"mean(EP, BLANK * (Q / R), EP)", nullptr, "8.541666667 mL"},
             {"if(Q > R, EP * (Q / R), BLANK)", nullptr, "15.625 mL"},
             {"EP * (Q / R) > BLANK", nullptr, "1 1"},
             {"T + DT * (Q / R)", nullptr, "31.25 °C"},
             {"EP * (Q / R)", "L", "0.015625 L"},
             {"EP * (Q / R)", "%(m/m)*L", "1.5625 %(m/m)*L"},
             {"(EP - BLANK * (Q / R)) / EP", "%(v/v)", "95 %(v/v)"},
             {"(EP - BLANK * (Q / R)) * C * M / SAMPLE", "%(m/m)", "9.5 %(m/m)"},
             {"EP * (Q / R) + W * EP", nullptr, "16.25 mL*(g/g)"},
             {"const.N_A * EP / (EP * M)", "1/g", "1.50553519e+22 1/g"},
             // A rate.
             {"(Q - R) / R / HOUR", "1/h", "0.125 1/h"},
             {"(Q - R) / (R * HOUR)", "1/h", "0.125 1/h"},
             {"((Q - R) / HOUR) / R", "1/h", "0.125 1/h"},
             {"1 / HOUR * ((Q - R) / R)", "1/h", "0.125 1/h"},
             {"(Q - R) / R / HOUR", "mg/(g*h)", "125 mg/(g*h)"},
             {"(Q - R) / R / HOUR", nullptr, "0.125 (g/g)/h"},
             {"1 / HOUR - (Q - R) / R / HOUR", nullptr, "0.375 1/h"},
             {"(Q - R) / R / HOUR - RATE", nullptr, "0.123 (g/g)/h"},
             {"(Q - R) / R / HOUR", "%(v/v)/h", refused("(Q - R) / R / HOUR", "(g/g)/h is not converted to %(v/v)/h")},
             // Next to numbers, also with a factor.
             {"1 - SAMPLE / Q", nullptr, "0.9 g/g"},
             {"1 - SAMPLE / Q", "%(m/m)", "90 %(m/m)"},
             {"SAMPLE / Q - 1", nullptr, "-900 mg/g"},
             {"max(0.05, SAMPLE / Q, Q / R)", nullptr, "1.25 g/g"},
             {"if(SAMPLE / Q > 0.05, 1, 0) + G", nullptr, "1.5 g/g"},
             // A quotient of two is a number, or what the first one is.
             {"(Q / R) / (R / Q)", nullptr, "1.5625 1"},
             {"100 * ((Q / R) / (R / Q))", "g/g", "156.25 g/g"},
             {"W / (Q / R)", "%(m/m)", "4 %(m/m)"},
             {"PPM + (Q / R) / (R / Q)", nullptr, "1562510 ppm(m/m)"},
             {"(Q / R) / (R / Q)", "%(v/v)",
              refused("(Q / R) / (R / Q)", "a number without unit is not converted to %(v/v)")},
             {"W / PPM", "%(m/m)", refused("W / PPM", "%(m/m)/ppm(m/m) is not converted to %(m/m)")},
             // Stated: by the unit of an input, also where it is multiplied, divided or has been taken up.
             {"EP - BLANK * G", nullptr, Refusal("4: \"-\"", "mL and L*(g/g) cannot be subtracted")},
             {"EP - BLANK * (G * (Q / R))", nullptr, Refusal("4: \"-\"", "mL and L*(g/g)^2 cannot be subtracted")},
             {"EP - BLANK * (W * Q / R)", nullptr, Refusal("4: \"-\"", "mL and L*%(m/m) cannot be subtracted")},
             {"EP - BLANK * (G + Q / R)", nullptr, Refusal("4: \"-\"", "mL and L*(g/g) cannot be subtracted")},
             {"G / HOUR", "1/h", refused("G / HOUR", "(g/g)/h is not converted to 1/h")},
             {"RATE * (Q / R)", "1/h", refused("RATE * (Q / R)", "mg*(g/g)/(g*h) is not converted to 1/h")},
             {"1 - W * Q / R", nullptr, Refusal("3: \"-\"", "a number without unit and %(m/m) cannot be subtracted")},
             {"W * (EP / BLANK)", "%(m/m)", refused("W * (EP / BLANK)", "%(m/m)*mL/L is not converted to %(m/m)")},
             // Which of the two ratios is the number?
             {"Q / R * (EP / BLANK)", "1", "31.25 1"},
             {"Q / R * (EP / BLANK)", "%(m/m)",
              refused("Q / R * (EP / BLANK)", "(g/g)*mL/L is not converted to %(m/m)")},
             {"EP * (Q / R) / BLANK", "%(v/v)",
              refused("EP * (Q / R) / BLANK", "mL*(g/g)/L is not converted to %(v/v)")},
             {"Q / R + EP / BLANK", nullptr, Refusal("7: \"+\"", "g/g and mL/L cannot be added")},
         })
        EXPECT_EQ(Answer(text, wanted), expected) << text;
}

// K has the zero of °C where it was given, and never where it was computed: 5 K are not -268.15 °C.
TEST(FormulaUnits, ComputedKelvinsBecomeNoTemperature) {
    for (const char* text : {"T - T2", "DT - DT", "DT + DT", "2 * DT", "sum(DT, DT)", "abs(DT)", "-DT", "sqrt(DT ^ 2)",
                             "SLOPE * (T - T2) / SLOPE", "DT * ((T - T2) / (T - T2))", "if(N > 1, DT, T - T2)",
                             "mean(DT, T - T2)", "max(0, 2 * DT)"}) {
        const std::string piece = Answer(text, "°C");
        EXPECT_TRUE(piece.ends_with("K is not converted to °C" + kMayBeDifference)) << text << ": " << piece;
        EXPECT_TRUE(Answer(text, "K").ends_with(" K")) << text;
    }
}

// Whatever is converted within, a step that a jump lands on is still the one that it landed on.
TEST(FormulaUnits, EveryBranchIsConvertedOnce) {
    for (const char* first : {"TIME", "SEC", "0", "N * TIME", "max(SEC, TIME)"})
        for (const char* second : {"SEC", "TIME", "if(N > 5, SEC, TIME)", "if(N < 5, TIME, SEC) + SEC"})
            for (const char* condition :
                 {"TIME > SEC", "SEC > TIME", "SEC > TIME or TIME > SEC", "SEC > TIME and N > 1"}) {
                const std::string a = first, b = second, c = condition;
                const std::string chosen = Answer(c) == "1 1" ? a : b;
                const std::string expected = Answer("SEC + " + chosen);
                EXPECT_EQ(Answer("SEC + if(" + c + ", " + a + ", " + b + ")"), expected) << a << b << c;
                EXPECT_EQ(Answer("sum(SEC, if(" + c + ", " + a + ", " + b + "), 0)"), expected) << a << b << c;
            }
}
