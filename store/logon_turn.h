#pragma once

#include <string>

#include "qellib10/platform/storage/name_lock.h"

namespace qel {

/// The turn of one logon among all those of the same user, in any program: while it is held, no other is checked.
///
/// Waiting has no order: whoever asks first after a turn ends gets the next one. So programs that guess without a pause
/// can delay the right password, by the time of a check each, and at worst until it is refused after half a minute.
class LogonTurn {
public:
    /// Waits up to half a minute.
    /// @param storePath of the store, POSIX; links to one store lead to one turn
    /// @param foldedName of a user, or of nobody: it makes no difference
    /// @throws StoreError when the others have not ended by then; CFileException when the lock's file cannot be made
    LogonTurn(const std::string& storePath, const std::string& foldedName);

private:
    NameLock m_lock;
};

}  // namespace qel
