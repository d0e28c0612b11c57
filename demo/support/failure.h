#pragma once

#include <stdexcept>
#include <string>

#include <qellib10/qellib10.h>

namespace titration {

/// The input cannot give a result; the text is the one line that the user sees.
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& text) : std::runtime_error(qel::PrintableText(text)) {}
};

/// Runs @p step; a failure gets the name of the file.
template <class Step> auto About(const std::string& file, Step step) {
    try {
        return step();
    } catch (const Failure& failure) {
        throw Failure(file + ": " + failure.what());
    }
}

}  // namespace titration
