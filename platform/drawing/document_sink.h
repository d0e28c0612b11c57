#pragma once

#include <cstddef>
#include <span>

#include "qellib10/platform/text/string.h"

namespace qel {

/// Where a finished document goes.
class DocumentSink {
public:
    virtual ~DocumentSink() = default;
    /// @return whether the document could be started; nothing is written yet
    virtual bool Begin(const CString& /*name*/) { return true; }
    /// Receives all bytes of the document. @return false if they could not be delivered
    virtual bool Take(const CString& name, std::span<const std::byte> bytes) = 0;
};

}  // namespace qel
