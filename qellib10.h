#pragma once

// All public headers of the library; an application needs no other include.
#include "qellib10/base/q_variant.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/number_scan.h"
#include "qellib10/platform/text/number_text.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/text/string_array.h"
#include "qellib10/platform/text/string_table.h"
#include "qellib10/platform/time/ole_date_time.h"
#include "qellib10/platform/time/time.h"
#include "qellib10/platform/types.h"
#include "qellib10/platform/variant/ole_variant.h"
