#include "qellib10/platform/text/string_table.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <vector>

#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

Language LanguageOfEnvironment() {
    const char* value = std::getenv("QELLIB10_LANGUAGE");
    return value != nullptr && std::string_view(value) == "ja" ? Language::Japanese : Language::English;
}

std::atomic<Language>& CurrentLanguage() {
    static std::atomic<Language> language = LanguageOfEnvironment();
    return language;
}

struct Tables {
    std::mutex guard;
    std::vector<std::span<const StringTableEntry>> newestLast;
};

// Never freed: tables are registered before main and may be asked by destructors of static objects.
Tables& RegisteredTables() {
    static Tables& tables = *new Tables;
    return tables;
}

constexpr bool IsText(const char* text) { return text != nullptr && *text != '\0'; }

// The entry's text in UTF-8; of the other language where one is missing, null where both are.
const char* TextOf(const StringTableEntry& entry, Language language) {
    const bool isJapanese = language == Language::Japanese;
    const char* const wanted = isJapanese ? entry.japanese : entry.english;
    const char* const other = isJapanese ? entry.english : entry.japanese;
    if (IsText(wanted)) return wanted;
    return IsText(other) ? other : nullptr;
}

const char* Find(UINT id, Language language) {
    Tables& tables = RegisteredTables();
    const std::lock_guard lock(tables.guard);
    for (auto table = tables.newestLast.rbegin(); table != tables.newestLast.rend(); ++table) {
        const auto entry = std::ranges::find(*table, id, &StringTableEntry::id);
        if (entry != table->end()) return TextOf(*entry, language);
    }
    return nullptr;
}

}  // namespace

Language TableLanguage() noexcept { return CurrentLanguage(); }
void SetTableLanguage(Language language) noexcept { CurrentLanguage() = language; }

void RegisterStringTable(std::span<const StringTableEntry> entries) {
    Tables& tables = RegisteredTables();
    const std::lock_guard lock(tables.guard);
    tables.newestLast.push_back(entries);
}

std::optional<CString> LookUpString(UINT id) {
    const char* const text = Find(id, TableLanguage());
    return text != nullptr ? std::optional(CString(FromUtf8(text))) : std::nullopt;
}

}  // namespace qel
