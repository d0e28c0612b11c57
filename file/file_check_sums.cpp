#include "qellib10/file/file_check_sums.h"

#include <algorithm>

#include "qellib10/platform/storage/block_io.h"

namespace qel {

CheckSums CheckSumsOf(CFile& file, ULONGLONG size, CheckSums::Wanted wanted) {
    CheckSums sums(wanted);
    const ULONGLONG position = file.GetPosition();
    file.SeekToBegin();
    const auto block = MakeIoBlock();
    auto* const bytes = reinterpret_cast<unsigned char*>(block->bytes);
    for (ULONGLONG left = size != 0 ? size : file.GetLength(); left > 0;) {
        const UINT got = file.Read(bytes, static_cast<UINT>(std::min<ULONGLONG>(left, IoBlock::kSize)));
        if (got == 0) break;
        sums.Add({bytes, got});
        left -= got;
    }
    file.Seek(static_cast<LONGLONG>(position), CFile::begin);
    return sums;
}

}  // namespace qel
