#pragma once

#include <span>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// A code of UCUM (Unified Code for Units of Measure), and the text of Unit::Parse that means the same.
struct UcumCode {
    std::string_view code;
    std::string_view text;
};

/// The codes that Unit::Parse reads after "ucum:", those of the usual results of clinical and analytical laboratories.
QELLIB10_API std::span<const UcumCode> UcumCodes();

}  // namespace qel
