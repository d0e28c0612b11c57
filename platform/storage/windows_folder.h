#pragma once

#include <string>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// The machine's folder for what belongs to no application: the restart file, INI files named without a folder, the
/// queue of delayed operations. `\var\lib\qellib10`, or environment QELLIB10_STATE_DIR where that is an absolute path.
QELLIB10_API CString WindowsFolder();
QELLIB10_API std::string PosixWindowsFolder();

}  // namespace qel
