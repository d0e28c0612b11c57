#pragma once

#include <qellib10/record.h>

#include "tool.h"

namespace tool {

/// What a trail's entries are written to, in one of four formats.
struct TrailExport {
    std::string target, format;  // of "text", "json", "csv" and "pdf"; empty: as the target's suffix says
    bool force = false;
};

/// Writes the entries that were checked, with the result. @param report of the same trail, read just now
/// @return kMalformed or kCut where lines are no entries. @throws Failure when the trail is not the one that was
/// checked
Status ExportTrail(const std::string& trail, const qel::TrailReport& report, const TrailExport& to);

/// The pages of a report about the entries. @throws Failure for more entries than a PDF has room for
void WriteTrailPdf(const std::string& trail, const qel::TrailReport& report, const TrailExport& to);

}  // namespace tool
