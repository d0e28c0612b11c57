#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qellib10/record/signature_state.h"
#include "qellib10/record/trail.h"
#include "qellib10/record/trail_line.h"

namespace qel {

/// What a trail says about signatures, read up to an acknowledged entry and then on from there.
///
/// The head file of an open trail knows the hash of its last entry, and each entry has the hash of the one before: so
/// all of them are those that were acknowledged. What comes after does not count yet.
class SignatureLog {
public:
    struct Entry {
        const ReadLine& line;
        const std::string& hash;
        const std::vector<SignatureProblem>& problems;
    };
    using Visit = std::function<void(const Entry& entry)>;

    SignatureLog(std::string path, SigningRules rules);

    /// Reads what was appended. After a failure the next call reads all again.
    /// @param known an acknowledged entry
    /// @param visit is called for each entry
    /// @return what is wrong with that entry, if it was not read before
    /// @throws DataError when the file does not have that entry or is damaged; CFileException
    std::vector<SignatureProblem> CatchUp(const TrailReceipt& known, const Visit& visit = {});

    const SignatureState& State() const { return *m_read->state; }
    /// Empty before the first entry.
    const std::string& TrailId() const { return m_read->trailId; }
    /// Of the last entry; 0 before the first.
    std::int64_t Time() const { return m_read->time; }

private:
    struct Progress {
        std::unique_ptr<SignatureState> state;
        std::string trailId;
        std::int64_t time = 0;
        std::uint64_t at = 0;  // in the file
        TrailReceipt last = {.number = 0, .hash = std::string(64, '0')};
    };

    std::vector<SignatureProblem> Read(Progress& read, const TrailReceipt& known, const Visit& visit) const;
    static void RequireNext(const Progress& read, const ReadLine& line);

    const std::string m_path;
    const SigningRules m_rules;
    std::optional<Progress> m_read;
};

}  // namespace qel
