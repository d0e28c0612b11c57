// Law: a file of any bytes, with correct checksums, is either refused as sealed, and then a seal on it is read again as
// version 1 with its own data before it; or it is accepted, and then it can be sealed again, with the next version, the
// same GUID and the same data.
#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "qellib10/file/check_datafile.h"
#include "qellib10/file/check_datafile_format.h"
#include "qellib10/file/check_sums.h"

#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;
using Bytes = std::vector<std::byte>;
using qel::CheckBlock;

CheckBlock LastBlock(const Bytes& bytes) { return CheckBlock::Unpack(std::span(bytes).last<CheckBlock::kSize>()); }

// The last four bytes remain the trailer length.
void CorrectChecksums(Bytes& bytes) {
    if (bytes.size() < CheckBlock::kSize) return;
    const std::size_t end = bytes.size() - CheckBlock::kSize;
    qel::CheckSums sums;
    sums.Add({reinterpret_cast<const unsigned char*>(bytes.data()), end});
    CheckBlock check = LastBlock(bytes);
    check.crc = sums.Crc();
    check.sum = sums.Sum();
    std::ranges::copy(check.Pack(), std::span(bytes).subspan(end).begin());
}

struct TemporaryFile : CQFile {
    TemporaryFile() { Require(CreateTempFile("qel", 1) != 0); }
    ~TemporaryFile() override { Close(); }
};

Bytes First(CQFile& file, std::size_t count) {
    Bytes bytes(count);
    file.SeekToBegin();
    Require(file.Read(bytes.data(), static_cast<UINT>(count)) == count);
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    Bytes bytes(size);
    std::ranges::copy(std::as_bytes(std::span(data, size)), bytes.begin());
    CorrectChecksums(bytes);

    static TemporaryFile file;
    file.SetLength(0);
    file.Write(bytes.data(), static_cast<UINT>(size));

    CCheckDatafile seal;
    seal.EnableCheckFilename(0);
    if (!seal.ReadPackData(&file)) {
        const bool wasRight = CCheckDatafile::IsPackData(&file) != 0;
        Require(wasRight ? CCheckDatafile::PackNewData(&file) != 0 : seal.PackUpdateData(&file, 1) != 0);
        Require(seal.ReadPackData(&file) && seal.GetVersion() == 1 && First(file, size) == bytes);
        return 0;
    }
    const CCheckDatafile before = seal;
    bytes.resize(size - LastBlock(bytes).TrailerSize());  // the own data
    Require(seal.PackUpdateData(&file, 1) == 0);
    Require(seal.PackUpdateData(&file, 0) != 0);
    Require(First(file, bytes.size()) == bytes);
    Require(static_cast<DWORD>(seal.GetVersion()) == static_cast<DWORD>(before.GetVersion()) + 1);
    Require(seal.GetGUID() == before.GetGUID());
    return 0;
}
