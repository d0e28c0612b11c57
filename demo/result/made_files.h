#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

namespace titration {

/// The files in the output folder. They have their size and checksums in "made.ini", so that it shows later whether one
/// was changed; the cabinet has sums of its own. Those that are laid out by the program have what a sample report was
/// like then, see SampleOf:
///
///     [files]
///     report-1.job=13899 bytes, CRC 5F0C1A77, sum 0011D2A9
///     [samples]
///     report-1.job=91D6BA77 5C2F99A0 CA41F0D2 0B7DE4A8
class MadeFiles {
public:
    explicit MadeFiles(const CString& folder);

    /// @param name of a file, or with one slash of a file in a folder below
    std::string Path(const std::string& name) const;
    /// Writes down what the file is like now.
    /// @throws Failure
    void Add(const std::string& name, const std::string& sample = "");
    /// The same for one that runs of the program at the same time change as well; nothing when it is not there.
    /// @throws Failure
    void Keep(const std::string& name);
    /// Deletes files that match a pattern, and what was written down of them.
    /// @throws Failure
    void Remove(const std::string& pattern);
    /// @throws Failure when the file is not there, and when it is not as it was written down
    void RequireAsMade(const std::string& name) const;
    /// The same for a file that may have grown since.
    /// @throws Failure
    void RequireBeginsAsMade(const std::string& name) const;
    /// The sample report of the time when the file was made.
    std::string SampleOf(const std::string& name) const { return std::string(m_sums.Get(kSamples, name.c_str(), "")); }

    /// Those that are there, in the order of their names; a pattern may name folders below, as
    /// `version-*/variables.qel`.
    /// @throws Failure
    std::vector<std::string> Matching(const std::string& pattern) const;
    /// Those that are written down, there or not.
    /// @throws Failure when that cannot be read, or has a line that is not one of the above
    std::vector<std::string> WrittenDown() const;
    /// Those that are there and of a kind that is made.
    /// @throws Failure
    std::vector<std::string> Found() const;
    /// Each with its size and what it is, one a line.
    std::string Listed() const;

private:
    static constexpr const char *kFiles = "files", *kSamples = "samples";

    DWORD SizeOf(const std::string& name) const;
    std::string Described(const std::string& name, DWORD size) const;
    std::string Described(const std::string& name) const;
    std::string AsMade(const std::string& name) const;
    void Set(const std::string& name, const char* sums, const char* sample);

    CString m_folder;
    CPrivateProfile m_sums;
};

}  // namespace titration
