#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/sync/object_name.h"

namespace qel {

enum class ObjectKind : std::uint32_t { Memory = 1, Mutex = 2 };

/// The file that stands for a named object: memory that processes of this host share, in its own layout.
///
///     offset 0       ObjectHeader
///     offset 2048    the mutex of a Mutex (MappedMutex)
///     offset 4096    the block of a Memory, as long as the header says
///
/// A process that has the object holds the file, by a read lock on its first byte; the kernel drops that with the
/// process, however it ends. A file that nobody holds stands for nothing, whatever it contains. Files are found, made,
/// held and let go under the folder's lock (FolderLock) only.
inline constexpr std::int64_t kMutexOffset = 2048, kBlockOffset = 4096;

struct ObjectHeader {
    static constexpr std::uint64_t kMagic = 0x51454C3130534F31;

    std::uint64_t magic = 0;
    std::uint64_t size = 0;  // of the block
    ObjectKind kind = ObjectKind::Memory;
    std::uint32_t nameLength = 0;
    char name[kLongestObjectName] = {};
};
static_assert(sizeof(ObjectHeader) <= kMutexOffset);

/// Gives the new, empty file its length, all zero.
/// @throws SystemFailure when there is not as much memory (8)
void Extend(const Descriptor& file, std::uint64_t blockSize);

/// The last step of making an object: what has no header is none yet.
void WriteHeader(const Descriptor& file, const ObjectHeader& header);

/// The header of the object of that name, checked against the file; none when it is not whole.
std::optional<ObjectHeader> ReadHeader(const Descriptor& file, std::string_view name);

struct FileState {
    bool hasName;  // in the folder
    bool isWhole;  // touching a byte behind the end of a file that somebody has cut would kill the process
};

/// What has become of an object's file since it was opened.
FileState Look(const Descriptor& file, std::uint64_t blockSize);

/// Whether anybody but this opening of the file holds it.
bool IsHeld(const Descriptor& file);

/// Holds the file beside others. @return false when somebody holds it alone
bool Hold(const Descriptor& file);

/// Holds the file alone. @return false, and all is as it was, when somebody else holds it
bool HoldAlone(const Descriptor& file);

void LetGo(const Descriptor& file);

}  // namespace qel
