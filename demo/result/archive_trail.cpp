#include "demo/result/archive_trail.h"

#include "demo/support/file_step.h"
#include "demo/support/text_file.h"

namespace titration {

ArchiveTrail::ArchiveTrail(const MadeFiles& made, const Installation& installation)
    : m_made(made),
      m_trail({.path = made.Path(kTrail),
               .headPath = installation.HeadPath(),
               .application = "titration",
               .version = TITRATION_VERSION},
              installation.Key()) {
    if (m_trail.Open() == 0) throw Failure(made.Path(kTrail) + ": " + Why("cannot be opened"));
    KeepSigners();
}

void ArchiveTrail::KeepSigners() const {
    const std::string path = m_made.Path(kAllowedSigners);
    if (CQFile::IsExist(path.c_str()) != 0) return;
    qel::TrailSigners signers;
    if (signers.Read(m_made.Path(kTrail)) == 0) throw Failure(m_made.Path(kTrail) + ": " + Why("cannot be read"));
    WriteTextFile(signers.Text(), path);
}

qel::TrailReceipt ArchiveTrail::Enter(qel::TrailRecord record) {
    record.user = m_user;
    const std::optional<qel::TrailReceipt> receipt = m_trail.Append(record);
    if (!receipt) throw Failure(m_made.Path(kTrail) + ": " + Why("does not take the entry"));
    return *receipt;
}

qel::TrailReceipt ArchiveTrail::Enter(std::string_view action, const std::string& object, const std::string& reason) {
    return Enter({.action = std::string(action), .object = object, .reason = reason});
}

void ArchiveTrail::EnterFile(std::string_view action, const std::string& name) {
    const std::optional<qel::FileHash> hash = qel::HashFile(m_made.Path(name));
    if (!hash) throw Failure(name + ": " + Why("cannot be read"));
    Enter({.action = std::string(action), .object = name, .size = hash->size, .sha256 = hash->sha256});
}

}  // namespace titration
