#pragma once

#include <stdexcept>

namespace userstore {

/// The store could not do what it was asked for; the text says why. Thrown inside the store only.
class StoreError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace userstore
