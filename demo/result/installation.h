#pragma once

#include <memory>
#include <string>

#include <qellib10/qellib10.h>
#include <qellib10/record.h>

namespace titration {

/// What an installation has outside of the archive: the key that signs the trail, the head file, and people's keys, in
/// a folder next to the archive's, with the ending ".installation". It only shows how things work: whoever runs the
/// demonstration can read the key. In a laboratory an agent of another user has it (qel::SshAgentSigner).
class Installation {
public:
    explicit Installation(const CString& archive);

    std::string KeyPath() const { return Path("trail_key"); }
    std::string HeadPath() const { return Path("trail.head"); }
    /// @throws Failure for a name that is no file name
    std::string PersonKeyPath(const std::string& user) const;

    bool HasHead() const { return CQFile::IsExist(HeadPath().c_str()) != 0; }
    /// The key. The first time it is made.
    /// @throws Failure
    std::shared_ptr<qel::Signer> Key() const;

private:
    std::string Path(const char* name) const { return std::string(CQFile::BuildFilePath(m_folder, name)); }

    const CString m_folder;
};

}  // namespace titration
