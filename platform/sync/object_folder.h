#pragma once

#include <string>

#include "qellib10/platform/storage/descriptor.h"

namespace qel {

/// The folder of the user's named objects, locked against all other processes as long as this object lives. Users never
/// share a name. Entering for the first time removes what killed processes have left. Within a process one thread at a
/// time has a FolderLock: the object table's own lock sees to it.
///
/// It is /dev/shm/qellib10-USER (the user's number), whatever the environment says: programs in a session and services
/// must find each other's names, and a second folder would make a second first instance. Only a folder that belongs to
/// the user and is closed to all others counts. Another user may have made one of that name first; then it is the first
/// of /dev/shm/qellib10-USER-1 to -15 that is the user's, or else that is free.
///
/// The folder may vanish at any time, as at the end of the user's last session; then it is made again.
class FolderLock {
public:
    /// @throws SystemFailure, code 5 when there is no folder that is the user's alone
    FolderLock();

    /// @return none when there is no such file
    Descriptor Open(const std::string& file) const;
    /// A new, empty file.
    Descriptor Create(const std::string& file) const;
    void Remove(const std::string& file) const;

    /// Which folder of this process's this is: another number when the folder was made anew, or the user is another.
    unsigned Number() const;

    /// This process is a forked child now: it must not share the lock of its parent.
    static void Forget();

private:
    struct Release {
        Release() = default;
        Release(const Release&) = delete;
        Release& operator=(const Release&) = delete;
        ~Release();
    };

    Release m_release;  // a member, so that a constructor that fails half way unlocks too
};

/// A file without a name, for an object without one.
Descriptor CreateNamelessFile();

}  // namespace qel
