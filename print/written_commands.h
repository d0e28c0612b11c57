#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qellib10/print/command_list.h"

// Reads job files in the form in which this library writes them. They consist almost only of commands, which are read
// directly, without a document. A file in any other form is left to XmlDocument, which alone decides what is
// well-formed and what it means.
namespace qel {

/// The commands of a job file in exactly the form in which we write it: elements without blanks between them, all
/// attributes in order, numbers within range.
struct WrittenCommands {
    std::string rest;  ///< the file without its commands
    CommandList commands;
};

/// Nothing if any command is in another form. Whether the rest is well-formed is left to the document.
/// @param file in UTF-8
std::optional<WrittenCommands> ReadWrittenCommands(std::string_view file);

}  // namespace qel
