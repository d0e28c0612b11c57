#pragma once

#include <stdexcept>
#include <string>

#include "qellib10/platform/failure.h"

namespace qel {

/// The store could not do what it was asked for; the text says why. Thrown inside the store only.
class StoreError : public std::runtime_error {
public:
    StoreError(FailureKind kind, const std::string& text) : std::runtime_error(text), m_kind(kind) {}
    FailureKind Kind() const noexcept { return m_kind; }

private:
    FailureKind m_kind;
};

}  // namespace qel
