#pragma once

#include <optional>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

// Shell links: files `<name>.lnk` that lead to a program, document or folder, readable by the framework's shell. This
// system's desktop takes no notice of them, so in a folder that it looks into (what starts with the session, the start
// menu, the desktop) a file `<name>.desktop` with the same meaning stands beside. Names get `.lnk` where they do not
// end with it, in any case.
namespace qel {

/// Writes a link, replacing one that is there; a missing start-up folder is made. The target need not exist.
/// @throws CFileException 5 or 32 when a file stands in the way; 80 when a `.desktop` file of somebody else does, then
/// nothing is written
QELLIB10_API void WriteShellLink(std::string_view target, std::string_view link,
                                 const std::optional<CString>& description);

/// Deletes a link, and the `.desktop` file that WriteShellLink made beside it, also when the link itself is missing.
/// @throws CFileException as DeleteFile, for the link
QELLIB10_API void DeleteShellLink(std::string_view link);

}  // namespace qel
