#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// ToUtf8 of a secret: the text never moves while it grows, so that memory that is given back holds no part of it.
QELLIB10_INTERNAL_API std::string SecretToUtf8(std::string_view text);

}  // namespace qel
