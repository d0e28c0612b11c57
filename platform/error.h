#pragma once

#include <stdexcept>

#include "qellib10/platform/export.h"

namespace qel {

/// A format's own check failed: the bytes are not what they claim to be. Thrown inside the library only; public
/// operations turn it into their documented result.
class QELLIB10_API DataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace qel
