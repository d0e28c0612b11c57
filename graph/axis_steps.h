#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// Steps that count as round; each also with zeros added or a decimal point moved.
enum class RoundSteps {
    kWithoutQuarters,  ///< 1, 2 and 5: few digits, for axes whose texts are short
    kWithQuarters      ///< 1, 2, 2.5 and 5: closer around the values, with one digit more
};

/// The grid lines of an axis at round numbers. CQelGraph divides its area evenly and finds no ranges by itself; ends
/// that are whole multiples of a round step give grid lines at numbers that people can read:
///
/// @code
/// CQelGraph graph;
/// const qel::AxisSteps steps = qel::StepsOver(3.2, 11.7, 10);  // 3, 4 ... 12
/// graph.SetYMinRange(0, steps.Value(0));
/// graph.SetYMaxRange(0, steps.Value(steps.count));
/// graph.SetDivY(steps.count);
/// @endcode
struct QELLIB10_API AxisSteps {
    double step = 1;   ///< from one line to the next, above 0
    double first = 0;  ///< the place of the first line in steps, a whole number
    int count = 1;     ///< steps between the ends; there is one line more

    /// The value at @p line, from 0 (the lower end) to count. Decimal: 3 steps of 0.2 are 0.6, not 0.6000000000000001.
    double Value(int line) const;
    /// The same with as many decimals as it needs: "0.6", "1e-05".
    CString Text(int line) const;
};

/// Steps that include all values from @p low to @p high. Equal values get an axis around them: half of their size at
/// both sides, or 1 at both sides of 0.
/// @param maxSteps 1 to 1000; others count as the nearest of these; values at both sides of 0 have 2 at least
/// @return 0 to 1 in one step when an end is not a finite number
QELLIB10_API AxisSteps StepsOver(double low, double high, int maxSteps,
                                 RoundSteps round = RoundSteps::kWithoutQuarters);

}  // namespace qel
