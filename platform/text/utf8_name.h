#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// What FoldName makes of names in the process's code page, for names in UTF-8: equal for two names that differ only in
/// the case of Latin (also full-width), Greek and Cyrillic letters. It does not depend on the code page, so all
/// programs that read a file have the same names in it.
QELLIB10_INTERNAL_API std::string FoldUtf8Name(std::string_view name);

/// Whether FoldUtf8Name is the same for both.
QELLIB10_INTERNAL_API bool SameUtf8Name(std::string_view a, std::string_view b);

}  // namespace qel
