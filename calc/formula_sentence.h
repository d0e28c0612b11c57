#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"

namespace qel {

/// Why CQWCalc refused a formula, in words for the person who wrote it:
///
///     the formula names "BLANK", which has no value
///     the formula divides by zero at byte 4: "/ (2 - 2)"
///     the formula is not valid at byte 3: "*3"
///     the formula is not valid: a closing bracket is missing at its end
///     the formula has more than 255 bytes
///
/// Bytes count from 1 here, from 0 in @p why. There is no full stop, so that advice can follow.
///
/// @code
/// CQWCalc calc;
/// const CString formula = "2 * BLANK";  // the list has no variable BLANK
/// if (calc.CheckCalcFormula("", formula) == 0)
///     std::puts(qel::FormulaSentence(formula.View(), qel::LastFailure()).c_str());
/// @endcode
///
/// @param formula the one that was refused, in the code page of the process
/// @param why LastFailure() right after the refusal
/// @return English, with the parts of the formula in its own code page; another reason is reported by its text
QELLIB10_API std::string FormulaSentence(std::string_view formula, const Failure& why);

}  // namespace qel
