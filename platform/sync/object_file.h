#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/sync/object_name.h"

namespace qel {

enum class ObjectKind : std::uint32_t { Memory = 1, Mutex = 2 };

/// The file of a named object: memory that processes of this host share, in a layout of our own.
///
///     offset 0       ObjectHeader
///     offset 2048    the mutex of a Mutex (MappedMutex)
///     offset 4096    the block of a Memory, as long as the header says
///
/// A process that has the object holds the file with a read lock on its first byte; the kernel removes the lock with
/// the process, however it ends. A file that nobody holds is not an object, whatever it contains. Files are found,
/// created, held and released only under the folder's lock (FolderLock).
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
/// @throws SystemFailure when there is not enough memory (8)
void Extend(const Descriptor& file, std::uint64_t blockSize);

/// The last step of creating an object: a file without a header is not an object yet.
void WriteHeader(const Descriptor& file, const ObjectHeader& header);

/// The header of the file's object, checked against the file; nothing if it is not complete.
std::optional<ObjectHeader> ReadHeader(const Descriptor& file);

/// The same if the object has that name.
std::optional<ObjectHeader> ReadHeader(const Descriptor& file, std::string_view name);

struct FileState {
    bool hasName;  // in the folder
    bool isWhole;  // false: another program has cut the file, and accessing a byte past its end would kill the process
};

/// What has happened to an object's file since it was opened.
FileState Look(const Descriptor& file, std::uint64_t blockSize);

/// Whether anybody but this opening of the file holds it.
bool IsHeld(const Descriptor& file);

/// Holds the file together with others. @return false when another process holds it alone
bool Hold(const Descriptor& file);

/// Holds the file alone. @return false, and nothing changes, when another process holds it
bool HoldAlone(const Descriptor& file);

void LetGo(const Descriptor& file);

}  // namespace qel
