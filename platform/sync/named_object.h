#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/sync/mapped_mutex.h"
#include "qellib10/platform/sync/object_file.h"

namespace qel {

/// An object as this process has it: one, however many handles there are.
struct NamedObject {
    std::string name;  // empty for one without
    ObjectKind kind = ObjectKind::Memory;
    std::uint64_t size = 0;  // of the block
    Descriptor file;
    std::unique_ptr<MappedMutex> mutex;  // of a Mutex
    unsigned folder = 0;                 // the number of the folder that its file is in
    std::size_t users = 0;               // handles, and waits under way

    /// Creates the object for the new, empty file, and holds it.
    static std::unique_ptr<NamedObject> Make(Descriptor file, std::string_view name, ObjectKind kind,
                                             std::uint64_t size);
    /// Holds the object of a file that another process created.
    /// @return null while its creator, or the last process to close it, is dying: soon nobody holds it
    /// @throws SystemFailure, code 6 for an object of another kind
    static std::unique_ptr<NamedObject> Join(Descriptor file, std::string_view name, ObjectKind kind);

    /// @throws SystemFailure (1006) when another program has cut the file: accessing it would kill the process
    void CheckIsWhole() const;
};

}  // namespace qel
