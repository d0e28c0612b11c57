#pragma once

// Kept: applications include the restart queue by this path.
#include "qellib10/platform/restart/restart_queue.h"
