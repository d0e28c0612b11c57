// Formulas as people type them. Each fault has its place, and what was expected there.
#include <qellib10/quantity.h>

#include <cstdio>
#include <string>

int main() {
    qel::FormulaScope scope;
    for (const char* name : {"EP1", "BLANK", "TITRE", "SAMPLE"}) scope.Add(name);
    const std::string ml = "mL", gram = "g";
    std::string ignored;
    const qel::Unit volume = *qel::Unit::Parse(ml, ignored), mass = *qel::Unit::Parse(gram, ignored);
    const qel::Unit units[] = {volume, volume, *qel::Unit::Parse("mol/L", ignored), mass};
    for (const std::string text : {"(EP1 - BLANK) * TITER / SAMPLE", "(EP1 - BLANK * TITRE", "2EP1 / SAMPLE",
                                   "EP1 - SAMPLE", "sqr(EP1)", "EP1 ** 2"}) {
        qel::FormulaError error;
        const auto formula = qel::Formula::Parse(text, scope, error);
        if (formula && qel::QuantityFormula::Bind(*formula, units, {}, error)) continue;
        std::printf("%s\n%s^\n  %s\n", text.c_str(), std::string(error.position, ' ').c_str(),
                    error.Text(text).c_str());
    }
}
