// Readings in the units that instruments and tables have, converted; and what is refused.
#include <qellib10/quantity.h>

#include <cstdio>

namespace {

void Show(const char* value, const char* from, const char* to, const std::optional<qel::Decimal>& molarMass = {}) {
    std::string error;
    const auto source = qel::Unit::Parse(from, error);
    const auto target = source ? qel::Unit::Parse(to, error) : source;
    if (!target) {
        std::printf("%s\n", error.c_str());
        return;
    }
    qel::DecimalFlags flags;
    const auto result = qel::Convert(qel::Decimal::OfText(value, flags), *source, *target, flags, molarMass);
    if (!result)
        std::printf("%s is not converted to %s\n", source->Text().c_str(), target->Text().c_str());
    else
        std::printf("%s %s = %s %s%s\n", value, source->Text().c_str(), result->Reduced().PlainText().c_str(),
                    target->Text().c_str(), flags.isInexact ? ", rounded" : "");
}

}  // namespace

int main() {
    Show("5.2", "mg/dL", "µg/mL");
    Show("100", "分", "h");
    Show("25", "℃", "degF");
    Show("2", "mg/g", "%(m/m)");
    Show("0.9", "%(m/v)", "g/L");
    Show("5.5", "ucum:mmol/L", "mg/dL", qel::Decimal(180));
    Show("5.5", "mmol/L", "mg/dL");
    Show("1", "%(m/m)", "%(v/v)");
    Show("1", "%", "mg/g");
    Show("1", "ppmv", "mL/L");
    Show("1", "W/(m °C)", "W/(m K)");
}
