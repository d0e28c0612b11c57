#include "qellib10/secure/cabinet_content.h"

#include <array>

#include "qellib10/platform/storage/block_io.h"

#include "qellib10/secure/history_cabinet_format.h"

namespace qel {
namespace {

template <std::size_t size> std::array<std::byte, size> BytesAt(const CFile& cabinet, ULONGLONG offset) {
    const CString name = cabinet.GetFilePath();
    std::array<std::byte, size> bytes;
    if (ReadFullyAt(cabinet.ReadableDescriptor(), bytes, offset, name.View()) != size)
        throw CFileException(CFileException::endOfFile, -1, name);
    return bytes;
}

}  // namespace

CabinetHeader ReadCabinetHeader(const CFile& cabinet) {
    return UnpackCabinetHeader(BytesAt<kCabinetHeaderSize>(cabinet, 0));
}

StoredVersion ReadVersionAt(const CFile& cabinet, ULONGLONG offset) {
    const _CAB_VERSIONHEADER header = UnpackVersionHeader(BytesAt<kVersionHeaderSize>(cabinet, offset));
    const ULONGLONG dataAt = offset + kVersionHeaderSize;
    return {header, dataAt, dataAt + header.dataSize};
}

}  // namespace qel
