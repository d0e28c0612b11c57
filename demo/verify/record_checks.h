#pragma once

#include <string>
#include <vector>

#include <qellib10/qellib10.h>
#include <qellib10/record.h>

namespace titration {

/// What does not fit together in an output folder with a trail: each is a sentence. Nothing is written.
class RecordChecks {
public:
    /// @param archive the folder
    /// @param anchors what is known from outside the folder
    RecordChecks(const CString& archive, qel::TrailAnchors anchors);

    /// The entries: form, signatures, order, that none is missing, and that nobody has set the clock back.
    std::vector<std::string> OfTrail();
    /// After OfTrail: "12 entries, consistent", or why nobody can be sure.
    std::string Summary() const;
    /// The versions in the cabinet.
    std::vector<std::string> OfVersions() const;
    /// What people have signed, by the rights in the archive's user store, and the reports that they have signed.
    std::vector<std::string> OfSignatures() const;
    /// Files that entries name: sealed, printed, exported. The last entry about a file counts.
    std::vector<std::string> OfFiles() const;
    /// The archive's own file of allowed signers, if there is one: whether it says the same as the entries about keys.
    std::vector<std::string> OfSigners() const;
    /// All of these.
    std::vector<std::string> All();

private:
    // Somebody might exchange the trail between two steps. One that is wrong already is taken as it is.
    qel::TrailReceipt Checked() const {
        return m_report.findingCount == 0 ? qel::TrailReceipt{m_report.entries, m_report.head} : qel::TrailReceipt();
    }
    std::string Path(const std::string& name) const;

    const CString m_archive;
    const qel::TrailAnchors m_anchors;
    qel::TrailReport m_report;
};

}  // namespace titration
