#include "qellib10/platform/text/string_table.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <vector>

#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/own_strings.h"

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
    ForkSafeLock guard;
    std::vector<std::span<const StringTableEntry>> newestLast;
    std::span<const StringTableEntry> own;
};

// Never freed: tables are registered before main, and destructors of static objects may still use them.
Tables& RegisteredTables() {
    static Tables& tables = *new Tables;
    return tables;
}

constexpr bool IsText(const char* text) { return text != nullptr && *text != '\0'; }

// The entry's text in UTF-8; of the other language if one is missing, null if both are.
const char* TextOf(const StringTableEntry& entry, Language language) {
    const bool isJapanese = language == Language::Japanese;
    const char* const wanted = isJapanese ? entry.japanese : entry.english;
    const char* const other = isJapanese ? entry.english : entry.japanese;
    if (IsText(wanted)) return wanted;
    return IsText(other) ? other : nullptr;
}

const StringTableEntry* EntryIn(std::span<const StringTableEntry> table, UINT id) {
    const auto entry = std::ranges::find(table, id, &StringTableEntry::id);
    return entry != table.end() ? &*entry : nullptr;
}

const StringTableEntry* NewestEntry(const Tables& tables, UINT id) {
    for (auto table = tables.newestLast.rbegin(); table != tables.newestLast.rend(); ++table) {
        if (const StringTableEntry* const entry = EntryIn(*table, id)) return entry;
    }
    return EntryIn(tables.own, id);
}

std::optional<CString> InPage(const StringTableEntry* entry) {
    const char* const text = entry != nullptr ? TextOf(*entry, TableLanguage()) : nullptr;
    return text != nullptr ? std::optional(CString(FromUtf8(text))) : std::nullopt;
}

}  // namespace

Language TableLanguage() noexcept { return CurrentLanguage(); }
void SetTableLanguage(Language language) noexcept { CurrentLanguage() = language; }

void RegisterStringTable(std::span<const StringTableEntry> entries) {
    Tables& tables = RegisteredTables();
    const std::lock_guard lock(tables.guard);
    tables.newestLast.push_back(entries);
}

void RegisterOwnStringTable(std::span<const StringTableEntry> entries) {
    Tables& tables = RegisteredTables();
    const std::lock_guard lock(tables.guard);
    tables.own = entries;
}

std::optional<CString> LookUpString(UINT id) {
    Tables& tables = RegisteredTables();
    const std::lock_guard lock(tables.guard);
    return InPage(NewestEntry(tables, id));
}

std::optional<CString> LookUpOwnString(UINT id) {
    Tables& tables = RegisteredTables();
    const std::lock_guard lock(tables.guard);
    return InPage(EntryIn(tables.own, id));
}

}  // namespace qel
