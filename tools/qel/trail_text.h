#pragma once

#include <qellib10/record.h>

#include "tool.h"

// Entries of a trail for people and for programs.
namespace tool {

/// @param hash of its line. @param signer fingerprint of the key that it names
Json EntryJson(const qel::TrailEntry& entry, const std::string& hash, const std::string& signer);
/// A line that says who did what, when and why.
std::string EntryLine(const qel::TrailEntry& entry);
/// How many entries there are, and what the check has found.
std::string ResultText(const qel::TrailReport& report);
/// A line for each member of EntryJson that is not empty.
std::string EntryText(const Json& entry);

}  // namespace tool
