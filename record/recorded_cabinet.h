#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/record/recorded_version.h"
#include "qellib10/record/trail.h"

namespace qel {

/// Where a cabinet and its renewal records are, in the library's form of paths.
struct QELLIB10_API RecordedCabinetSettings {
    std::string cabinetPath = {};
    std::string recordPath = {};
    std::string guid = {};  ///< as on reports, if known: another cabinet in its place is not opened
};

/// Joins a cabinet with the archive's trail, so that the versions prove themselves as the entries do. A cabinet alone
/// has checksums that anybody can compute again: who can write to its file can change, remove or add versions, and
/// their renewal records. Here an entry has the SHA-256 of each version, and who registered it, when and why.
///
/// @code
/// auto signer = std::make_shared<qel::SshAgentSigner>();
/// if (signer->Connect(R"(\run\titrator\agent)") == 0) return;
/// qel::Trail trail({.path = R"(\srv\archive\trail.jsonl)", .headPath = R"(\var\lib\titrator\trail.head)"}, signer);
/// qel::RecordedCabinet results(
///     trail, {.cabinetPath = R"(\srv\archive\results.hcf)", .recordPath = R"(\srv\archive\renewals.qel)"});
/// if (trail.Open() == 0 || results.Open() == 0) return;
/// if (!results.Register("result.xml", "mori", "blank raised")) return;  // qel::LastFailure() says why
/// const auto versions = results.List();
/// if (!versions) return;
/// for (const qel::RecordedVersion& version : *versions)
///     if (version.IsFinding()) std::printf("version %d is not what was recorded\n", static_cast<int>(version.version));
/// @endcode
///
/// The order of a registration: an entry "result registering", flushed; the version and its renewal record
/// (RenewalHistory); an entry "result registered", flushed. So no version comes in without an entry, and no entry
/// claims a version that is not there, whenever the program is killed or the power fails.
///
/// A registering without an end was interrupted: as long as an object has the two files open, no other one has. The
/// next opening, or the next operation of this object after a failure, settles it by what the cabinet has. The version
/// is there as it was to be: an entry "recovered". It is not there: "result abandoned". It is there with other content:
/// no entry; List reports it for good. Registering goes on then, since stopping the work would add nothing to what
/// everybody can see.
///
/// Only versions that the trail's file has entries for are recorded. Where a trail goes on in a new file, begin new
/// cabinets with it. A copy of a cabinet has the same GUID: never open it along with the same trail.
///
/// Operations return 1 or a value, or 0 or nothing; qel::LastFailure has the reason. Paths are in the library's form,
/// other texts UTF-8. One thread at a time; other threads may use the trail meanwhile.
class QELLIB10_API RecordedCabinet {
public:
    /// @param trail must outlive this object, and be open whenever this is used
    RecordedCabinet(Trail& trail, RecordedCabinetSettings settings);
    ~RecordedCabinet();
    RecordedCabinet(const RecordedCabinet&) = delete;
    RecordedCabinet& operator=(const RecordedCabinet&) = delete;

    /// Opens the two files as RenewalHistory does, and settles an interrupted registering. A missing cabinet is made,
    /// without versions, so that its GUID is known before the first one. The trail is read backwards from its last
    /// acknowledged entry to the last one about a version of this cabinet.
    /// @return 0 also for another cabinet than RecordedCabinetSettings::guid, while another object has it open, and if
    /// the trail refuses the entry that settles; nothing is open then, and the next opening tries again
    int Open();
    /// Number of versions, and of the latest one; 0 while nothing is open.
    std::uint64_t Latest() const;
    /// The cabinet's, as CGuid::GetString writes it; empty while nothing is open. Print it on reports.
    std::string Guid() const;

    /// Registers the file at @p source as the next version. A copy of it, next to the cabinet, is what is hashed and
    /// registered, so it does not matter whether others write to it meanwhile. The renewal record has the texts in the
    /// code page of the process, as far as that has their characters.
    /// @param reason must be there from version 2 on, which changes what exists
    /// @return the entry "result registered". Nothing, if the source cannot be copied, @p user is blank, the reason is
    /// missing, a text is not UTF-8, or the trail has recorded later versions than the cabinet has: nothing has
    /// happened then. Nothing, if the trail or the cabinet cannot be written, as on a full disk: then the trail may
    /// have the start of it, and the cabinet the version. The next operation finds this out, and adds the entry that is
    /// missing
    std::optional<TrailReceipt> Register(std::string_view source, std::string_view user, std::string_view reason);

    /// Writes a version, 1 to Latest(), to @p target, replacing what it held. First an entry "version taken out" is
    /// flushed: with the hash of what is in the cabinet, and the target's name. Whether that is what was recorded is
    /// for List to say.
    /// @param reason must be there
    /// @return the entry. Nothing for a version that does not exist or a blank user or reason, without an entry.
    /// Nothing, if the target cannot be written or the version is damaged or there twice; the entry is there then, and
    /// @p target has what was found: the trail may say that more was taken out than was, never less
    std::optional<TrailReceipt> TakeOut(std::uint64_t version, std::string_view target, std::string_view user,
                                        std::string_view reason);

    /// All versions with what the trail says about them, 1 to Latest(), then those that are missing. It reads the trail
    /// once and the cabinet once, and keeps what it returns.
    /// @return nothing if the trail is not the one that was acknowledged, too: then CheckTrail has the findings
    std::optional<std::vector<RecordedVersion>> List();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
