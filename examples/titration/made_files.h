#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>

namespace titration {

/// The files in the output folder. Those that are written as a whole have their size and checksums in "made.ini", so
/// that it shows later whether one was changed:
///
///     [files]
///     report-1.job = 13899 bytes, CRC 5F0C1A77, sum 0011D2A9
class MadeFiles {
public:
    explicit MadeFiles(const CString& folder);

    std::string Path(const std::string& name) const;
    /// Writes down what the file is like now.
    /// @throws Failure
    void Add(const std::string& name);
    /// The same for those that match a pattern and are not written down yet.
    /// @throws Failure
    /// @return their names
    std::vector<std::string> AddNew(const std::string& pattern);
    /// @throws Failure when the file is not there, and when it is not as it was written down
    void RequireAsMade(const std::string& name) const;

    /// In the order of their names.
    /// @throws Failure
    std::vector<std::string> Matching(const std::string& pattern) const;
    /// Each with its size and what it is, one a line.
    std::string Listed() const;

private:
    std::string Described(const std::string& name) const;

    CString m_folder;
    CPrivateProfile m_sums;
};

}  // namespace titration
