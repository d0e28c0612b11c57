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

/// An object as this process has it: once, however many handles there are.
struct NamedObject {
    std::string name;  // empty for one without
    ObjectKind kind = ObjectKind::Memory;
    std::uint64_t size = 0;  // of the block
    Descriptor file;
    std::unique_ptr<MappedMutex> mutex;  // of a Mutex
    unsigned folder = 0;                 // the number of the folder that its file is in
    std::size_t users = 0;               // handles, and waits under way

    /// Makes the object that the new, empty file stands for, and holds it.
    static std::unique_ptr<NamedObject> Make(Descriptor file, std::string_view name, ObjectKind kind,
                                             std::uint64_t size);
    /// Holds the object that the file of somebody else stands for.
    /// @return null while its maker, or the last who closes it, is dying: soon nobody holds it
    /// @throws SystemFailure, code 6 for an object of another kind
    static std::unique_ptr<NamedObject> Join(Descriptor file, std::string_view name, ObjectKind kind);

    /// @throws SystemFailure (1006) when somebody has cut the file: whoever touches it would be killed
    void CheckIsWhole() const;
};

}  // namespace qel
