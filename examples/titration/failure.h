#pragma once

#include <stdexcept>

namespace titration {

/// The input cannot give a result; the text is the one line that the user sees.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace titration
