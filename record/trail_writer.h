#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "qellib10/record/signer.h"
#include "qellib10/record/trail.h"
#include "qellib10/record/trail_clock.h"
#include "qellib10/record/trail_head.h"
#include "qellib10/record/trail_line.h"
#include "qellib10/record/trail_settings.h"

namespace qel {

/// Appends to a trail. Any threads of this process, and any processes that have an object of their own, may do so at
/// once. Everything throws DataError and CFileException.
///
/// An entry is written after the last one and flushed; then the head file gets it, and only then it is acknowledged.
/// What is after the head's entry belongs to a writer that was interrupted, or to one that has not flushed yet: whole
/// entries that follow are taken up, a torn one is set aside.
///
/// Open and what only it calls are in trail_start.cpp; Current and what it calls, up to SetAside, in trail_end.cpp.
class TrailWriter {
public:
    TrailWriter(TrailSettings settings, std::shared_ptr<Signer> signer,
                std::function<TrailMoment()> clock = SystemMoment);

    void Open();
    TrailReceipt Append(const TrailRecord& record);
    void Flush();
    /// The last acknowledged entry that this object knows of.
    TrailReceipt Last() const;
    /// Settles what other programs have left, as Open does, so that Last is the last entry that there is now.
    void Refresh();
    const std::string& Path() const noexcept { return m_settings.path; }

private:
    // The end of the trail, as this object knows it.
    struct End {
        TrailHeadState head;  // as it is to be once what is before the end is flushed
        std::optional<TrailEntry> last;
    };

    // The last entry of this object, which may not be acknowledged yet.
    struct Written {
        TrailReceipt receipt;
        std::uint64_t length = 0;  // of the trail with it
        unsigned takenBack = 0;
    };

    void OpenHead();
    void OpenTrail(const TrailHeadState& head);
    void TakeOverStart() const;
    End& Current();
    void Settle(const TrailHeadState& head);
    void StoreHead(TrailHeadState& head);
    void StoreHeadAgain();
    void RequireHeadOnDisk();
    End EndOf(const TrailHeadState& head) const;
    void TakeUp(End& end, std::uint64_t size) const;
    void RequireFollowing(const End& end, const ReadLine& line) const;
    void WriteAgain(std::uint64_t from, std::uint64_t to) const;
    void SetAside(End& end, std::uint64_t size);
    void RequireOwnKey(const End& end) const;
    void AppendStart();
    TrailRecord OfPredecessor() const;
    bool HasOwn(const TrailMoment& now) const;
    void AppendOwn(const TrailMoment& now);
    void Write(const TrailRecord& record, const TrailMoment& now);
    TrailEntry EntryOf(const TrailRecord& record, const TrailMoment& now) const;
    std::string SignedLine(const TrailEntry& entry) const;
    void Acknowledge();
    void TakeBack(std::uint64_t length) noexcept;
    void RequireKeyInOrder(const TrailRecord& record) const;
    void RequireUsable() const;
    void RequireNothingLost();
    void KeepForFlush(const Written& written);
    void FlushWritten(const Written& written);
    bool IsAcknowledged(const Written& written) const;

    const TrailSettings m_settings;
    const std::shared_ptr<Signer> m_signer;
    const std::function<TrailMoment()> m_clock;
    mutable std::mutex m_turn;  // the file lock is the object's, not the thread's
    std::optional<TrailHead> m_head;
    std::optional<GuardedFile> m_trail;
    TrailHeadState m_seen;             // what the head file had last
    bool m_isForeign = false;          // another program has written that, and may have ended before it was flushed
    std::optional<End> m_end;          // none after a failure: then the files say it
    bool m_mayBeLost = true;           // what the head file has may not be on the disk
    unsigned m_takenBack = 0;          // counts how often the end was looked for again: entries may have gone then
    std::optional<Written> m_written;  // with TrailFlush::kCaller alone
    bool m_hasLost = false;            // entries that were not acknowledged may have been taken back
};

/// For classes of this room that append to an application's trail: they have exceptions instead of results.
TrailWriter& WriterOf(Trail& trail);

}  // namespace qel
