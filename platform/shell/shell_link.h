#pragma once

#include <optional>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

// Shell links: files `<name>.lnk` that lead to a program, document or folder, readable by the framework's shell. This
// system's desktop ignores them. So in a folder that the desktop reads (programs started with the session, the start
// menu, the desktop) a file `<name>.desktop` with the same meaning is written next to it. `.lnk` is appended to names
// that do not end with it, in upper or lower case.
namespace qel {

/// Writes a link and replaces an existing one; a missing start-up folder is created. The target need not exist.
/// @throws CFileException 5 or 32 when the file cannot be replaced; 80 when there is a `.desktop` file that we did not
/// write, then nothing is written
QELLIB10_API void WriteShellLink(std::string_view target, std::string_view link,
                                 const std::optional<CString>& description);

/// Deletes a link, and the `.desktop` file that WriteShellLink wrote next to it, even if the link itself is missing.
/// @throws CFileException like DeleteFile, for the link
QELLIB10_API void DeleteShellLink(std::string_view link);

}  // namespace qel
