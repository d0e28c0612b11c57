#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

namespace qel {

/// The absolute path of the program's file or, for a @p module, of the program or shared library that contains this
/// address (any address in it can be the module's handle). It is the name under which it was loaded, even if the file
/// has since been replaced or deleted. Empty for an address that belongs to no file.
QELLIB10_API CString ModulePath(HINSTANCE module);

}  // namespace qel
