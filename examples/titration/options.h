#pragma once

#include <optional>
#include <string>

namespace titration {

/// What the command line asks for.
///
///     titration --data FILE --out FOLDER [--settings FILE] [--comment TEXT] [--user NAME] [--password TEXT]
///     titration --take-out N --out FOLDER [--user NAME] [--password TEXT]
///
/// The first computes a result and registers it as a new version, the second takes version N out again. Without
/// settings the method of the result before is used again. Name and password are those of the demo, unless given; a
/// real application asks for them in a dialog, where no list of running programs shows them.
struct Options {
    std::string data, settings, out;
    std::string comment;
    std::string user = "demo", password = "titration";
    int takeOut = 0;  // the version, 0: none
};

/// @throws Failure
Options ParseOptions(int argc, char** argv);

}  // namespace titration
