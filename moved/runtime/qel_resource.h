#pragma once

// Kept: applications include CQELResource by this path.
#include "qellib10/resource/qel_resource.h"
