#pragma once

// All public headers of the library; an application needs no other include.
#include "qellib10/platform/error.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/text/string_array.h"
#include "qellib10/platform/text/string_table.h"
#include "qellib10/platform/types.h"
