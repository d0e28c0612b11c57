#include "qellib10/quantity/formula_constants.h"

#include <array>

namespace qel {
namespace {

constexpr std::string_view kSource = "CODATA 2018";

// R = N_A k and F = N_A e are exact; F has all of its digits, R too.
constexpr std::array kConstants = {
    FormulaConstant{"R", "8.31446261815324", "0", "J/(mol K)", kSource},
    FormulaConstant{"F", "96485.3321233100184", "0", "C/mol", kSource},
    FormulaConstant{"N_A", "6.02214076e23", "0", "1/mol", kSource},
    FormulaConstant{"k", "1.380649e-23", "0", "J/K", kSource},
    FormulaConstant{"e", "1.602176634e-19", "0", "C", kSource},
    FormulaConstant{"h", "6.62607015e-34", "0", "J s", kSource},
    FormulaConstant{"c", "299792458", "0", "m/s", kSource},
    FormulaConstant{"u", "1.66053906660e-27", "0.00000000050e-27", "kg", kSource},
};

}  // namespace

std::span<const FormulaConstant> FormulaConstants() { return kConstants; }

}  // namespace qel
