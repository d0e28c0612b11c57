#include "qellib10/file/file_check_sums.h"

#include <algorithm>
#include <span>

#include "qellib10/platform/storage/block_io.h"

namespace qel {
namespace {

template <class Take>
void AddSumsOver(CheckSums& sums, const CFile& from, ULONGLONG offset, ULONGLONG count, Take&& take) {
    const auto block = MakeIoBlock();
    const CString name = from.GetFilePath();
    for (ULONGLONG done = 0; done < count;) {
        const std::span wanted(block->bytes, std::min<ULONGLONG>(count - done, IoBlock::kSize));
        const std::size_t got = ReadFullyAt(from.ReadableDescriptor(), wanted, offset + done, name.View());
        sums.Add({reinterpret_cast<const unsigned char*>(block->bytes), got});
        take(wanted.first(got));
        if (got < wanted.size()) throw CFileException(CFileException::genericException, -1, name);
        done += got;
    }
}

}  // namespace

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

void AddCheckSumsAt(CheckSums& sums, const CFile& file, ULONGLONG offset, ULONGLONG count) {
    AddSumsOver(sums, file, offset, count, [](std::span<const std::byte>) {});
}

CheckSums CheckSumsAt(const CFile& file, ULONGLONG offset, ULONGLONG count) {
    CheckSums sums;
    AddCheckSumsAt(sums, file, offset, count);
    return sums;
}

CheckSums CopyWithCheckSums(const CFile& from, ULONGLONG offset, CFile& to, ULONGLONG count) {
    CheckSums sums;
    AddSumsOver(sums, from, offset, count,
                [&](std::span<const std::byte> bytes) { to.Write(bytes.data(), static_cast<UINT>(bytes.size())); });
    return sums;
}

}  // namespace qel
