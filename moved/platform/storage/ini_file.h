#pragma once

// Kept: applications include the functions of INI files by this path.
#include "qellib10/platform/ini/ini_file.h"
