#include "qellib10/secure/cabinet_content.h"

#include "qellib10/file/bytes_at.h"
#include "qellib10/secure/history_cabinet_format.h"

namespace qel {
CabinetHeader ReadCabinetHeader(const CFile& cabinet) {
    return UnpackCabinetHeader(BytesAt<kCabinetHeaderSize>(cabinet, 0));
}

StoredVersion ReadVersionAt(const CFile& cabinet, ULONGLONG offset) {
    const _CAB_VERSIONHEADER header = UnpackVersionHeader(BytesAt<kVersionHeaderSize>(cabinet, offset));
    const ULONGLONG dataAt = offset + kVersionHeaderSize;
    return {header, dataAt, dataAt + header.dataSize};
}

}  // namespace qel
