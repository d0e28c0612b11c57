#include "qellib10/record/trail_writer.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_keys.h"
#include "qellib10/record/trail_tail.h"
#include "qellib10/record/undo.h"

namespace qel {
namespace {

constexpr std::int64_t kLargestDrift = 2000;  // ms between the two clocks

// What the clock should say, where somebody has set it since the entry @p last. Nothing after a restart: only people
// could say so.
std::optional<std::int64_t> JumpFrom(const std::optional<TrailEntry>& last, const TrailMoment& now) {
    if (!last || last->bootId != now.bootId) return std::nullopt;
    const auto passed = static_cast<std::int64_t>(now.bootTime) - static_cast<std::int64_t>(last->bootTime);
    const std::int64_t expected = last->clock.value_or(last->time) + passed;
    return std::abs(now.time - expected) > kLargestDrift ? std::optional(expected) : std::nullopt;
}

}  // namespace

TrailWriter::TrailWriter(TrailSettings settings, std::shared_ptr<Signer> signer, std::function<TrailMoment()> clock)
    : m_settings(std::move(settings)), m_signer(std::move(signer)), m_clock(std::move(clock)) {}

void TrailWriter::RequireOwnKey(const End& end) const {
    if (std::ranges::find(end.head.keys, SshPublicKey::OfText(m_signer->PublicKey())) == end.head.keys.end())
        throw DataError("the signer's key may not sign this trail: no entry has announced it, or it has ended");
}

TrailReceipt TrailWriter::Append(const TrailRecord& record) {
    Written written;
    {
        const std::scoped_lock turn(m_turn);
        RequireUsable();
        const GuardedFile::Lock lock(m_head->File(), m_settings.patience);
        RequireOwnKey(Current());
        RequireNothingLost();
        RequireKeyInOrder(record);
        const TrailMoment now = m_clock();
        if (HasOwn(now)) {
            RequireWritable(EntryOf(record, now), m_end->head.keys);  // or they would be written for nothing
            AppendOwn(now);
        }
        Write(record, now);
        written = {{m_end->head.number, Hex(m_end->head.hash)}, m_end->head.length, m_takenBack};
        if (m_settings.flush == TrailFlush::kEach) Acknowledge();
        if (m_settings.flush == TrailFlush::kCaller) KeepForFlush(written);
    }
    if (m_settings.flush == TrailFlush::kGroup) FlushWritten(written);
    return written.receipt;
}

// What the list of keys that may sign does not show.
void TrailWriter::RequireKeyInOrder(const TrailRecord& record) const {
    const bool adds = record.action == trail_kind::kKeyAdded;
    if (!adds && record.action != trail_kind::kKeyRevoked) return;
    const SshPublicKey key = SshPublicKey::OfText(record.object);
    if (adds) return RequireNotRevoked(*m_trail, m_end->head.length, key);
    RequireOtherSigner(record, SshPublicKey::OfText(m_signer->PublicKey()));
    RequireAnnounced(*m_trail, m_end->head.length, key);
}

void TrailWriter::RequireUsable() const {
    if (!m_trail) throw DataError("the trail is not open");
    if (m_hasLost) throw DataError("entries were not acknowledged and are not in the trail any more: open it again");
}

// With entries that Flush has not acknowledged yet: another program may have taken them back.
void TrailWriter::RequireNothingLost() {
    if (!m_written || m_written->takenBack == m_takenBack) return;
    m_hasLost = !IsAcknowledged(*m_written);
    RequireUsable();
}

// Never so much that an interruption in the middle of it would leave more than a tail.
void TrailWriter::KeepForFlush(const Written& written) {
    m_written = written;
    if (m_end->head.length - m_seen.length <= kLongestTail - kLongestLine) return;
    m_hasLost = true;
    Acknowledge();
    m_hasLost = false;
}

bool TrailWriter::HasOwn(const TrailMoment& now) const {
    return m_end->head.tailsSetAside > 0 || JumpFrom(m_end->last, now);
}

// What the trail itself has to report before the next entry.
void TrailWriter::AppendOwn(const TrailMoment& now) {
    if (m_end->head.tailsSetAside > 0) {
        Write(TailReport(m_settings.path, m_end->head), now);
        m_end->head.tailsSetAside = 0;
    }
    const std::optional<std::int64_t> expected = JumpFrom(m_end->last, now);
    if (!expected) return;
    TrailRecord jump;
    jump.action = trail_kind::kClockJumped;
    jump.before = TrailTimeText(std::clamp<std::int64_t>(*expected, 0, kTrailTimeEnd - 1));
    jump.after = TrailTimeText(now.time);
    jump.reason = "the clock was set by " + std::to_string(now.time - *expected) + " ms while the system ran";
    Write(jump, now);
}

TrailEntry TrailWriter::EntryOf(const TrailRecord& record, const TrailMoment& now) const {
    TrailEntry entry;
    static_cast<TrailRecord&>(entry) = record;
    entry.trailId = m_end->head.trailId;
    entry.number = m_end->head.number + 1;
    entry.time = now.time;
    if (m_end->last && now.time < m_end->last->time) {
        entry.time = m_end->last->time;
        entry.clock = now.time;
    }
    if (m_end->last && now.bootId == m_end->last->bootId && now.bootTime < m_end->last->bootTime)
        throw DataError(
            "the time since the start of the system went back: another system has written the trail, or this virtual "
            "machine was put back to an older state");
    entry.bootId = now.bootId;
    entry.bootTime = now.bootTime;
    entry.host = SystemHost();
    entry.application = m_settings.application;
    entry.version = m_settings.version;
    entry.previous = Hex(m_end->head.hash);
    return entry;
}

// A line that cannot be read back as what it was made of would end the trail for everybody.
std::string TrailWriter::SignedLine(const TrailEntry& entry) const {
    const std::string signedPart = SignedPart(entry);
    SshSignature signature{SshPublicKey::OfText(m_signer->PublicKey()), {}};
    signature.bytes = m_signer->Sign(BytesToSign(kEntryNamespace, signedPart));
    std::string line = LineOf(signedPart, signature);
    const ReadLine read = ReadEntry(line);
    if (read.entry != entry) throw DataError("an entry cannot be read back as what it is");
    const bool maySign = std::ranges::find(m_end->head.keys, read.signature.key) != m_end->head.keys.end();
    if (!maySign || (!m_signer->ChecksSignatures() && !read.IsSigned()))
        throw DataError("the signer's signature is wrong, or that of a key which may not sign this trail");
    return line;
}

void TrailWriter::Write(const TrailRecord& record, const TrailMoment& now) {
    End next = *m_end;
    next.last = EntryOf(record, now);
    ApplyToKeys(*next.last, next.head.keys);
    if (next.head.keys.empty())
        throw DataError("the last key cannot end: nobody could append any more. Add the next one first");
    std::string line = SignedLine(*next.last);
    next.head.number = next.last->number;
    next.head.hash = Sha256(line);
    line += '\n';
    next.head.length += line.size();
    Undo undo([this, length = m_end->head.length] { TakeBack(length); });
    m_trail->WriteAt(std::as_bytes(std::span(line)), m_end->head.length);
    undo.Keep();
    m_end = std::move(next);
}

void TrailWriter::Acknowledge() {
    Undo takeBack([this] { TakeBack(m_seen.length); });
    m_trail->Flush();
    takeBack.Keep();
    // What the head file has now is not known if this fails: the entry stays, and is taken up by the next writer.
    Undo forget([this] {
        m_end.reset();
        m_mayBeLost = true;
    });
    StoreHead(m_end->head);
    forget.Keep();
}

void TrailWriter::TakeBack(std::uint64_t length) noexcept {
    m_end.reset();
    m_mayBeLost = true;
    try {
        m_trail->Truncate(length);
    } catch (const CFileException&) {  // the next turn finds what is after the head's entry, and settles it
    } catch (const std::bad_alloc&) {  // the same
    }
}

void TrailWriter::Flush() {
    std::optional<Written> written;
    {
        const std::scoped_lock turn(m_turn);
        RequireUsable();
        written = m_written;
    }
    if (written) FlushWritten(*written);
}

// Another thread, or another program, may have done it meanwhile, or taken the entry back.
void TrailWriter::FlushWritten(const Written& written) {
    const std::scoped_lock turn(m_turn);
    RequireUsable();  // another thread may have failed to open it again
    if (written.takenBack == m_takenBack && m_end && !m_isForeign && written.length <= m_seen.length) return;
    const GuardedFile::Lock lock(m_head->File(), m_settings.patience);
    m_hasLost = m_settings.flush == TrailFlush::kCaller;  // until it is known better
    Current().head != m_seen ? Acknowledge() : RequireHeadOnDisk();
    if (written.takenBack != m_takenBack && !IsAcknowledged(written))
        throw DataError("entry " + std::to_string(written.receipt.number) +
                        " was not acknowledged and is not in the trail any more");
    m_hasLost = false;
}

// After the end was looked for again.
bool TrailWriter::IsAcknowledged(const Written& written) const {
    if (written.length > m_seen.length) return false;
    try {
        return Hex(Sha256(LineBefore(*m_trail, written.length))) == written.receipt.hash;
    } catch (const DataError&) {  // no line ends there
        return false;
    }
}

void TrailWriter::Refresh() {
    const std::scoped_lock turn(m_turn);
    RequireUsable();
    const GuardedFile::Lock lock(m_head->File(), m_settings.patience);
    Current();
    RequireHeadOnDisk();
}

TrailReceipt TrailWriter::Last() const {
    const std::scoped_lock turn(m_turn);
    return {m_seen.number, m_seen.number > 0 ? Hex(m_seen.hash) : ""};
}

}  // namespace qel
