#pragma once

#include <optional>
#include <string>

namespace viewer {

/// The options of the command line.
///
///     viewer [--points N] [--all] [--cross SECONDS] [--screenshot FILE]
///
/// The curve starts with N points; the time axis shows all of them or the last minute. The cross is at a time until the
/// mouse moves. With a file nothing is measured: the window is shown, written to the file as PNG, and closed.
struct Options {
    int points = 0;  // up to 10 million
    bool isAll = false;
    std::optional<double> cross;
    std::string screenshot;
};

/// @return nothing if they are not as above
std::optional<Options> ParseOptions(int argc, char** argv);

}  // namespace viewer
