// Law: the parts that are found in a file of any bytes are in their order, within it and apart; what is called whole or
// unplaced matches its checksums, whole versions count up; and every intact version that a reader of cabinets finds
// before the first damaged one is among the whole ones, at the same place. (After it, a damaged size may lead a reader
// into a document.)
#include <algorithm>
#include <cstddef>
#include <map>
#include <span>

#include "qellib10/platform/endian.h"
#include "qellib10/platform/error.h"
#include "qellib10/secure/cabinet_reader.h"
#include "qellib10/secure/cabinet_salvage.h"
#include "qellib10/secure/history_cabinet_format.h"

#include "../tests/support/temp_folder.h"
#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;

const TempFolder& Files() {
    static const TempFolder folder;
    return folder;
}

// Half of the inputs have right sums in the header.
std::string Prepared(const std::uint8_t* data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    if (size < qel::kCabinetHeaderSize || size % 2 == 1) return bytes;
    qel::CheckSums sums;
    sums.Add({data, qel::kCheckedHeaderSize});
    const auto writable = std::as_writable_bytes(std::span(bytes));
    qel::PutNumber(writable, qel::kCheckedHeaderSize, sums.Sum());
    qel::PutNumber(writable, qel::kCheckedHeaderSize + sizeof(DWORD), sums.Crc());
    return bytes;
}

std::map<DWORD, ULONGLONG> ReadPlaces(const CFile& file) {
    std::map<DWORD, ULONGLONG> places;
    try {
        qel::CabinetReader reader(file);
        for (auto version = reader.Next(); version && reader.IsIntact(*version); version = reader.Next())
            places[version->number] = version->dataAt;
    } catch (const qel::DataError&) {  // it ends there for a reader
    } catch (const CFileException&) {
    }
    return places;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    const std::string bytes = Prepared(data, size);
    Files().Write("cabinet", bytes);
    const CFile file(Files().Path("cabinet"), CFile::modeRead | CFile::shareDenyWrite);
    CFile target(Files().Path("target"), CFile::modeCreate | CFile::modeReadWrite);
    std::map<DWORD, ULONGLONG> places = ReadPlaces(file);
    qel::CabinetSalvage salvage(file);
    ULONGLONG end = 0;
    DWORD latest = 0;
    while (const auto piece = salvage.Next()) {
        Require(piece->at >= end);
        end = (piece->dataAt > 0 ? piece->dataAt : piece->at) + piece->size;
        Require(end <= bytes.size());
        Require(salvage.CopyData(*piece, target.WritableDescriptor(), "target") == piece->HasData());
        if (piece->state != qel::CabinetPiece::State::kWhole) continue;
        Require(piece->number > latest);
        latest = piece->number;
        const auto known = places.find(latest);
        if (known != places.end() && known->second == piece->dataAt) places.erase(known);
    }
    Require(places.empty() && Files().Read("cabinet") == bytes);
    return 0;
}
