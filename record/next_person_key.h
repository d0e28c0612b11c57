#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/record/person_key_format.h"

namespace qel {

/// The key that is to take the place of a person's key: a file next to it, with ".next" in its name. It is on the disk
/// before the trail announces the key, and goes after the key is in its place. While an object has it, no other one
/// changes the person's key or its password, in any program. Everything throws CFileException.
class NextPersonKey {
public:
    /// @throws CFileException 33 when another program has it for half a minute
    explicit NextPersonKey(const std::string& keyPath);
    /// Removes the file if it has nothing.
    ~NextPersonKey();
    NextPersonKey(const NextPersonKey&) = delete;
    NextPersonKey& operator=(const NextPersonKey&) = delete;

    /// What an interrupted program has left. Nothing where it was interrupted before all was on the disk: no entry
    /// can have announced that.
    std::optional<PersonKeyFile> Left() const;
    /// Both return when it is on the disk.
    void Keep(const PersonKeyFile& key);
    void Forget();

private:
    using Time = std::chrono::steady_clock::time_point;

    bool Take(Time end);

    const std::string m_path;
    std::optional<GuardedFile> m_file;
    std::optional<GuardedFile::Lock> m_lock;
};

}  // namespace qel
