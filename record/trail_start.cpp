// How a trail is opened, and started where there is none.
#include "qellib10/platform/error.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_tail.h"
#include "qellib10/record/trail_writer.h"
#include "qellib10/record/undo.h"

namespace qel {

void TrailWriter::Open() {
    const std::scoped_lock turn(m_turn);
    m_trail.reset();
    m_end.reset();
    m_seen = {};
    m_mayBeLost = true;
    m_isForeign = false;
    m_hasLost = false;
    m_written.reset();
    if (m_signer == nullptr) throw DataError("a trail needs somebody who signs");
    OpenHead();
    const GuardedFile::Lock lock(m_head->File(), m_settings.patience);
    OpenTrail(m_head->Load());
    TakeOverStart();
    Undo close([this] { m_trail.reset(); });
    RequireOwnKey(Current());
    if (m_end->head.number == 0) AppendStart();
    close.Keep();
}

// A trail has a head before it has a file: a trail without one has lost it.
void TrailWriter::OpenHead() {
    m_head.reset();
    const std::optional<GuardedFile> trail = GuardedFile::OpenIfThere(m_settings.path, GuardedFile::Use::kRead);
    std::optional<TrailHead> head = TrailHead::OpenIfThere(m_settings.headPath, GuardedFile::Use::kWrite);
    if (!head) {
        if (trail && trail->Size() > 0) throw DataError("the head file of the trail is missing");
        RequirePlaceForTails(m_settings.path);
        TrailHeadState first;
        first.trailId = RandomId();
        first.keys = {SshPublicKey::OfText(m_signer->PublicKey())};
        TrailHead::MakeNew(m_settings.headPath, first);
        head = TrailHead::OpenIfThere(m_settings.headPath, GuardedFile::Use::kWrite);
    }
    if (!head) throw DataError("the head file of the trail has gone");
    m_head.emplace(std::move(*head));
}

void TrailWriter::OpenTrail(const TrailHeadState& head) {
    m_trail = GuardedFile::OpenIfThere(m_settings.path, GuardedFile::Use::kWrite);
    if (head.number > 0 && !m_trail)
        throw DataError("entries are missing: the trail has gone, entry " + std::to_string(head.number) +
                        " was acknowledged");
    if (head.number > 0) return;
    // Whoever made the files may have ended before their names were on the disk.
    if (!m_trail) m_trail.emplace(m_settings.path, GuardedFile::Use::kMake);
    m_trail->FlushFolder();
    m_head->File().FlushFolder();
}

// A trail that nobody could start belongs to no key yet: the one in the head file may have been a mistake.
void TrailWriter::TakeOverStart() const {
    TrailHeadState head = m_head->Load();
    const std::vector<SshPublicKey> own = {SshPublicKey::OfText(m_signer->PublicKey())};
    if (head.number > 0 || m_trail->Size() > 0 || head.keys == own) return;
    head.keys = own;
    m_head->Store(head);
}

void TrailWriter::AppendStart() {
    TrailRecord start;
    start.action = trail_kind::kTrailStarted;
    if (!m_settings.continues.empty()) start = OfPredecessor();
    start.object = m_signer->PublicKey();
    Write(start, m_clock());
    Acknowledge();
}

// The one before must end with the entry that its head file has, or its cut end would be sealed here.
TrailRecord TrailWriter::OfPredecessor() const {
    const std::optional<TrailHead> head =
        TrailHead::OpenIfThere(m_settings.continuesHeadPath, GuardedFile::Use::kWrite);
    if (!head) throw DataError("the head file of the trail before is missing");
    const GuardedFile::Lock lock(head->File(), m_settings.patience);
    const TrailHeadState end = head->Load();
    const GuardedFile file(m_settings.continues, GuardedFile::Use::kRead);
    const std::string line = LineBefore(file, file.Size());
    const ReadLine last = ReadEntry(line);
    if (file.Size() != end.length || Sha256(line) != end.hash || last.entry.number != end.number || !last.IsSigned())
        throw DataError("the trail before does not end with its last acknowledged entry");
    TrailRecord record;
    record.action = trail_kind::kTrailContinued;
    record.before = last.entry.trailId + ' ' + std::to_string(last.entry.number) + ' ' + Hex(Sha256(line));
    record.reason = "the trail goes on in a new file";
    return record;
}

}  // namespace qel
