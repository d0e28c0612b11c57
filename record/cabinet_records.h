#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/record/recorded_version.h"
#include "qellib10/record/trail.h"

namespace qel {

/// What a trail says about the versions of all cabinets of an archive, to compare the cabinets with, for a program that
/// only checks: it opens no trail for appending and settles nothing. It reads what is there: run CheckTrail on the same
/// trail, or anybody may have written it. While others register, a version may seem unrecorded.
///
/// @code
/// qel::CabinetRecords records;
/// if (records.Read(R"(\srv\archive\trail.jsonl)") == 0) return;
/// qel::CabinetRecords::Cabinet results;
/// if (records.Compare(R"(\srv\archive\results.hcf)", results) == 0) return;
/// for (const qel::RecordedVersion& version : results.versions)
///     if (version.IsFinding()) std::printf("version %d is not what was recorded\n", static_cast<int>(version.version));
/// for (const qel::CabinetRecords::Cabinet& missing : records.Rest()) std::puts(missing.guid.c_str());
/// @endcode
///
/// The memory is that of the versions, not of the trail. Operations return 1, or 0 and qel::LastFailure has the reason.
/// One thread at a time.
class QELLIB10_API CabinetRecords {
public:
    struct Cabinet {
        std::string guid = {};  ///< as CGuid::GetString writes it
        std::vector<RecordedVersion> versions = {};
    };

    CabinetRecords();
    ~CabinetRecords();
    CabinetRecords(const CabinetRecords&) = delete;
    CabinetRecords& operator=(const CabinetRecords&) = delete;

    /// Goes through a trail once. A line that is not an entry is passed over; CheckTrail reports it.
    int Read(std::string_view trailPath);
    /// The same up to the last entry that counts for CheckTrail, TrailReport::rightUpTo. Where its number is 0, do not
    /// read the trail: all entries would count, and there none does.
    /// @return 0 also when the trail does not have it, since somebody has exchanged the file in between
    int Read(std::string_view trailPath, const TrailReceipt& last);
    /// Reads one more trail, which continues the one that was read last: what both say counts.
    int ReadOn(std::string_view trailPath, const TrailReceipt& last);

    /// Reads every version of a cabinet. Gives them in the order of their numbers, then those that are missing in it. A
    /// copy of a cabinet that was compared already is a finding: nobody knows which of the two is meant.
    /// @return 0 when the file cannot be read, or has no header of a cabinet
    int Compare(std::string_view cabinetPath, Cabinet& cabinet);
    /// The same, one version after the other, in constant memory: whoever forges a cabinet may put millions into it.
    /// @param guid the cabinet's, set before the first version is given
    int Compare(std::string_view cabinetPath, std::string& guid,
                const std::function<void(const RecordedVersion& version)>& take);

    /// Moves what is known about one cabinet into @p one, which then compares it, also in another thread.
    /// @return 0 as Compare
    int TakeOut(std::string_view cabinetPath, CabinetRecords& one);
    /// Whether what a registering has left may be in a cabinet after its latest version: the last entry about one that
    /// was not compared starts a registering, or says that it was abandoned.
    bool IsUnfinished() const;
    /// All that is known about cabinets that were not compared, by GUID: each version is kRecorded, kRecovered, or
    /// kInterrupted where only its start was recorded.
    std::vector<Cabinet> All() const;
    /// SHA-256 over all that is known about cabinets that were not compared: the same only for the same records.
    std::string Sum() const;

    /// The cabinets that were not compared and have recorded versions: all of these are missing.
    std::vector<Cabinet> Rest();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
