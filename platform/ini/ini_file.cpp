#include "qellib10/platform/ini/ini_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <concepts>
#include <optional>
#include <span>

#include "qellib10/platform/error.h"
#include "qellib10/platform/ini/ini_cache.h"
#include "qellib10/platform/ini/ini_edit.h"
#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/file_failure.h"
#include "qellib10/platform/storage/in_place.h"
#include "qellib10/platform/storage/locked_file.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/platform/storage/windows_folder.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr auto kWriteLimit = std::chrono::seconds(5);

std::string FullName(std::string_view file) {
    if (NameStart(file) > 0 || file.empty()) return std::string(file);
    return std::string(WindowsFolder().View()).append("\\").append(file);
}

// @return nothing for an invalid name: no file has it
std::optional<std::string> PosixNameOf(const std::string& name) {
    try {
        return ToPosixPath(name);
    } catch (const CFileException&) {
        return std::nullopt;
    }
}

/// An INI file as it was found.
struct Found {
    std::shared_ptr<const IniIndex> index;  // null if it is missing, or cannot be read
    bool isMissing = false;

    /// Records why a setting has its default, unless Read has done so. @return false
    bool RecordMissing(const char* name) const {
        const std::string_view item = name != nullptr ? name : "";
        if (isMissing) return Refuse(FailureKind::kMissing, item, "file not found", kFileMissing) != 0;
        return index != nullptr && Refuse(FailureKind::kMissing, item, "not in the file") != 0;
    }
};

std::string_view NameOf(std::string_view path) { return path.substr(NameStart(path)); }

// Records why it cannot be read.
Found Read(const char* file) {
    const std::string name = FullName(file != nullptr ? file : "");
    const std::optional<std::string> posixName = PosixNameOf(name);
    if (!posixName) return {nullptr, true};
    try {
        std::shared_ptr<const IniIndex> index = ReadIni(*posixName, name);
        return {index, index == nullptr};
    } catch (const CFileException& failure) {
        RefuseBy(failure);
    } catch (const DataError& failure) {
        Refuse(FailureKind::kData, NameOf(name), failure.what());
    }
    return {nullptr, false};
}

std::string_view WithoutTrailingBlanks(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);  // npos + 1 is 0
}

std::string ContentOf(const Descriptor& file, const std::string& name) {
    struct stat status = {};
    if (::fstat(file.Get(), &status) != 0) ThrowErrno(errno, name);
    if (static_cast<std::size_t>(status.st_size) > IniIndex::kLargestFile) ThrowCode(kAccessDenied, name);
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    bytes.resize(ReadFully(file, std::as_writable_bytes(std::span(bytes)), name));
    if (IsUtf16Ini(bytes)) ThrowCode(kAccessDenied, name);
    return bytes;
}

void SetInPlace(const std::string& name, std::string_view bytes) {
    InPlace file(name);
    WriteFullyAt(file.File(), std::as_bytes(std::span(bytes)), 0, name);
    file.Commit(bytes.size());
}

using Edited = std::optional<std::string>;

// One try. @param edit returns the new bytes for the old ones, or nothing if it refuses
template <class Edit> bool RewriteOnce(const std::string& name, Backoff& wait, Edit&& edit) {
    const Descriptor file = OpenLocked(ToPosixPath(name), 0, name, wait);
    const std::string old = file ? ContentOf(file, name) : std::string();
    const Edited changed = edit(old);
    if (!changed) return Refuse(FailureKind::kArgument, name, "a name or text that the file cannot hold") != 0;
    if (*changed == old) return true;
    try {
        Replacement replacement(name);
        WriteFully(replacement.File(), std::as_bytes(std::span(*changed)), name);
        file ? replacement.Commit() : replacement.CommitNew();
    } catch (const CFileException& failure) {
        if (!file || failure.m_lOsError != kAccessDenied || CanReplace(name)) throw;
        SetInPlace(name, *changed);
    }
    return true;
}

// Another process is looking at the file, or creating it, at this moment.
bool IsPassing(LONG code) { return code == kSharingViolation || code == kFileExists; }

template <class Edit> bool Rewrite(const char* file, Edit&& edit) {
    const std::string name = FullName(file != nullptr ? file : "");
    for (Backoff wait(kWriteLimit);;) {
        try {
            return RewriteOnce(name, wait, edit);
        } catch (const CFileException& failure) {
            if (IsPassing(failure.m_lOsError) && wait.Again()) continue;
            return RefuseBy(failure) != 0;
        }
    }
}

}  // namespace

std::string ReadProfileString(const char* section, const char* key, const char* defaultValue, DWORD size,
                              const char* file) {
    if (size == 0) return {};
    Operation operation("qel::ReadProfileString");
    const Found ini = Read(file);
    std::optional<std::string_view> value;
    std::string names;
    if (section != nullptr && key != nullptr) {
        if (ini.index) value = ini.index->Value(section, key);
    } else if (ini.index) {
        names = section != nullptr ? ini.index->Keys(section) : ini.index->Sections();
        if (!names.empty()) value = names;
    }
    if (!operation.Ended(value.has_value() || ini.RecordMissing(key != nullptr ? key : section)))
        value = WithoutTrailingBlanks(defaultValue != nullptr ? defaultValue : "");
    return std::string(LeftWhole(*value, size - 1));
}

std::optional<std::string> ReadProfileSection(const char* section, DWORD size, const char* file) {
    if (section == nullptr || size < 2) return "";
    Operation operation("qel::ReadProfileSection");
    const Found ini = Read(file);
    if (!operation.Ended(ini.index != nullptr || ini.isMissing)) return std::nullopt;
    std::string entries = ini.index ? ini.index->Entries(section) : "";
    const std::size_t capacity = size - 2;
    if (entries.size() > capacity) {
        entries.resize(LeftWhole(entries, capacity).size());
        entries.resize(capacity);
    }
    return entries;
}

bool WriteProfileString(const char* section, const char* key, const char* value, const char* file) {
    Operation operation("qel::WriteProfileString");
    if (section == nullptr) return operation.Failed(FailureKind::kArgument, "", "no section") != 0;
    const bool isWritten = Rewrite(file, [&](std::string_view bytes) -> Edited {
        if (key == nullptr) return WithoutIniSection(bytes, section);
        if (value == nullptr) return WithoutIniKey(bytes, section, key);
        return WithIniValue(bytes, section, key, value);
    });
    return operation.Ended(isWritten);
}

bool AddProfileEntry(const char* section, std::string_view entry, const char* file) {
    Operation operation("qel::AddProfileEntry");
    if (section == nullptr) return operation.Failed(FailureKind::kArgument, "", "no section") != 0;
    const bool isWritten = Rewrite(file, [&](std::string_view bytes) {
        std::string entries = IniIndex(std::string(bytes)).Entries(section);
        return WithIniEntries(bytes, section, entries.append(entry).append(1, '\0'));
    });
    return operation.Ended(isWritten);
}

}  // namespace qel
