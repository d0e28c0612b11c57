#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "qellib10/platform/sync/named_object.h"
#include "qellib10/platform/sync/object_folder.h"

namespace qel {

enum class Missing { Fails, IsMade };

/// The objects that this process has. A name lives as long as any process has the object. Once nobody had it, memory
/// starts again all zero and a mutex free. One call at a time.
class ObjectNames {
public:
    struct Found {
        NamedObject* object = nullptr;  // null while a process that still has the name is dying: try again soon
        bool existed = true;
        bool wasLeftOwned = false;  // as in OpenedObject
    };

    /// @param name not empty
    /// @param size of the block of a new Memory
    /// @throws SystemFailure: code 2 for a missing object that is not to be created, 6 for one of another kind, 87 for
    /// a new block of size 0, 8 when there is no memory
    Found Use(std::string_view name, ObjectKind kind, std::uint64_t size, Missing missing);
    NamedObject& UseNameless(ObjectKind kind, std::uint64_t size);

    /// One user less; the last one releases the object.
    void Leave(NamedObject& object);

    /// The process ends.
    void Exit();
    /// This process is now a forked child, and all these objects belong to its parent.
    void Forget();

private:
    NamedObject& Keep(std::unique_ptr<NamedObject> object, unsigned folder = 0);
    std::unique_ptr<NamedObject> TakeParked(const FolderLock& folder, std::string_view name);
    void GiveUp(const FolderLock& folder, std::unique_ptr<NamedObject> object);
    void Park(const FolderLock& folder, std::unique_ptr<NamedObject> object);

    std::vector<std::unique_ptr<NamedObject>> m_objects;
    // The mutexes released last, oldest first. They belong to nobody, but are ready when needed again, as for every
    // turn under a block's lock. Creating a file takes several times as long as finding out that nobody else has the
    // mutex.
    std::vector<std::unique_ptr<NamedObject>> m_parked;
    bool m_isExiting = false;
};

}  // namespace qel
