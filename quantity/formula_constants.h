#pragma once

#include <span>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// A constant of nature as formulas name it: const.R.
struct FormulaConstant {
    std::string_view name;
    std::string_view value;        ///< in @p unit, all digits
    std::string_view uncertainty;  ///< standard uncertainty, "0" where the value is exact
    std::string_view unit;         ///< in SI
    std::string_view source;       ///< "CODATA 2018"
};

/// All constants that formulas know, by their names. Values of CODATA 2018; since the SI of 2019 most are exact.
QELLIB10_API std::span<const FormulaConstant> FormulaConstants();

}  // namespace qel
