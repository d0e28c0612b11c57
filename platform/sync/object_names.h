#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "qellib10/platform/sync/named_object.h"
#include "qellib10/platform/sync/object_folder.h"

namespace qel {

enum class Missing { Fails, IsMade };

/// The objects that this process has, and how they come and go: a name lives as long as any process has the object, and
/// memory comes back all zero, a mutex free, once none had it. One call at a time.
class ObjectNames {
public:
    struct Found {
        NamedObject* object = nullptr;  // null while a process dies that still has the name: try again soon
        bool existed = true;
    };

    /// @param name not empty
    /// @param size of the block of a new Memory
    /// @throws SystemFailure: code 2 for a missing object that is not to be made, 6 for one of another kind, 87 for a
    /// new block of size 0, 8 when there is no memory
    Found Use(std::string_view name, ObjectKind kind, std::uint64_t size, Missing missing);
    NamedObject& UseNameless(ObjectKind kind, std::uint64_t size);

    /// One user less; the last one gives the object up.
    void Leave(NamedObject& object);

    /// The process ends.
    void Exit();
    /// This process is a forked child now, and all these objects are its parent's.
    void Forget();

private:
    NamedObject& Keep(std::unique_ptr<NamedObject> object, unsigned folder = 0);
    std::unique_ptr<NamedObject> TakeParked(const FolderLock& folder, std::string_view name);
    void GiveUp(const FolderLock& folder, std::unique_ptr<NamedObject> object);
    void Park(const FolderLock& folder, std::unique_ptr<NamedObject> object);

    std::vector<std::unique_ptr<NamedObject>> m_objects;
    // Mutexes given up last, oldest first: nobody's, but ready when they are wanted again, as by every turn under the
    // lock of a block. Making a file takes several times as long as finding out that nobody else has.
    std::vector<std::unique_ptr<NamedObject>> m_parked;
    bool m_isExiting = false;
};

}  // namespace qel
