#include "qellib10/secure/salvage_search.h"

#include <algorithm>
#include <array>

#include "qellib10/platform/error.h"

#include "qellib10/file/find_bytes.h"
#include "qellib10/secure/history_cabinet_format.h"

namespace qel {
namespace {

ULONGLONG EndOf(ULONGLONG at, const _CAB_VERSIONHEADER& header) { return at + kVersionHeaderSize + header.dataSize; }

}  // namespace

// The sums of data whose end is searched for, as far as they were read.
class SalvageSearch::OpenData {
public:
    explicit OpenData(const Start& start) : m_header(start.open), m_to(start.dataAt) {}

    // @param block what the file has from `at` on, which is not after what was added
    void AddTo(ULONGLONG end, std::span<const std::byte> block, ULONGLONG at) {
        if (m_header == nullptr || end <= m_to) return;
        qel::AddTo(m_sums, block.subspan(static_cast<std::size_t>(m_to - at), static_cast<std::size_t>(end - m_to)));
        m_to = end;
    }
    bool EndAt(ULONGLONG end) const { return m_header != nullptr && m_to == end && Match(m_sums, *m_header); }

private:
    const _CAB_VERSIONHEADER* m_header;
    ULONGLONG m_to;
    CheckSums m_sums;
};

SalvageSearch::SalvageSearch(SalvageBytes& bytes)
    : m_bytes(bytes), m_block(MakeIoBlock()), m_effort(8 * bytes.Length() + (64 << 20)) {}

// Blocks overlap, so that each header is whole in one of them.
SalvageSearch::Found SalvageSearch::Next(const Start& start) {
    constexpr std::size_t kOverlap = kVersionHeaderSize - 1;
    const std::span<const std::byte> tag = std::as_bytes(std::span(kVersionMagic));
    OpenData open(start);
    for (ULONGLONG at = start.from;;) {
        const std::size_t got = m_bytes.Read(m_block->bytes, at);
        const std::span<const std::byte> block(m_block->bytes, got);
        const bool isLast = at + got >= m_bytes.Length();
        for (std::size_t place = 0; got >= kVersionHeaderSize; ++place) {
            const std::size_t next = FindBytes(block.subspan(place), tag);
            if (next == kNotFound || (place += next) + kVersionHeaderSize > got) break;
            const ULONGLONG found = at + place;
            const auto header = UnpackDamagedVersion(block.subspan(place).first<kVersionHeaderSize>());
            open.AddTo(found, block, at);
            if (header.version == start.number + 1 && open.EndAt(found)) return {Kind::kOwnEnd, found, header};
            if (const std::optional<Found> judged = Judge(start, found, header)) return *judged;
        }
        const ULONGLONG next = at + (isLast ? got : got - kOverlap);
        open.AddTo(next, block, at);
        at = next;
        if (!isLast) continue;
        const bool mayEnd = !start.goal || start.number == start.goal->number;
        return {mayEnd && open.EndAt(at) ? Kind::kOwnEnd : Kind::kNothing, at, {}};
    }
}

std::optional<SalvageSearch::Found> SalvageSearch::Judge(const Start& start, ULONGLONG at,
                                                         const _CAB_VERSIONHEADER& header) {
    if (at == start.except || EndOf(at, header) > m_bytes.Length()) return std::nullopt;
    const Owner owner = OwnerOf(start, at, header);
    const bool isGoal = start.goal && at == start.goal->at && header.version == start.goal->number;
    const bool isNext = at == start.next && header.version == start.number + 1;
    if (isGoal || (isNext && owner != Owner::kDocument)) return Found{Kind::kChain, at, header};
    if (owner == Owner::kUnknown && start.goal && IsChain(*start.goal, at, header))
        return Found{Kind::kChain, at, header};
    if (at < m_passedTo || at < start.next || owner == Owner::kDocument || !IsWhole(at, header)) return std::nullopt;
    return Found{Kind::kLoose, at, header};
}

// A document that is a cabinet has versions, too. They start again with 1, and one follows the other, perhaps up to a
// version of this cabinet that happens to have the next number.
SalvageSearch::Owner SalvageSearch::OwnerOf(const Start& start, ULONGLONG at, const _CAB_VERSIONHEADER& header) {
    const bool isNext = at == m_documentAt && header.version == m_documentNumber;
    const bool isOutside = header.version < start.least || (start.goal && header.version > start.goal->number);
    if (!isNext) m_documentCount = isOutside ? CountOfDocument(at, header) : 0;
    const bool isCounted = isNext && header.version <= m_documentCount;
    if (!isOutside && !(isNext && (isCounted || m_documentCount == 0))) return Owner::kUnknown;
    m_documentAt = EndOf(at, header);
    m_documentNumber = header.version + 1;
    if (!isOutside && !isCounted) return Owner::kPerhapsDocument;
    if (at >= m_passedTo && IsWhole(at, header)) m_passedTo = m_documentAt;
    return Owner::kDocument;
}

DWORD SalvageSearch::CountOfDocument(ULONGLONG at, const _CAB_VERSIONHEADER& first) {
    std::array<std::byte, kCabinetHeaderSize> bytes = {};
    if (first.version != 1 || at <= kCabinetHeaderSize) return 0;
    m_bytes.Read(bytes, at - kCabinetHeaderSize);
    try {
        return UnpackCabinetHeader(bytes).versionCount;
    } catch (const DataError&) {
        return 0;
    }
}

bool SalvageSearch::IsChain(const Goal& goal, ULONGLONG at, _CAB_VERSIONHEADER header) {
    constexpr ULONGLONG kStep = 4096;
    if (HasGivenUp()) return false;
    ULONGLONG effort = 0;
    bool isNext = true;
    while (isNext && at < goal.at) {
        const DWORD number = header.version + 1;
        at = EndOf(at, header);
        header = m_bytes.HeaderAt(at);
        effort += kStep;
        isNext = HasTag(header) && header.version == number;
    }
    const bool isReached = isNext && at == goal.at && header.version == goal.number;
    if (!isReached) Spend(effort);
    return isReached;
}

bool SalvageSearch::IsWhole(ULONGLONG at, const _CAB_VERSIONHEADER& header) {
    if (HasGivenUp()) return false;
    const bool isWhole = m_bytes.Match(header, at + kVersionHeaderSize, header.dataSize);
    if (!isWhole) Spend(header.dataSize + 1);
    return isWhole;
}

}  // namespace qel
