#pragma once

#include <optional>
#include <string>

namespace viewer {

/// What the command line asks for.
///
///     viewer [--points N] [--all] [--cross SECONDS] [--screenshot FILE]
///
/// The curve begins with N points; the axis of the time shows all of them or the last minute. The cross stands at a
/// time until the mouse moves. With a file nothing is measured: the window is shown, written to the file as PNG, and
/// closed.
struct Options {
    int points = 0;  // up to 10 million
    bool isAll = false;
    std::optional<double> cross;
    std::string screenshot;
};

/// @return nothing when they are not as above
std::optional<Options> ParseOptions(int argc, char** argv);

}  // namespace viewer
