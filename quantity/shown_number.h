#pragma once

#include <string>

#include "qellib10/quantity/exact_result.h"

namespace qel {

/// Powers of ten of numbers that are shown without an exponent.
inline constexpr int kLeastPlain = -6, kMostPlain = 20;

inline bool IsPlain(int magnitude) { return magnitude >= kLeastPlain && magnitude <= kMostPlain; }

/// A number for the eye: with an exponent where there would be many zeros that say nothing.
inline std::string ShownNumber(const Decimal& value) {
    return value.IsZero() || IsPlain(value.Magnitude()) ? value.PlainText() : value.Text();
}

/// A result likewise. A rounded 0 has the places of its rule; of another one, every digit after the point says nothing
/// where there are many.
inline std::string ShownResult(ExactResult result, bool isRounded) {
    if (!result.value.IsZero()) return IsPlain(result.value.Magnitude()) ? result.PlainText() : result.Text();
    if (!isRounded && !IsPlain(result.value.Exponent())) result.value = Decimal();
    return result.PlainText();
}

}  // namespace qel
