#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/replacement.h"

#include "qellib10/secure/cabinet_salvage.h"
#include "qellib10/secure/history_cabinet_format.h"

namespace qel {

struct SalvagedCabinet::State {
    explicit State(std::string_view path) : name(path), file(path) {
        WriteFully(file.File(), std::array<std::byte, kCabinetHeaderSize>(), name);
    }

    std::string name;
    Replacement file;
    ULONGLONG end = kCabinetHeaderSize;
    DWORD latestAt = 0, versions = 0;
};

SalvagedCabinet::SalvagedCabinet(std::string_view path) : m_state(std::make_unique<State>(path)) {}
SalvagedCabinet::~SalvagedCabinet() = default;

DWORD SalvagedCabinet::Versions() const noexcept { return m_state->versions; }

bool SalvagedCabinet::Add(const CabinetSalvage& salvage, const CabinetPiece& piece) {
    constexpr ULONGLONG kMost = 0xFFFFFFFF;
    State& made = *m_state;
    if (piece.state != CabinetPiece::State::kWhole || piece.number != made.versions + 1) return false;
    const ULONGLONG end = made.end + kVersionHeaderSize + piece.size;
    if (end > kMost) throw DataError("the cabinet would be larger than 4 GiB");
    const _CAB_VERSIONHEADER header{kVersionMagic, piece.number, static_cast<DWORD>(piece.size), piece.sum, piece.crc};
    WriteFully(made.file.File(), Pack(header), made.name);
    if (!salvage.CopyData(piece, made.file.File(), made.name))
        throw DataError("the disk has given other bytes than before");
    made.latestAt = static_cast<DWORD>(made.end);
    made.end = end;
    ++made.versions;
    return true;
}

void SalvagedCabinet::Commit(const CGuid& guid) {
    State& made = *m_state;
    if (made.versions == 0) return;
    CabinetHeader header{kCabinetMagic, made.latestAt, made.versions, guid};
    const CheckSums sums = CheckSumsOf(header);
    header.sum = sums.Sum();
    header.crc = sums.Crc();
    WriteFullyAt(made.file.File(), Pack(header), 0, made.name);
    made.file.CommitNew();
}

}  // namespace qel
