#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/record/file_hash.h"
#include "qellib10/secure/cabinet_reader.h"

// Size and hash of a version, as entries of a trail have them. Everything throws CFileException.
namespace qel {

// The hash is empty for a version that is damaged.
using FileDigest = FileHash;

/// Whether a version with other checksums than its bytes have is hashed as it is. Nobody can read it by the cabinet's
/// own classes, so it is not what was registered, even if its bytes are.
enum class OfDamaged { kNoHash, kHash };

FileDigest DigestOf(const CFile& cabinet, const CabinetVersion& version, OfDamaged ofDamaged = OfDamaged::kNoHash);
/// The same, found by its number. Nothing when there is no such version; no hash when it cannot be found.
std::optional<FileDigest> DigestOf(const CFile& cabinet, std::uint64_t version,
                                   OfDamaged ofDamaged = OfDamaged::kNoHash);
/// Of a whole file.
FileDigest DigestOfFile(std::string_view path);

/// A file as it was at one moment, next to the cabinet that it is for. What is hashed is what is registered then,
/// whoever writes to the file meanwhile. It is removed with the object; what a killed program has left goes with the
/// next copy for the same cabinet.
class PrivateCopy {
public:
    PrivateCopy(const std::string& cabinet, std::string_view source);

    CString Path() const { return m_file.Path(); }
    const FileDigest& Digest() const noexcept { return m_digest; }

private:
    Replacement m_file;
    FileDigest m_digest;
};

}  // namespace qel
