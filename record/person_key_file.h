#pragma once

#include <optional>
#include <string>

#include "qellib10/platform/crypto/secret_bytes.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/record/person_key_format.h"

// The file of a person's key, on the disk. Everything throws DataError and CFileException.
namespace qel {

inline constexpr unsigned kPersonKeyMode = 0600;

/// @throws DataError too for a file that others may read or write
PersonKeyFile ReadPersonKeyFile(const std::string& path);
/// Nothing for a missing or damaged file; of one that is whole also if others may read or write it.
/// @throws CFileException
std::optional<PersonKeyFile> ReadPersonKeyFileIfWhole(const std::string& path);
bool IsPersonKeyFileThere(const std::string& path);

/// A new key, sealed under the password. Names that cannot be are refused before the password costs time.
PersonKeyFile NewPersonKeyFile(std::string_view user, std::string_view name, std::string_view password);

/// @throws WrongPassword
SecretBytes OpenedSeed(const PersonKeyFile& file, std::string_view password);

/// Writes the file; whether it takes the place of another one is for the caller to say, by its Commit or CommitNew.
void WriteTo(Replacement& file, const PersonKeyFile& key, const std::string& path);

}  // namespace qel
