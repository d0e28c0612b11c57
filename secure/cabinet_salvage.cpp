#include "qellib10/secure/cabinet_salvage.h"

#include <array>
#include <deque>

#include "qellib10/platform/error.h"

#include "qellib10/secure/history_cabinet_format.h"
#include "qellib10/secure/salvage_search.h"

namespace qel {
namespace {

using Piece = CabinetPiece;
using Kind = SalvageSearch::Kind;

}  // namespace

// Goes from version to version. While `isPlaced`, a version starts at `at` for sure, and it is `next`.
struct CabinetSalvage::State {
    explicit State(const CFile& file) : bytes(file), search(bytes) {
        bytes.Read(headerBytes, 0);
        try {
            header = UnpackCabinetHeader(headerBytes);
            goal = {header->versionCount, header->latestOffset};
        } catch (const DataError&) {  // then the versions themselves have to say where they are
        }
    }

    SalvageBytes bytes;
    std::array<std::byte, kCabinetHeaderSize> headerBytes = {};
    std::optional<CabinetHeader> header;
    std::optional<SalvageSearch::Goal> goal;
    SalvageSearch search;
    std::deque<Piece> pieces;  // found and not yet given
    ULONGLONG at = kCabinetHeaderSize;
    ULONGLONG latestAt = 0;  // of the last version in its place
    DWORD next = 1;
    bool isPlaced = true, isDone = false;
    bool isLossKnown = false;  // not how many

    void Step() {
        if (isPlaced && IsAtEnd()) return Finish();
        if (!isPlaced) {
            return GoOn(
                search.Next({.from = at, .except = bytes.Length(), .least = next == 1 ? 1 : next + 1, .goal = goal}),
                {});
        }
        RequireAgreement();
        const _CAB_VERSIONHEADER found = bytes.HeaderAt(at);
        const ULONGLONG dataAt = at + kVersionHeaderSize, end = dataAt + found.dataSize;
        const bool fits = end <= bytes.Length();
        const _CAB_VERSIONHEADER after = bytes.HeaderAt(end);
        const bool isFollowed = fits && HasTag(after) && after.version == next + 1;
        if (fits && bytes.Match(found, dataAt, found.dataSize)) {
            const bool isLatest = goal && next == goal->number;
            if (found.version == next || isFollowed || isLatest) return Place(Piece::State::kWhole, found, end);
            return Loosen(found, at);
        }
        const bool isThere = HasTag(found) && found.version == next;
        const bool isMoved = next == 1 && !isThere;  // bytes before the cabinet may be lost, or new
        GoOn(search.Next({.from = isMoved ? 0 : at + 1,
                          .except = at,
                          .least = isMoved ? 1 : next + 1,
                          .open = &found,
                          .dataAt = dataAt,
                          .number = next,
                          .next = isFollowed ? end : 0,
                          .goal = goal}),
             found);
    }

    bool IsAtEnd() const { return (goal && next > goal->number) || at + kVersionHeaderSize > bytes.Length(); }

    // A header that is right and of another state of the file counts as damaged.
    void RequireAgreement() {
        if (goal && (next == goal->number) != (at == goal->at)) goal.reset();
    }

    void Give(Piece::State state, DWORD number, DWORD last, ULONGLONG from, ULONGLONG size) {
        pieces.push_back({.state = state, .number = number, .lastNumber = last, .at = from, .size = size});
    }
    void GiveVersion(Piece::State state, DWORD number, ULONGLONG from, ULONGLONG size, const _CAB_VERSIONHEADER& read) {
        pieces.push_back({state, number, number, from, from + kVersionHeaderSize, size, read.dataSum, read.dataCRC});
    }
    void Place(Piece::State state, const _CAB_VERSIONHEADER& found, ULONGLONG end) {
        GiveVersion(state, next, at, end - at - kVersionHeaderSize, found);
        latestAt = at;
        at = end;
        ++next;
    }
    void Loosen(const _CAB_VERSIONHEADER& found, ULONGLONG from) {
        GiveVersion(Piece::State::kUnplaced, found.version, from, found.dataSize, found);
        at = from + kVersionHeaderSize + found.dataSize;
        isPlaced = false;
    }

