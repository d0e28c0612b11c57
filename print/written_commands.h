#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qellib10/print/command_list.h"

// Job files as this library writes them, of which almost all is commands: these are read as they come, without a
// document. A file in any other form is left to the document, which alone tells what is well-formed and what it means.
namespace qel {

/// The commands of a job file in exactly the form in which it is written: elements without blanks between them, their
/// attributes all there and in order, numbers that fit.
struct WrittenCommands {
    std::string rest;  ///< the file without its commands
    CommandList commands;
};

/// Nothing when anything of the commands is in another form. Whether the rest is well-formed the document tells.
/// @param file in UTF-8
std::optional<WrittenCommands> ReadWrittenCommands(std::string_view file);

}  // namespace qel
