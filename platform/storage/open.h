#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/storage/share_lock.h"
#include "qellib10/platform/types.h"

namespace qel {

/// What an opening does with a file, apart from its share mode.
struct OpenRequest {
    ShareMode mode;
    bool create = false;        // create a missing file
    bool truncate = false;      // empty it, once no other opening objects
    bool append = false;        // every write goes to the end of the file
    bool writeThrough = false;  // a write returns when its data are on disk

    /// The request for CFile's open flags.
    static OpenRequest OfFlags(UINT flags);
};

/// Opens the regular file at @p posixPath at position 0; @p name is what exceptions call it. The descriptor may allow
/// more than was requested, because the marks need it: the caller must refuse what was not requested.
/// @throws CFileException: 5 for folders, devices and the read-only attribute, 32 when another opening does not allow
/// it
Descriptor OpenShared(const std::string& posixPath, const OpenRequest& request, std::string_view name);

/// The same without an exception, for callers that expect refusals.
/// @return 0, or the code that OpenShared would throw; @p file is closed first and has no descriptor then
LONG TryOpenShared(const std::string& posixPath, const OpenRequest& request, Descriptor& file);

/// Removes the marks of @p file and closes it. If @p duplicated, the marks stay, because the duplicate needs them.
/// @return 0 or the errno of close; the descriptor is closed in both cases
int CloseShared(Descriptor& file, bool duplicated = false) noexcept;

}  // namespace qel
