#pragma once

#include <string>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// The machine's folder for files that belong to no application: the restart file, INI files named without a folder,
/// the queue of delayed operations. `\var\lib\qellib10`, or the environment's QELLIB10_STATE_DIR if that is an absolute
/// path.
QELLIB10_API CString WindowsFolder();
QELLIB10_API std::string PosixWindowsFolder();

}  // namespace qel
