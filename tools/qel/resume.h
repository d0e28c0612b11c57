#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "file_check.h"

namespace tool {

/// Which files a run of qel verify has read without a finding, for the next run if this one is interrupted. A file
/// whose inode, size and times are still the same is not read again: only the system sets the time of an inode's last
/// change.
///
///     qel-resume 2 KEY
///     MAC PURPOSE DEVICE INODE SIZE MODIFIED CHANGED FINDING SEALED KIND PATH DETAIL
///
/// Times are ns since 1970; paths and texts as in a FileList. PURPOSE says what the file was compared with: "content"
/// with itself, else a hash of what the trail says about it. The key is random and the file private (mode 0600), so a
/// line that somebody else has made counts for nothing, as one that is torn. A line is appended after each file. Any
/// thread may call Check.
class Resume {
public:
    /// @throws Failure when the file cannot be made or read, or others may read it
    explicit Resume(const std::string& path);

    using Checking = std::function<FileReport(const std::string& file)>;
    /// What is known of the file, or what is found by reading it.
    FileReport Check(const std::string& file) { return Check(file, "content", CheckFile); }
    /// The same for another purpose, without blanks.
    FileReport Check(const std::string& file, const std::string& purpose, const Checking& check);
    /// Files that were not read again.
    std::size_t Passed() const;
    /// False when results could not be kept, as on a full disk: the next run reads these files again.
    bool HasKeptAll() const noexcept { return !m_hasFailed; }
    const std::string& Path() const noexcept { return m_path; }

private:
    void Read();
    void Learn(const std::string& line);
    std::string MacOf(const std::string& text) const;
    bool Append(const std::string& text);

    std::string m_path, m_key;
    qel::Descriptor m_file;
    struct Known {
        std::string inode;
        FileReport report;
    };
    std::map<std::string, Known> m_known;  // by purpose and path
    std::set<std::string> m_passed;        // paths
    std::atomic<bool> m_hasFailed = false;
    bool m_isTorn = false;
    mutable std::mutex m_turn;
};

}  // namespace tool
