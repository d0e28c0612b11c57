#include "qellib10/record/file_digest.h"

#include <algorithm>
#include <limits>
#include <span>

#include "qellib10/file/check_sums.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/crypto/digest.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/record/text_forms.h"

namespace qel {
namespace {

constexpr unsigned kOnlyOwner = 0600;

CabinetVersion Find(CabinetReader& cabinet, std::uint64_t number) {
    if (number == cabinet.Header().versionCount) return cabinet.Latest();
    for (;;) {
        const std::optional<CabinetVersion> version = cabinet.Next();
        if (!version) throw DataError("the cabinet does not have all its versions");
        if (version->number == number) return *version;
    }
}

// Gives each block to @p take, with its place.
template <class Take> FileDigest ReadAll(const CFile& file, std::string_view name, Take take) {
    const auto block = MakeIoBlock();
    Sha256Sum sum;
    FileDigest digest;
    for (;;) {
        const std::size_t size = ReadFullyAt(file.ReadableDescriptor(), block->bytes, digest.size, name);
        if (size == 0) break;
        const auto part = std::span(block->bytes).first(size);
        take(part, digest.size);
        sum.Add(part);
        digest.size += size;
    }
    digest.sha256 = Hex(sum.End());
    return digest;
}

}  // namespace

FileDigest DigestOf(const CFile& cabinet, const CabinetVersion& version, OfDamaged ofDamaged) {
    const auto block = MakeIoBlock();
    const CString name = cabinet.GetFilePath();
    Sha256Sum sum;
    CheckSums checkSums;
    FileDigest digest;
    while (digest.size < version.size) {
        const auto wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(IoBlock::kSize, version.size - digest.size));
        const std::span part(block->bytes, wanted);
        const std::size_t size =
            ReadFullyAt(cabinet.ReadableDescriptor(), part, version.dataAt + digest.size, name.View());
        if (size == 0) throw CFileException(CFileException::endOfFile, -1, name);
        sum.Add(part.first(size));
        checkSums.Add({reinterpret_cast<const unsigned char*>(part.data()), size});
        digest.size += size;
    }
    const bool isIntact = checkSums.Crc() == version.crc && checkSums.Sum() == version.sum;
    if (isIntact || ofDamaged == OfDamaged::kHash) digest.sha256 = Hex(sum.End());
    return digest;
}

std::optional<FileDigest> DigestOf(const CFile& cabinet, std::uint64_t version, OfDamaged ofDamaged) {
    try {
        CabinetReader reader(cabinet);
        if (version == 0 || version > reader.Header().versionCount) return std::nullopt;
        return DigestOf(cabinet, Find(reader, version), ofDamaged);
    } catch (const DataError&) {  // it cannot be found
        return FileDigest();
    } catch (const CFileException& failure) {
        if (failure.m_cause != CFileException::endOfFile) throw;
        return FileDigest();
    }
}

FileDigest DigestOfFile(std::string_view path) {
    const CFile file(CString(path), CFile::modeRead | CFile::shareDenyWrite);
    return ReadAll(file, path, [](std::span<const std::byte>, std::uint64_t) {});
}

PrivateCopy::PrivateCopy(const std::string& cabinet, std::string_view source) : m_file(cabinet + ".next", kOnlyOwner) {
    const CFile from(CString(source), CFile::modeRead | CFile::shareDenyWrite);
    m_digest = ReadAll(from, source, [&](std::span<const std::byte> part, std::uint64_t at) {
        WriteFullyAt(m_file.File(), part, at, cabinet);
        if (at + part.size() > std::numeric_limits<DWORD>::max())
            throw DataError("a file of 4 GiB or more does not fit into a cabinet");
    });
}

std::optional<FileHash> HashFile(std::string_view path) {
    std::optional<FileHash> hash;
    Succeeds("HashFile", [&] {
        const CFile file(CString(path), CFile::modeRead | CFile::shareDenyNone);
        hash = ReadAll(file, path, [](std::span<const std::byte>, std::uint64_t) {});
    });
    return hash;
}

std::string HashText(std::string_view bytes) { return Hex(Sha256(bytes)); }

}  // namespace qel
