#pragma once

#include <string>

#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// The folder of the user's named objects, locked against all other processes as long as this object lives. Users never
/// share a name. The first entry removes what killed processes have left, except a mutex that one of them owned:
/// whoever makes that mutex again is informed. Within a process, the object table's own lock ensures that only one
/// thread at a time has a FolderLock.
///
/// It is /dev/shm/qellib10-USER (the user's number), whatever the environment says: programs in a session and services
/// must find each other's names, and a second folder would make a second first instance. Only a folder that belongs to
/// the user and is closed to everybody else is used. If another user has created one of that name first, it is the
/// first of /dev/shm/qellib10-USER-1 to -15 that belongs to the user, or else the first free one.
///
/// The folder may disappear at any time, for example at the end of the user's last session; it is then created again.
class FolderLock {
public:
    /// @throws SystemFailure, code 5 when there is no folder that belongs to the user alone
    FolderLock();

    /// @return nothing if the file does not exist
    Descriptor Open(const std::string& file) const;
    /// Creates a new, empty file.
    Descriptor Create(const std::string& file) const;
    void Remove(const std::string& file) const;

    /// Which folder this is for this process: another number after the folder was created again, or for another user.
    unsigned Number() const;

    /// This process is now a forked child: it must not share its parent's lock.
    static void Forget();

private:
    struct Release {
        Release() = default;
        Release(const Release&) = delete;
        Release& operator=(const Release&) = delete;
        ~Release();
    };

    Release m_release;  // a member, so that a constructor that fails half way also unlocks
};

/// Creates a file without a name, for an object without one.
Descriptor CreateNamelessFile();

}  // namespace qel
