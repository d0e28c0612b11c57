#pragma once

#include <qellib10/qellib10.h>

namespace titration {

/// Checks the files in the output folder again, from the files alone, and writes none of them. Each check is shown as a
/// line, followed by their number.
/// @return false if one failed
bool Verify(const CString& folder);

}  // namespace titration