    // @param open the header at `at`, without its end, if a version is there
    void GoOn(const SalvageSearch::Found& found, const _CAB_VERSIONHEADER& open) {
        const bool isNext = isPlaced && HasTag(open) && open.version == next;
        if (found.kind == Kind::kNothing) return End(isNext, open);
        if (found.kind == Kind::kOwnEnd) return Place(Piece::State::kWhole, open, found.at);
        if (found.kind == Kind::kChain && isNext && found.header.version == next + 1)
            return Place(Piece::State::kChanged, open, found.at);
        if (found.at > at) Give(Piece::State::kLost, next, LastLost(found), at, found.at - at);
        isLossKnown = isLossKnown || found.at > at;
        if (found.kind == Kind::kLoose) return Loosen(found.header, found.at);
        at = found.at;
        next = found.header.version;
        isPlaced = true;
    }
    DWORD LastLost(const SalvageSearch::Found& found) const {
        return found.kind == Kind::kChain && isPlaced ? found.header.version - 1 : 0;
    }

    // Nothing more is found.
    void End(bool isNext, const _CAB_VERSIONHEADER& open) {
        const ULONGLONG dataAt = at + kVersionHeaderSize;
        if (isNext && dataAt + open.dataSize <= bytes.Length()) {
            Place(Piece::State::kChanged, open, dataAt + open.dataSize);
        } else if (isNext) {
            Place(Piece::State::kCut, open, bytes.Length());
        }
        Finish();
    }

    void Finish() {
        isDone = true;
        ULONGLONG left = bytes.Length() - std::min(at, bytes.Length());
        if (goal && next > goal->number) {
            if (left > 0) Give(Piece::State::kRest, 0, 0, at, left);
            return;
        }
        if (isPlaced && left > 0 && left < kVersionHeaderSize) {
            Give(Piece::State::kCut, next, next, at, left);
            ++next;
            at += left;
            left = 0;
        }
        const bool isMissing = goal && (isPlaced || !isLossKnown);
        if (left > 0 || isMissing) Give(Piece::State::kLost, next, goal ? goal->number : 0, at, left);
    }

    // A damaged header whose checksums are right with the place and the number that were found, or that is right but
    // for one of them, has the GUID that it had.
    std::optional<CGuid> FoundGuid() const {
        const CabinetHeader stored = UnpackDamagedHeader(headerBytes);
        const CabinetHeader found{kCabinetMagic, static_cast<DWORD>(latestAt), next - 1, stored.guid};
        const CheckSums sums = CheckSumsOf(found);
        const bool isAsStored = stored.magic == found.magic && stored.latestOffset == found.latestOffset &&
                                stored.versionCount == found.versionCount;
        const bool isRight = sums.Crc() == stored.crc || (isAsStored && sums.Sum() == stored.sum);
        return isRight ? std::optional<CGuid>(stored.guid) : std::nullopt;
    }
};

CabinetSalvage::CabinetSalvage(const CFile& cabinet) : m_state(std::make_unique<State>(cabinet)) {}
CabinetSalvage::~CabinetSalvage() = default;

bool CabinetSalvage::HasHeader() const noexcept { return m_state->header.has_value(); }

std::optional<CabinetPiece> CabinetSalvage::Next() {
    while (m_state->pieces.empty() && !m_state->isDone) m_state->Step();
    if (m_state->pieces.empty()) return std::nullopt;
    const CabinetPiece piece = m_state->pieces.front();
    m_state->pieces.pop_front();
    return piece;
}

bool CabinetSalvage::CopyData(const CabinetPiece& piece, const Descriptor& target, std::string_view name) const {
    if (!piece.HasData()) return false;
    CheckSums sums;
    m_state->bytes.ForEachBlock(piece.dataAt, piece.size, [&](std::span<const std::byte> bytes) {
        AddTo(sums, bytes);
        WriteFully(target, bytes, name);
    });
    return sums.Sum() == piece.sum && sums.Crc() == piece.crc;
}

std::optional<CGuid> CabinetSalvage::Guid() const {
    return m_state->header ? m_state->header->guid : m_state->FoundGuid();
}

ULONGLONG CabinetSalvage::UnreadableBytes() const noexcept { return m_state->bytes.Unreadable(); }
bool CabinetSalvage::HasGivenUp() const noexcept { return m_state->search.HasGivenUp(); }

}  // namespace qel
