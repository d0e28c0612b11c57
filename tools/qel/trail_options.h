#pragma once

#include "resume.h"
#include "tool.h"

// What qel trail verify and qel verify have in common on the command line.
namespace tool {

/// --before
void AddBefore(CLI::App& command, std::vector<std::string>& files);

/// @throws CLI::ValidationError for a file in one of the folders: one of ours would be one more file there
void RequireOutside(const std::string& file, const std::vector<std::string>& folders);

/// The line for files that were passed over; empty for none.
std::string NotReadAgainText(std::size_t passed);

/// The status with what is to be known about a resumed run, and a line on the standard error output if results could
/// not be kept. @param status of what was found. @param resume may be null
Status WithResume(Status status, const Resume* resume);

/// The exit statuses of findings about trails and archives, a line each, for --help.
extern const char* const kTrailStatuses;

}  // namespace tool
