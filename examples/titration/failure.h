#pragma once

#include <stdexcept>
#include <string>

namespace titration {

/// The input cannot give a result; the text is the one line that the user sees.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Lets @p step fail with the name of the file that it is about.
template <class Step> auto About(const std::string& file, Step step) {
    try {
        return step();
    } catch (const Failure& failure) {
        throw Failure(file + ": " + failure.what());
    }
}

}  // namespace titration
