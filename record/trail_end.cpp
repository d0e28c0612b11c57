// Where the trail ends, and what is made of bytes after its last acknowledged entry.
#include <algorithm>
#include <array>

#include "qellib10/platform/error.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_keys.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_tail.h"
#include "qellib10/record/trail_writer.h"

namespace qel {

// Under the lock of the head file.
TrailWriter::End& TrailWriter::Current() {
    m_head->File().RequireInPlace();
    const std::uint64_t size = m_trail->RequireInPlace();
    const TrailHeadState head = m_head->Load();
    if (head.generation < m_seen.generation) throw DataError("the head file of the trail was put back to an older one");
    if (!m_end || head != m_seen || size != m_end->head.length) Settle(head);
    return *m_end;
}

// Finds the end of the trail, and makes sure of everything before it.
void TrailWriter::Settle(const TrailHeadState& head) {
    m_end.reset();
    ++m_takenBack;
    const std::uint64_t size = m_trail->Size();
    if (size < head.length)
        throw DataError("entries are missing: the trail ends before entry " + std::to_string(head.number) +
                        ", which was acknowledged");
    End end = EndOf(head);
    TakeUp(end, size);
    m_isForeign = m_isForeign || head != m_seen;
    m_seen = head;
    if (std::exchange(m_mayBeLost, true)) StoreHeadAgain();
    if (end.head.number > head.number) {
        WriteAgain(head.length, end.head.length);
        StoreHead(end.head);
    }
    if (end.head.length < size) SetAside(end, size);
    m_mayBeLost = false;
    m_end = std::move(end);
}

void TrailWriter::StoreHead(TrailHeadState& head) {
    m_head->Store(head);
    m_seen = head;
    m_isForeign = false;
}

void TrailWriter::StoreHeadAgain() {
    m_head->StoreAgain(m_seen);
    m_isForeign = false;
}

// Another program may have been killed before it could flush the head file, or its flush may have failed.
void TrailWriter::RequireHeadOnDisk() {
    if (m_isForeign) StoreHeadAgain();
}

TrailWriter::End TrailWriter::EndOf(const TrailHeadState& head) const {
    if (head.number == 0) return {head, std::nullopt};
    const std::string line = LineBefore(*m_trail, head.length);
    if (Sha256(line) != head.hash)
        throw DataError("entries are missing: entry " + std::to_string(head.number) +
                        " is not the one that was acknowledged");
    return {head, ReadEntry(line).entry};
}

// Takes whole entries after the head's, which a writer has written and not acknowledged.
void TrailWriter::TakeUp(End& end, std::uint64_t size) const {
    TrailLines lines(*m_trail, end.head.length, size);
    for (TrailLines::Line line = lines.Next(); line.kind == TrailLines::Kind::kWhole; line = lines.Next()) {
        std::optional<ReadLine> read;
        try {
            read = ReadEntry(line.text);
        } catch (const DataError&) {
            return;  // torn
        }
        RequireFollowing(end, *read);
        ApplyToKeys(read->entry, end.head.keys);
        if (read->entry.action == trail_kind::kTailSetAside) end.head.tailsSetAside = 0;
        end.head.number = read->entry.number;
        end.head.length = line.End();
        end.head.hash = Sha256(line.text);
        end.last = std::move(read->entry);
    }
}

// A whole entry that does not follow was not torn by an interrupted writer: others are missing before it, or somebody
// else has written it. That must stay to be seen.
void TrailWriter::RequireFollowing(const End& end, const ReadLine& line) const {
    const bool follows = line.entry.trailId == end.head.trailId && line.entry.number == end.head.number + 1 &&
                         line.entry.previous == Hex(end.head.hash) &&
                         std::ranges::find(end.head.keys, line.signature.key) != end.head.keys.end() && line.IsSigned();
    if (!follows)
        throw DataError("entries are missing or foreign: what comes after entry " + std::to_string(end.head.number) +
                        " does not follow it, or nobody who may has signed it");
    RequireOtherSigner(line.entry, line.signature.key);
}

// Bytes whose flush has failed can be read although they are not on the disk, and a second flush does not write them.
void TrailWriter::WriteAgain(std::uint64_t from, std::uint64_t to) const {
    std::array<std::byte, 4096> block;
    while (from < to) {
        const auto part = std::span(block).first(std::min<std::uint64_t>(block.size(), to - from));
        if (m_trail->ReadAt(part, from) != part.size()) throw DataError("the trail became shorter");
        m_trail->WriteAt(part, from);
        from += part.size();
    }
    m_trail->Flush();
}

// First the copy, then the head, which knows that it has to be reported, then the cut: an interruption anywhere loses
// neither the bytes nor the report.
void TrailWriter::SetAside(End& end, std::uint64_t size) {
    if (KeepTail(m_settings.path, end.head, ReadTail(*m_trail, end.head, size))) {
        StoreHead(end.head);
    } else {
        RequireHeadOnDisk();
    }
    m_trail->Truncate(end.head.length);
    m_trail->Flush();
}

}  // namespace qel
