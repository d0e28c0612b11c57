#pragma once

#include "qellib10/platform/types.h"

namespace qel {

/// A step that the system, or the state of a named object, does not allow. Thrown only within platform/sync: its public
/// functions keep the code as the last error.
struct SystemFailure {
    LONG code;  // SystemCode
};

}  // namespace qel
