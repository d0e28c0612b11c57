#include "qellib10/file/private_profile.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/endian.h"
#include "qellib10/platform/ini/ini_file.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/number_scan.h"

#include "qellib10/base/read_number.h"
#include "qellib10/runtime/system_info.h"

namespace {

using qel::FailureKind;
using qel::Refuse;

constexpr const char* kSet = "CPrivateProfile::Set";
constexpr const char* kGet = "CPrivateProfile::Get";
constexpr const char* kKeyClass = "Class";
constexpr std::string_view kNotOpen = "no profile is open", kOnlyInRegistry = "only in the registry",
                           kNoBackupKey = "names no key beside a profile's own";
constexpr int kNotOpened = -1;       // of DeleteKeySub
constexpr DWORD kTextBuffer = 1024;  // with the terminating zero
constexpr DWORD kSectionBuffer = 32767;
constexpr DWORD kSectionTooLong = kSectionBuffer - 2;

struct Root {
    CString name;
    HKEY key;
};

// The root that @p location starts with, if any.
const Root* FindRoot(const CString& location) {
    static const Root roots[] = {{"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                                 {"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                                 {"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT}};
    const auto* const found = std::ranges::find_if(
        roots, [&](const Root& root) { return location.Left(root.name.GetLength()).CompareNoCase(root.name) == 0; });
    return found != std::end(roots) ? found : nullptr;
}

// By characters: a backslash may be the second byte of one.
bool EndsWithBackslash(const CString& path) {
    return !path.IsEmpty() && path.ReverseFind('\\') == path.GetLength() - 1;
}

CString WithoutBackslashes(CString path) {
    while (EndsWithBackslash(path)) path = path.Left(path.GetLength() - 1);
    return path;
}

CString NameOf(int key) { return CString(std::string_view(std::to_string(key))); }

// With a terminating zero, which the system adds to a text that was stored without one.
std::size_t SizeOfText(const std::string& text) { return text.size() + (text.ends_with('\0') ? 0 : 1); }

// What Get returns for a text: one that fits its buffer.
std::optional<const char*> TextIn(const qel::RegistryValue& value) {
    const bool fits = qel::IsRegistryText(value.type) && SizeOfText(value.data) <= kTextBuffer;
    return fits ? std::optional(value.data.c_str()) : std::nullopt;
}

// What was stored, or the default and why, although there is a value.
template <class Value> Value OrRefused(const std::optional<Value>& stored, Value otherwise, const char* key) {
    if (!stored) qel::Operation(kGet).Failed(FailureKind::kData, key != nullptr ? key : "", "not a value of this type");
    return stored.value_or(otherwise);
}

std::optional<int> IntIn(const qel::RegistryValue& value) {
    if (value.type != REG_DWORD || value.data.size() != sizeof(int)) return std::nullopt;
    return qel::FromLittleEndian<int>(std::as_bytes(std::span(value.data)).first<sizeof(int)>());
}

// What @p read gives, or @p otherwise when memory runs out.
template <typename Value, std::invocable Read> Value OrWithoutMemory(Value otherwise, Read&& read) {
    try {
        return std::forward<Read>(read)();
    } catch (const std::bad_alloc&) {
        qel::Operation operation(kGet);
        qel::FailedByMemory(operation);
        return otherwise;
    }
}

// A key that is closed at the end of the scope.
class RegistryKey {
public:
    RegistryKey() = default;
    ~RegistryKey() {
        if (m_key != nullptr) qel::CloseRegistryKey(m_key);
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    bool Open(HKEY parent, const char* path) {
        return qel::OpenRegistryKey(parent, path, m_key) == qel::kRegistrySuccess;
    }
    bool Create(HKEY parent, const char* path) {
        return qel::CreateRegistryKey(parent, path, kKeyClass, m_key) == qel::kRegistrySuccess;
    }
    HKEY Get() const { return m_key; }

private:
    HKEY m_key = nullptr;
};

// None when that cannot be found out.
std::optional<bool> IsThere(HKEY parent, const char* path) {
    HKEY key = nullptr;
    const LONG result = qel::OpenRegistryKey(parent, path, key);
    if (result == qel::kRegistrySuccess) qel::CloseRegistryKey(key);
    if (result != qel::kRegistrySuccess && result != qel::kRegistryNotFound) return std::nullopt;
    return result == qel::kRegistrySuccess;
}

}  // namespace

CPrivateProfile::CPrivateProfile(const char* location, int mode) { Open(location, mode); }
CPrivateProfile::~CPrivateProfile() { Close(); }

int CPrivateProfile::Open(const char* location, int mode) {
    Close();
    m_nMode = mode;
    return qel::AsResult("CPrivateProfile::Open", [&] {
        const CString whole(location);
        if (mode != registryMode) {
            m_szLocation = whole;
            return whole.IsEmpty() ? Refuse(FailureKind::kArgument, "", "no file is named") : 1;
        }
        const Root* const root = FindRoot(whole);
        if (root != nullptr) m_szLocation = whole.Mid(root->name.GetLength() + 1);
        if (!EndsWithBackslash(m_szLocation)) m_szLocation += '\\';
        if (root != nullptr) m_hRoot = root->key;
        return root != nullptr ? 1 : Refuse(FailureKind::kArgument, whole.View(), "not below a root of the registry");
    });
}

int CPrivateProfile::Close() {
    m_hRoot = nullptr;
    m_szLocation.Empty();
    return 1;
}

CString CPrivateProfile::KeyOf(const char* section) const { return m_szLocation + section; }

// The first system of its family did not open keys whose path ends with a backslash, but did create them.
CString CPrivateProfile::OpenedKeyOf(const char* section) const {
    CString key = KeyOf(section);
    if (CSystemInfo::IsWin95() && EndsWithBackslash(key)) key = key.Left(key.GetLength() - 1);
    return key;
}

int CPrivateProfile::Write(const char* section, const char* key, const char* value) {
    return qel::AsResult(kSet, [&] {
        if (m_szLocation.IsEmpty()) return Refuse(FailureKind::kState, "", kNotOpen);
        return qel::WriteProfileString(section, key, value, m_szLocation) ? 1 : 0;
    });
}

int CPrivateProfile::Write(const char* section, const char* key, DWORD type, std::string_view data) {
    return qel::AsResult(kSet, [&] {
        if (m_hRoot == nullptr) return Refuse(FailureKind::kState, "", kNotOpen) != 0;
        return qel::WriteRegistryValue(m_hRoot, KeyOf(section), kKeyClass, key, {type, std::string(data)}) ==
               qel::kRegistrySuccess;
    });
}

bool CPrivateProfile::Read(const char* section, const char* key, qel::RegistryValue& value) const {
    return qel::AsResult(kGet, [&] {
               if (m_hRoot == nullptr) return Refuse(FailureKind::kState, "", kNotOpen) != 0;
               return qel::ReadRegistryValue(m_hRoot, OpenedKeyOf(section), key, value) == qel::kRegistrySuccess;
           }) != 0;
}

int CPrivateProfile::Set(const char* section, const char* key, const char* value) {
    if (m_nMode != registryMode) return Write(section, key, value);
    // Without a terminating zero, as values already in the field.
    return value != nullptr ? Write(section, key, REG_SZ, value) : qel::RefuseNull(kSet);
}

int CPrivateProfile::Set(const char* section, const char* key, int value) {
    if (m_nMode != registryMode) return Write(section, key, std::to_string(value).c_str());
    const auto bytes = qel::ToLittleEndian(value);
    return Write(section, key, REG_DWORD, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

int CPrivateProfile::SetDouble(const char* section, const char* key, double value) {
    qel::Operation running("CPrivateProfile::SetDouble");
    if (IsWholeSection(key)) return running.Failed(FailureKind::kArgument, "", "no key");
    if (!std::isfinite(value)) return running.Failed(FailureKind::kArgument, key, "infinite or not a number");
    return running.Ended(Set(section, key, qel::NumberText(value)));
}

int CPrivateProfile::SetDouble(const char* section, int key, double value) {
    return SetDouble(section, NameOf(key), value);
}

int CPrivateProfile::Set(const char* section, int key, const char* value) { return Set(section, NameOf(key), value); }
int CPrivateProfile::Set(const char* section, int key, int value) { return Set(section, NameOf(key), value); }

int CPrivateProfile::Set(const char* section, const char* key, const void* data, DWORD size) {
    if (m_nMode != registryMode) return qel::Operation(kSet).Failed(FailureKind::kState, "", kOnlyInRegistry);
    if (data == nullptr && size > 0) return qel::RefuseNull(kSet);
    if (size > qel::kMaxRegistryData)
        return qel::Operation(kSet).Failed(FailureKind::kArgument, "", "more bytes than a value may have");
    return Write(section, key, REG_BINARY, {static_cast<const char*>(data), size});
}

CString CPrivateProfile::Get(const char* section, const char* key, const char* defaultValue) const {
    if (m_nMode != registryMode) {
        qel::Operation operation(kGet);
        if (m_szLocation.IsEmpty()) {
            operation.Failed(FailureKind::kState, "", kNotOpen);
            return defaultValue;
        }
        const std::string text = qel::ReadProfileString(section, key, defaultValue, kTextBuffer, m_szLocation);
        operation.TakeOver();
        return text.empty() ? defaultValue : text.c_str();
    }
    qel::RegistryValue value;
    if (!Read(section, key, value)) return defaultValue;
    return OrRefused(TextIn(value), defaultValue, key);
}

int CPrivateProfile::Get(const char* section, const char* key, int defaultValue) const {
    if (m_nMode != registryMode) {
        return OrWithoutMemory(defaultValue, [&] {
            const CString text = Get(section, key, NameOf(defaultValue));
            return qel::ClampToInt(qel::ScanInteger(text.View()));
        });
    }
    qel::RegistryValue value;
    if (!Read(section, key, value)) return defaultValue;
    return OrRefused(IntIn(value), defaultValue, key);
}

double CPrivateProfile::GetDouble(const char* section, const char* key, double defaultValue) const {
    qel::Operation running("CPrivateProfile::GetDouble");
    if (IsWholeSection(key)) {
        running.Failed(FailureKind::kArgument, "", "no key");
        return defaultValue;
    }
    const double number = OrWithoutMemory(defaultValue, [&] {
        const auto numberIn = [&](std::string_view text) {
            return OrRefused(qel::ReadNumber(text), defaultValue, key);
        };
        if (m_nMode != registryMode) {
            const CString text = Get(section, key, "");
            return text.IsEmpty() ? defaultValue : numberIn(text.View());
        }
        qel::RegistryValue value;
        if (!Read(section, key, value)) return defaultValue;
        const std::optional<int> stored = IntIn(value);
        return stored ? *stored : numberIn(TextIn(value).value_or(""));
    });
    running.TakeOver();
    return number;
}

double CPrivateProfile::GetDouble(const char* section, int key, double defaultValue) const {
    return GetDouble(section, NameOf(key), defaultValue);
}

CString CPrivateProfile::Get(const char* section, int key, const char* defaultValue) const {
    return Get(section, NameOf(key), defaultValue);
}
int CPrivateProfile::Get(const char* section, int key, int defaultValue) const {
    return Get(section, NameOf(key), defaultValue);
}

int CPrivateProfile::Get(const char* section, const char* key, void* data, DWORD* size) const {
    qel::RegistryValue value;
    if (m_nMode != registryMode) return qel::Operation(kGet).Failed(FailureKind::kState, "", kOnlyInRegistry);
    if (size == nullptr) return qel::RefuseNull(kGet);
    if (!Read(section, key, value)) return 0;
    const DWORD capacity = std::exchange(*size, static_cast<DWORD>(value.data.size()));
    if (data == nullptr) return 1;
    if (capacity < value.data.size())
        return qel::Operation(kGet).Failed(FailureKind::kArgument, "", "the buffer is too small");
    std::ranges::copy(value.data, static_cast<char*>(data));
    return 1;
}

int CPrivateProfile::Delete(const char* section) {
    return qel::AsResult("CPrivateProfile::Delete", [&] {
        if (m_nMode != registryMode) return Refuse(FailureKind::kState, "", kOnlyInRegistry);
        return DeleteKeySub(m_hRoot, OpenedKeyOf(section)) == 0 ? 1 : 0;
    });
}

int CPrivateProfile::GetAllStrings(const char* section, CStringArray& out) const {
    return qel::AsResult("CPrivateProfile::GetAllStrings", [&] {
        if (m_nMode == registryMode) return Refuse(FailureKind::kState, "", "only of an INI file");
        if (m_szLocation.IsEmpty()) return Refuse(FailureKind::kState, "", kNotOpen);
        const auto read = [&] { return qel::ReadProfileSection(section, kSectionBuffer, m_szLocation); };
        const std::optional<std::string> first = read();
        if (!first) return 0;
        if (first->size() == kSectionTooLong) return Refuse(FailureKind::kData, section, "the section is too long");
        const std::optional<std::string> entries = read();  // once more, for the entries, as it has always been
        if (!entries) return 0;
        out.RemoveAll();
        for (std::string_view rest = *entries; !rest.empty() && rest[0] != '\0';) {
            const std::string_view entry = rest.substr(0, rest.find('\0'));
            out.Add(CString(entry));
            rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
        }
        return 1;
    });
}

// All or nothing: without Commit neither key changes.
int CPrivateProfile::Replace(const CString& source, const CString& target) {
    qel::RegistryTransaction transaction;
    if (transaction.Begin(m_hRoot) != qel::kRegistrySuccess) return 0;
    // A target that is there but cannot be opened just now must not get the values of both.
    const std::optional<bool> isThere = IsThere(m_hRoot, target);
    if (!isThere || (*isThere && DeleteKeySub(m_hRoot, target) != 0)) return 0;
    RegistryKey from;
    RegistryKey to;
    return from.Open(m_hRoot, source) && to.Create(m_hRoot, target) && BackupSub(from.Get(), to.Get()) &&
           transaction.Commit() == qel::kRegistrySuccess;
}

// The key next to the profile's own; empty if @p suffix names none.
CString CPrivateProfile::BackupKey(const char* suffix) const {
    const CString live = WithoutBackslashes(m_szLocation);
    const CString end(suffix);
    if (m_nMode != registryMode || live.IsEmpty() || end.IsEmpty() || end[0] == '\\') return {};
    return live + end;
}

int CPrivateProfile::Backup(const char* suffix) {
    return qel::AsResult("CPrivateProfile::Backup", [&] {
        const CString backup = BackupKey(suffix);
        if (backup.IsEmpty()) return Refuse(FailureKind::kArgument, CString(suffix).View(), kNoBackupKey);
        return Replace(WithoutBackslashes(m_szLocation), backup);
    });
}

int CPrivateProfile::Restore(const char* suffix) {
    return qel::AsResult("CPrivateProfile::Restore", [&] {
        const CString backup = BackupKey(suffix);
        if (backup.IsEmpty()) return Refuse(FailureKind::kArgument, CString(suffix).View(), kNoBackupKey);
        return Replace(backup, WithoutBackslashes(m_szLocation));
    });
}

int CPrivateProfile::DeleteKeySub(HKEY parent, const char* name) {
    if (RegistryKey key; !key.Open(parent, name)) return kNotOpened;
    return qel::DeleteRegistryTree(parent, name);
}

int CPrivateProfile::BackupSub(HKEY from, HKEY to) { return qel::CopyRegistryTree(from, to) == qel::kRegistrySuccess; }
