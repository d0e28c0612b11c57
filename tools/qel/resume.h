#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "file_check.h"

namespace tool {

/// Which files a run of qel verify has read without a finding, for the next run if this one is interrupted. A file
/// whose inode, size and times are still the same is not read again: only the system sets the time of an inode's last
/// change.
///
///     qel-resume 1 KEY
///     MAC DEVICE INODE SIZE MODIFIED CHANGED FINDING SEALED KIND PATH DETAIL
///
/// Times are ns since 1970; paths and texts as in a FileList. The key is random and the file private (mode 0600), so a
/// line that somebody else has made counts for nothing, as one that is torn. A line is appended after each file. Any
/// thread may call Check.
class Resume {
public:
    /// @throws Failure when the file cannot be made or read, or others may read it
    explicit Resume(const std::string& path);

    /// What is known of the file, or what is found by reading it.
    FileReport Check(const std::string& file);
    /// Files that were not read again. @throws Failure when results could not be kept
    std::size_t Passed() const;

private:
    void Read();
    void Learn(const std::string& line);
    std::string MacOf(const std::string& text) const;
    bool Append(const std::string& text);

    std::string m_path, m_key;
    qel::Descriptor m_file;
    std::map<std::string, std::pair<std::string, FileReport>> m_known;  // by path, with what the inode was
    std::atomic<std::size_t> m_passed = 0;
    std::atomic<bool> m_hasFailed = false;
    std::mutex m_appending;
};

}  // namespace tool
