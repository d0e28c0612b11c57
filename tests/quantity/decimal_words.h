#pragma once

#include <string>

#include "qellib10/platform/decimal/decimal.h"

inline qel::Decimal DecimalOf(const std::string& text) {
    qel::DecimalFlags ignored;
    return qel::Decimal::OfText(text, ignored);
}

/// What happened, with a blank before each word.
inline std::string Words(const qel::DecimalFlags& flags) {
    return std::string(flags.isInexact ? " inexact" : "") + (flags.isInvalid ? " invalid" : "") +
           (flags.isDividedByZero ? " by zero" : "") + (flags.isTooLarge ? " large" : "") +
           (flags.isTooSmall ? " small" : "");
}
