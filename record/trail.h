#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "qellib10/record/signer.h"
#include "qellib10/record/trail_entry.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_settings.h"

namespace qel {

class TrailWriter;

/// An entry's place in its trail, as reports print it.
struct QELLIB10_API TrailReceipt {
    std::uint64_t number = 0;
    std::string hash = {};  ///< SHA-256 of its line, 64 hexadecimal digits
};

/// Who did what, when and why: one file per archive to which entries are only appended. Each is signed and has the hash
/// of the one before. If somebody without the key changes, exchanges or removes one later, this is noticed by
/// qel::CheckTrail, by `qel trail verify`, and by the shell script docs/check-trail, which needs nothing of ours. A
/// checksum alone does not do that: anybody can compute it again.
///
/// @code
/// auto signer = std::make_shared<qel::SshAgentSigner>();
/// if (signer->Connect(R"(\run\titrator\agent)") == 0) return;
/// qel::Trail trail({.path = R"(\srv\archive\trail.jsonl)", .headPath = R"(\var\lib\titrator\trail.head)"}, signer);
/// if (trail.Open() == 0) return;
/// qel::TrailRecord record;
/// record.user = "mori";
/// record.action = qel::trail_kind::kMethodChanged;
/// record.object = "Chloride";
/// record.before = "dose 0.05 mL";
/// record.after = "dose 0.02 mL";
/// record.reason = "end points were passed";
/// if (!trail.Append(record)) return;  // the change must not be made
/// @endcode
///
/// Operations return 1 or a value, or 0 or nothing; qel::LastFailure has the reason. What failed is not acknowledged;
/// it may still be found in the trail if a file could not be written, flushed or cut. Any thread may call them; several
/// objects and programs may append to one trail at once. After a fork, the child needs an object of its own, and the
/// parent's lock is free again only when both have closed it.
///
/// Open takes the same time for a trail of any length: it reads from the last acknowledged entry on, which the head
/// file knows. A trail that ends before that entry, or has another one there, is not opened: entries are missing, and
/// appending would hide it. Nor is one whose next entry belongs to another trail, or is signed with a key that
/// may not sign. Bytes after the last entry that are not an entry, such as half a line after a power cut, are moved to
/// a file next to the trail, and the next entry reports this. More than 4 MiB of them, or a hundred times without an
/// entry in between, are no accident: the trail is not opened then.
///
/// The time of an entry is never earlier than that of the entry before. If the clock is, the entry has both times. A
/// clock that was set by more than 2 s since the last entry, without a restart of the system, gets an entry of its own.
class QELLIB10_API Trail {
public:
    Trail(TrailSettings settings, std::shared_ptr<Signer> signer);
    ~Trail();
    Trail(const Trail&) = delete;
    Trail& operator=(const Trail&) = delete;

    /// Opens the trail, or starts a new one if neither it nor its head file exists. The signer's key must be one that
    /// may sign: the one that started the trail, or one that an entry of the kind trail_kind::kKeyAdded has announced.
    int Open();
    /// Appends an entry, also for other programs; how sure it is then is a matter of TrailSettings::flush.
    /// @return nothing when it was refused, also for a text that is not UTF-8, a hash in another form, a missing reason
    /// or one of the trail's own kinds; of the record nothing is written then
    std::optional<TrailReceipt> Append(const TrailRecord& record);
    /// Returns when all entries that this object has appended are on the disk and acknowledged. With
    /// TrailFlush::kCaller a failure may take back those of other threads as well: Append and Flush refuse then until
    /// Open is called again, so each thread learns of it.
    int Flush();
    /// The last acknowledged entry that this object knows of; number 0 before Open.
    TrailReceipt Last() const;

private:
    friend TrailWriter& WriterOf(Trail& trail);

    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
