#pragma once

#include <string>

#include "qellib10/platform/storage/name_lock.h"

namespace qel {

/// The turn of one logon among all that name the same user, in whatever program: while it is had no other is checked.
///
/// Waiting has no order: whoever asks first after a turn ends has the next one. So programs that guess without a pause
/// can delay the right password, by the time of a check each, and at worst until it is refused after half a minute.
class LogonTurn {
public:
    /// Waits up to half a minute.
    /// @param storePath of the store, POSIX; links to one store lead to one turn
    /// @param foldedName of a user, or of nobody: it makes no difference
    /// @throws StoreError when the others do not come to an end; CFileException when the lock's file cannot be made
    LogonTurn(const std::string& storePath, const std::string& foldedName);

private:
    NameLock m_lock;
};

}  // namespace qel
