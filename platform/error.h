#pragma once

#include <stdexcept>

#include "qellib10/platform/export.h"

namespace qel {

/// A format's own check failed: bytes or numbers are not what they have to be; what() is a sentence for people. Classes
/// of the framework's style turn it into their documented result; tools of this namespace throw it where their comments
/// say so.
class QELLIB10_API DataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace qel
