#pragma once

#include <stdexcept>

#include "qellib10/platform/export.h"

namespace qel {

/// A format's own check failed: the bytes are not what they claim to be. Classes of the framework's style turn it into
/// their documented result. Only some tools of this namespace throw it, as their comments say: XmlDocument, XmlNode,
/// XmlElementWriter, CabinetReader.
class QELLIB10_API DataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace qel
