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

Tables& RegisteredTables() {
    static Tables tables;
    return tables;
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
    Tables& tables = RegisteredTables();
    const std::lock_guard lock(tables.guard);
    for (auto table = tables.newestLast.rbegin(); table != tables.newestLast.rend(); ++table) {
        const auto entry = std::ranges::find(*table, id, &StringTableEntry::id);
        if (entry == table->end()) continue;
        return CString(FromUtf8(TableLanguage() == Language::Japanese ? entry->japanese : entry->english));
    }
    return std::nullopt;
}

}  // namespace qel
