#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/storage/share_lock.h"
#include "qellib10/platform/types.h"

namespace qel {

/// What an opening wants of a file beside its share mode.
struct OpenRequest {
    ShareMode mode;
    bool create = false;        // make a missing file
    bool truncate = false;      // cut it to nothing, once it is certain that nobody minds
    bool append = false;        // every write goes to the end of the file
    bool writeThrough = false;  // a write returns when its data are on the disk

    /// The request that CFile's open flags stand for.
    static OpenRequest OfFlags(UINT flags);
};

/// Opens the regular file at @p posixPath at position 0; @p name is what exceptions call it. The descriptor may allow
/// more than was requested (marks need it): the caller refuses what the request does not hold.
/// @throws CFileException: 5 for folders, devices and the read-only attribute, 32 when another opening is in the way
Descriptor OpenShared(const std::string& posixPath, const OpenRequest& request, std::string_view name);

/// The same without an exception, for those to whom a refusal is nothing unusual.
/// @return 0, or the code for which OpenShared throws; @p file, closed before, has no descriptor then
LONG TryOpenShared(const std::string& posixPath, const OpenRequest& request, Descriptor& file);

/// Withdraws the marks of @p file and closes it; the marks stay when @p duplicated, since they are the duplicate's too.
/// @return 0 or the errno of close; the descriptor is closed all the same
int CloseShared(Descriptor& file, bool duplicated = false) noexcept;

}  // namespace qel
