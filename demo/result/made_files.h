#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

namespace titration {

/// The files in the output folder. "made.ini" keeps the size and the checksums of each, so that a later change is
/// found; the cabinet has checksums of its own. A file that the program lays out also has the layout fingerprint of
/// that time, see LayoutFingerprint. Kept: its section is called "samples", as in files already made.
///
///     [files]
///     report-1.job=13899 bytes, CRC 5F0C1A77, sum 0011D2A9
///     [samples]
///     report-1.job=91D6BA77 5C2F99A0 CA41F0D2 0B7DE4A8
class MadeFiles {
public:
    explicit MadeFiles(const CString& folder);

    /// @param name of a file, or with one slash of a file in a subfolder
    std::string Path(const std::string& name) const;
    /// Records the file's current state.
    /// @throws Failure
    void Add(const std::string& name, const std::string& fingerprint = "");
    /// The same for a file that other runs of the program change at the same time; does nothing if it does not exist.
    /// @throws Failure
    void Keep(const std::string& name);
    /// Deletes the files that match a pattern, and their records.
    /// @throws Failure
    void Remove(const std::string& pattern);
    /// @throws Failure if the file does not exist, and if it is not as recorded
    void RequireAsMade(const std::string& name) const;
    /// The same for a file that may have grown since.
    /// @throws Failure
    void RequireBeginsAsMade(const std::string& name) const;
    /// The layout fingerprint of the time when the file was made.
    std::string FingerprintOf(const std::string& name) const {
        return std::string(m_sums.Get(kFingerprints, name.c_str(), ""));
    }

    /// The existing files, sorted by name; a pattern may name subfolders, for example `version-*/variables.qel`.
    /// @throws Failure
    std::vector<std::string> Matching(const std::string& pattern) const;
    /// The recorded files, existing or not.
    /// @throws Failure if the record cannot be read, or has a line that is not one of the above
    std::vector<std::string> WrittenDown() const;
    /// The existing files of the kinds that are made.
    /// @throws Failure
    std::vector<std::string> Found() const;
    /// Each with its size and a description, one per line.
    std::string Listed() const;

private:
    static constexpr const char *kFiles = "files", *kFingerprints = "samples";

    DWORD SizeOf(const std::string& name) const;
    std::string Described(const std::string& name, DWORD size) const;
    std::string Described(const std::string& name) const;
    std::string AsMade(const std::string& name) const;
    void Set(const std::string& name, const char* sums, const char* fingerprint);

    CString m_folder;
    CPrivateProfile m_sums;
};

}  // namespace titration
