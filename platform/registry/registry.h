#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

// The registry: trees of keys, each key with named values. There are three trees; each has its own database, created by
// the first write:
//
//     HKEY_LOCAL_MACHINE   local-machine.db   in the Windows folder, /var/lib/qellib10
//     HKEY_CLASSES_ROOT    classes-root.db    next to it
//     HKEY_CURRENT_USER    current-user.db    in $XDG_CONFIG_HOME/qellib10, else ~/.config/qellib10
//
// QELLIB10_REGISTRY_DIR, an absolute path, puts all of them into one folder. A tree without a database is empty.
//
// Only its user can read a new current-user.db (mode 0600); everybody can read the others, less the umask. A database
// that exists keeps its mode, which somebody may have given it: chmod 600 narrows one that others can read.
//
// Names match without regard to case (Latin, also full-width, Greek and Cyrillic letters) and keep the spelling of
// their creation. A key's name has 1 to 255 characters, a value's 0 to 16383: the empty name, or null, is the key's
// default value. Keys nest up to 512 levels; data hold up to 1 MiB.
//
// A path is a list of names between backslashes. A backslash at its end is ignored, several count as one, one at the
// start is an error; null and the empty path are the key itself. Names and texts are stored in Unicode, so that
// processes with different code pages can share them.
//
// Every change is on disk when the operation returns. If the process or the machine stops before, the change is either
// complete or has not happened. Writers to a tree take turns in the order in which they come, threads and processes
// alike. Safe from any thread and in forked children; for a child that was forked within a RegistryTransaction of its
// thread, that tree is busy.

/// A key: one of the roots, or one from CreateRegistryKey or OpenRegistryKey. 0 means none.
using HKEY = struct RegistryKeyHandle*;

inline const HKEY HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::uintptr_t{0x80000000});
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002});

/// Types of values.
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_QWORD = 11;

namespace qel {

/// Whether data of this type are text.
constexpr bool IsRegistryText(DWORD type) { return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ; }

/// The largest size of a value, in bytes.
inline constexpr std::size_t kMaxRegistryData = 1 << 20;

/// What registry operations return: the platform's error numbers.
enum RegistryCode : LONG {
    kRegistrySuccess = 0,
    kRegistryNotFound = 2,
    kRegistryAccessDenied = 5,
    kRegistryBadHandle = 6,
    kRegistryInvalidParameter = 87,  // a name, a path or data beyond the limits
    kRegistryDiskFull = 112,
    kRegistryBadPath = 161,
    kRegistryBusy = 170,       // others used the tree for 10 seconds without a pause
    kRegistryDamaged = 1009,   // the file is not a database of ours, or is of a newer version
    kRegistryIoFailed = 1016,  // the disk failed
    kRegistryKeyDeleted = 1018,
};

/// A value. Text (IsRegistryText) is in the process's code page, with a terminating zero only if it was stored with
/// one; data of other types are bytes, numbers little-endian.
struct RegistryValue {
    DWORD type = REG_BINARY;
    std::string data;
};

/// Opens the key at @p path and creates what is missing of it; each new key gets @p className, which nothing reads.
QELLIB10_API LONG CreateRegistryKey(HKEY parent, const char* path, const char* className, HKEY& key);
QELLIB10_API LONG OpenRegistryKey(HKEY parent, const char* path, HKEY& key);
/// Roots are never closed; closing one does nothing.
QELLIB10_API LONG CloseRegistryKey(HKEY key);

/// Reads or sets a value of the key at @p path; setting creates a missing key. One step each, without opening the key.
QELLIB10_API LONG ReadRegistryValue(HKEY parent, const char* path, const char* name, RegistryValue& value);
QELLIB10_API LONG WriteRegistryValue(HKEY parent, const char* path, const char* className, const char* name,
                                     const RegistryValue& value);

/// The content of a key itself, in the order of creation.
struct RegistryContents {
    std::vector<std::string> keys;                              ///< names of the direct subkeys
    std::vector<std::pair<std::string, RegistryValue>> values;  ///< the name of the default value is empty
};
QELLIB10_API LONG ListRegistryKey(HKEY parent, const char* path, RegistryContents& contents);

/// Deletes a key and everything in it. A root is refused: 5.
QELLIB10_API LONG DeleteRegistryTree(HKEY parent, const char* path);
/// Copies all values and subkeys of @p from into @p to, where values with the same name are replaced. Between two
/// roots, or into itself or one of its own subkeys: 87.
QELLIB10_API LONG CopyRegistryTree(HKEY from, HKEY to);

/// Combines several operations of this thread on one root into one: others see all of them or none. Without Commit, or
/// if the process ends before it, nothing has happened. If an operation within it fails, end it without Commit.
class QELLIB10_API RegistryTransaction {
public:
    RegistryTransaction();
    ~RegistryTransaction();
    RegistryTransaction(const RegistryTransaction&) = delete;
    RegistryTransaction& operator=(const RegistryTransaction&) = delete;

    /// Starts on the root of @p key. @return kRegistryNotFound if the tree has no database, and so is empty
    LONG Begin(HKEY key);
    LONG Commit();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
