#include "settings.h"

#include <cctype>
#include <iterator>

namespace tool {
namespace {

constexpr DWORD kLongestText = 65536, kLongestList = 16 << 20;

std::string HexDigits(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        text += kDigits[static_cast<unsigned char>(c) >> 4];
        text += kDigits[static_cast<unsigned char>(c) & 15];
    }
    return text;
}

std::uint64_t Number(std::string_view littleEndian) {
    std::uint64_t number = 0;
    for (std::size_t i = littleEndian.size(); i > 0; --i)
        number = number << 8 | static_cast<unsigned char>(littleEndian[i - 1]);
    return number;
}

Setting TextSetting(const std::string& text) { return {text, text}; }

Setting SettingOf(const qel::RegistryValue& value) {
    const std::string_view data = value.data;
    if (value.type == REG_MULTI_SZ) {
        std::string lines = Utf8(data.substr(0, data.find_last_not_of('\0') + 1));
        std::ranges::replace(lines, '\0', ' ');
        return TextSetting(lines);
    }
    if (qel::IsRegistryText(value.type)) return TextSetting(Utf8(data.substr(0, data.find('\0'))));
    if ((value.type == REG_DWORD && data.size() == 4) || (value.type == REG_QWORD && data.size() == 8)) {
        const std::int64_t number =
            value.type == REG_DWORD ? static_cast<std::int32_t>(Number(data)) : static_cast<std::int64_t>(Number(data));
        return {std::to_string(number), number};
    }
    return TextSetting(HexDigits(data));
}

// After a text was read that may be the default. @return whether it was stored
bool WasThere() {
    constexpr long kFileMissing = 2;
    const qel::Failure failure = qel::LastFailure();
    if (failure.kind == qel::FailureKind::kNone) return true;
    if (failure.kind != qel::FailureKind::kMissing) throw LastRefusal("cannot be read", kUnreadable);
    if (failure.systemError == kFileMissing) throw Failure(failure.text, kUnreadable);
    return false;
}

// The names in a list returned by the profile functions, each followed by a zero.
std::vector<std::string> Names(const char* section, const CString& file) {
    std::vector<std::string> names;
    const std::string list = qel::ReadProfileString(section, nullptr, "", kLongestList, file);
    WasThere();
    for (std::size_t at = 0; at < list.size(); at = list.find('\0', at) + 1) names.emplace_back(list.c_str() + at);
    return names;
}

std::optional<Setting> ReadIniSetting(const CString& file, const CString& section, const CString& key) {
    const std::string text = qel::ReadProfileString(section, key, "", kLongestText, file);
    return WasThere() ? std::optional(TextSetting(Utf8(text))) : std::nullopt;
}

std::vector<Section> ReadIniSections(const CString& file) {
    std::vector<Section> sections;
    for (const std::string& section : Names(nullptr, file)) {
        sections.push_back({Utf8(section), {}});
        for (const std::string& key : Names(section.c_str(), file)) {
            if (const auto setting = ReadIniSetting(file, section.c_str(), key.c_str()))
                sections.back().settings.emplace_back(Utf8(key), *setting);
        }
    }
    return sections;
}

Failure RegistryFailure(const Place& place, LONG code) {
    return Failure(Shown(place.given) + ": " +
                   (code == qel::kRegistryNotFound ? "there is no such key" : Why("cannot be read")));
}

void AddRegistrySections(const Place& place, const CString& below, std::vector<Section>& sections) {
    const CString path = below.IsEmpty() ? place.key : place.key + "\\" + below;
    qel::RegistryContents contents;
    const LONG code = qel::ListRegistryKey(place.root, path, contents);
    if (code != qel::kRegistrySuccess) throw RegistryFailure(place, code);
    if (!below.IsEmpty() || !contents.values.empty()) sections.push_back({Utf8(below.View()), {}});
    for (const auto& [name, value] : contents.values)
        sections.back().settings.emplace_back(Utf8(name), SettingOf(value));
    for (const std::string& key : contents.keys)
        AddRegistrySections(place, below.IsEmpty() ? CString(key.c_str()) : below + "\\" + key.c_str(), sections);
}

}  // namespace

Place PlaceOf(const std::string& location) {
    const CString text = Text(location);
    for (const auto& [name, root] :
         {std::pair("HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE), std::pair("HKEY_CURRENT_USER", HKEY_CURRENT_USER),
          std::pair("HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT)}) {
        const int length = static_cast<int>(std::string_view(name).size());
        if (text.Left(length).CompareNoCase(name) != 0) continue;
        if (text.GetLength() > length && text[length] != '\\') continue;
        CString key = text.Mid(length + 1);
        while (key.Right(1) == "\\") key = key.Left(key.GetLength() - 1);
        if (key.IsEmpty()) throw CLI::ValidationError("\"" + location + "\" names no key below the root");
        return {location, ExactText(location), root, key};
    }
    if (text.Left(5).CompareNoCase("HKEY_") == 0)
        throw CLI::ValidationError("\"" + location + "\" has no root that is known");
    return {location, Path(location), nullptr, {}};
}

std::optional<Setting> ReadSetting(const Place& place, const std::string& section, const std::string& key) {
    const CString below = ExactText(section), name = ExactText(key);
    if (place.root == nullptr) return OnFile(place.given, [&] { return ReadIniSetting(place.location, below, name); });
    qel::RegistryValue value;
    const LONG code =
        qel::ReadRegistryValue(place.root, below.IsEmpty() ? place.key : place.key + "\\" + below, name, value);
    if (code == qel::kRegistryNotFound) return std::nullopt;
    if (code != qel::kRegistrySuccess) throw RegistryFailure(place, code);
    return SettingOf(value);
}

std::vector<Section> ReadSections(const Place& place) {
    if (place.root == nullptr) return OnFile(place.given, [&] { return ReadIniSections(place.location); });
    std::vector<Section> sections;
    AddRegistrySections(place, CString(), sections);
    return sections;
}

}  // namespace tool
