#include "qellib10/record/next_person_key.h"

#include <algorithm>

#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/private_file.h"

namespace qel {
namespace {

constexpr std::chrono::seconds kPatience(30);

}  // namespace

NextPersonKey::NextPersonKey(const std::string& keyPath) : m_path(keyPath + ".next") {
    const Time end = std::chrono::steady_clock::now() + kPatience;
    while (!Take(end)) {
    }
    if (!m_file->IsPrivate()) throw DataError("the file of the next key is not this user's alone");
}

// False where the file that was waited for is gone: whoever had it has removed it.
bool NextPersonKey::Take(Time end) {
    m_lock.reset();
    m_file.emplace(m_path, GuardedFile::Use::kMakePrivate);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    m_lock.emplace(*m_file, std::max(left, std::chrono::milliseconds(0)));
    return m_file->IsInPlace();
}

NextPersonKey::~NextPersonKey() {
    try {
        if (m_file->Size() == 0) RemovePrivateFile(ToPosixPath(m_path));
    } catch (const CFileException&) {  // an empty file that stays does no harm
    }
}

std::optional<PersonKeyFile> NextPersonKey::Left() const {
    if (m_file->Size() == 0 || m_file->Size() > PersonKeyFile::kLongestFile) return std::nullopt;
    std::string text(static_cast<std::size_t>(m_file->Size()), '\0');
    text.resize(m_file->ReadAt(std::as_writable_bytes(std::span(text)), 0));
    try {
        return PersonKeyFile::OfText(text);
    } catch (const DataError&) {
        return std::nullopt;
    }
}

void NextPersonKey::Keep(const PersonKeyFile& key) {
    const std::string text = key.Text();
    m_file->Truncate(0);
    m_file->WriteAt(std::as_bytes(std::span(text)), 0);
    m_file->Flush();
    m_file->FlushFolder();
}

void NextPersonKey::Forget() {
    m_file->Truncate(0);
    m_file->Flush();
}

}  // namespace qel
