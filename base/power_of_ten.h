#pragma once

namespace qel {

/// The power of ten that rounding multiplies by: the double nearest to it for exponents -22 to 22, else pow's.
double PowerOfTen(int exponent);

}  // namespace qel
