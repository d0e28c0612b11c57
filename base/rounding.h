#pragma once

#include "qellib10/platform/export.h"

namespace qel {

/// The rule of CQVariant::fround step by step. fround itself takes a quicker way for 0 to 21 digits (RoundedTenths in
/// rounded_units.h), which gives the same doubles.
QELLIB10_API double RoundByRule(double x, int digits, int mode);

}  // namespace qel
