#pragma once

#include <string>

#include <qellib10/qellib10.h>
#include <qellib10/record.h>

#include "demo/result/installation.h"
#include "demo/result/made_files.h"

namespace titration {

inline constexpr const char* kTrail = "trail.jsonl";
inline constexpr const char* kAllowedSigners = "allowed_signers";

/// The trail of the output folder: who did what, when and why. What cannot be entered is not done.
class ArchiveTrail {
public:
    /// Opens it; a missing one is started. A missing file of allowed signers is written, for people who check the trail
    /// by ssh-keygen: it proves nothing, since it lies in the folder, but it has to agree with the entries.
    /// @throws Failure if entries are missing, and if it cannot be written
    ArchiveTrail(const MadeFiles& made, const Installation& installation);

    /// Who does what is entered from now on.
    void SetUser(const std::string& user) { m_user = user; }
    const std::string& User() const { return m_user; }

    /// Enters @p record for the user. @throws Failure
    qel::TrailReceipt Enter(qel::TrailRecord record);
    qel::TrailReceipt Enter(std::string_view action, const std::string& object = "", const std::string& reason = "");
    /// Enters a file of the output folder, with its size and SHA-256. @throws Failure
    void EnterFile(std::string_view action, const std::string& name);

    qel::Trail& Trail() { return m_trail; }

private:
    void KeepSigners() const;

    const MadeFiles& m_made;
    qel::Trail m_trail;
    std::string m_user;
};

}  // namespace titration
