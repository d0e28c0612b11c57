#pragma once

#include <qellib10/qellib10.h>

namespace titration {

/// Checks the files in the output folder again, from nothing but themselves, and writes none of them. Each check is
/// shown as a line, behind them their number.
/// @return false when one failed
bool Verify(const CString& folder);

}  // namespace titration
