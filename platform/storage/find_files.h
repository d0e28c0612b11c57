#pragma once

#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// An entry of a folder.
struct FoundFile {
    CString name;           // in the form of ToLibraryName
    bool isFolder = false;  // also a link to a folder
};

/// Whether @p name matches the wildcard @p pattern by the platform's rules. The case of ASCII letters does not matter.
/// `?` is one character, or none before a dot and at the end; `*` is any text; `*.*` is everything, `foo.*` also
/// matches foo, and `*.` matches names without a dot. Characters are those of the process's code page.
QELLIB10_API bool MatchesPattern(std::string_view name, std::string_view pattern);

/// The entries that match the last component of @p pattern in the folder before it, sorted by name. "." and ".." are
/// never included; names that start with a dot are ordinary. A component without `*` and `?` finds exactly that name.
/// Short 8.3 names do not exist here and match nothing.
/// @throws CFileException 3 when the folder is missing, 5 when it cannot be read
QELLIB10_API std::vector<FoundFile> FindFiles(std::string_view pattern);

}  // namespace qel
