#pragma once

// All public headers of the library; an application needs no other.
#include "qellib10/core.h"
#include "qellib10/graphics.h"
