#include "qellib10/record/person_key_file.h"

#include "qellib10/platform/error.h"
#include "qellib10/platform/random.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/guarded_file.h"
#include "qellib10/record/person_signer.h"

namespace qel {
namespace {

PersonKeyFile Read(const GuardedFile& file) {
    if (file.Size() > PersonKeyFile::kLongestFile) throw DataError("the file is too long for a person's key");
    std::string content(static_cast<std::size_t>(file.Size()), '\0');
    content.resize(file.ReadAt(std::as_writable_bytes(std::span(content)), 0));
    return PersonKeyFile::OfText(content);
}

}  // namespace

PersonKeyFile ReadPersonKeyFile(const std::string& path) {
    const GuardedFile file(path, GuardedFile::Use::kRead);
    if (!file.IsPrivate()) throw DataError("the person's key is not this user's alone: its mode has to be 0600");
    return Read(file);
}

std::optional<PersonKeyFile> ReadPersonKeyFileIfWhole(const std::string& path) {
    const std::optional<GuardedFile> file = GuardedFile::OpenIfThere(path, GuardedFile::Use::kRead);
    try {
        return file ? std::optional(Read(*file)) : std::nullopt;
    } catch (const DataError&) {
        return std::nullopt;
    }
}

bool IsPersonKeyFileThere(const std::string& path) {
    return GuardedFile::OpenIfThere(path, GuardedFile::Use::kRead).has_value();
}

PersonKeyFile NewPersonKeyFile(std::string_view user, std::string_view name, std::string_view password) {
    PersonKeyFile file;
    file.user = user;
    file.name = name;
    file.Text();
    SecretBytes seed(PersonKeyFile::kSeedSize);
    if (!FillRandom(seed.Bytes())) throw DataError("no source of random numbers");
    file.key.bytes = PublicKeyOf(seed.Bytes());
    file.Close(seed, password);
    return file;
}

SecretBytes OpenedSeed(const PersonKeyFile& file, std::string_view password) {
    std::optional<SecretBytes> seed = file.Open(password);
    if (!seed) throw WrongPassword();
    return std::move(*seed);
}

void WriteTo(Replacement& file, const PersonKeyFile& key, const std::string& path) {
    const std::string text = key.Text();
    WriteFully(file.File(), std::as_bytes(std::span(text)), path);
}

}  // namespace qel
