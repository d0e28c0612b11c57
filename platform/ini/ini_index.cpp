#include "qellib10/platform/ini/ini_index.h"

#include <algorithm>
#include <utility>

#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/name_hash.h"

namespace qel {
namespace {

using Kind = IniLine::Kind;

constexpr std::uint32_t kHeaders = 0xFFFFFFFF;  // instead of a section: the headers themselves

std::u16string Utf16Units(std::string_view bytes) {
    std::u16string units;
    for (std::size_t at = 2; at + 1 < bytes.size(); at += 2) {  // after the mark
        const unsigned low = static_cast<unsigned char>(bytes[at]);
        const unsigned high = static_cast<unsigned char>(bytes[at + 1]);
        units += static_cast<char16_t>(high << 8 | low);
    }
    return units;
}

std::string_view WithoutQuotes(std::string_view value) {
    const bool quoted = value.size() >= 2 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0];
    return quoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

IniIndex::IniIndex(std::string bytes)
    : m_text(IsUtf16Ini(bytes) ? FromUtf16(Utf16Units(bytes)) : std::move(bytes)), m_page(CodePage()) {
    Collect();
    Sort();
}

bool IniIndex::IsOfCurrentPage() const { return m_page == CodePage(); }

std::uint64_t IniIndex::KeyOf(std::uint32_t section, std::string_view name) {
    return std::uint64_t{section} << 32 | HashFoldedName(name);
}

void IniIndex::Collect() {
    std::optional<std::uint32_t> section;
    IniLines lines(m_text);
    while (const std::optional<IniLine> line = lines.Next()) {
        const auto at = static_cast<std::uint32_t>(line->begin);
        if (line->kind == Kind::Section) {
            section = at;
            m_slots.push_back({KeyOf(kHeaders, line->name), at});
        } else if (line->kind == Kind::Entry && section) {
            m_slots.push_back({KeyOf(*section, line->name), at});
        }
    }
}

void IniIndex::Sort() {
    std::ranges::sort(m_slots, [this](const Slot& a, const Slot& b) {
        if (a.key != b.key) return a.key < b.key;
        const std::string_view left = LineAt(a.line).name;
        const std::string_view right = LineAt(b.line).name;
        return SameName(left, right) ? a.line < b.line : FoldName(left) < FoldName(right);
    });
}

std::optional<IniLine> IniIndex::Find(std::uint32_t section, std::string_view name) const {
    const std::uint64_t key = KeyOf(section, name);
    auto slot = std::ranges::lower_bound(m_slots, key, {}, &Slot::key);
    for (; slot != m_slots.end() && slot->key == key; ++slot) {
        const IniLine line = LineAt(slot->line);
        if (SameName(line.name, name)) return line;
    }
    return std::nullopt;
}

std::optional<std::string_view> IniIndex::Value(std::string_view section, std::string_view key) const {
    const std::optional<IniLine> header = Find(kHeaders, TrimIni(section));
    if (!header) return std::nullopt;
    const std::optional<IniLine> entry = Find(static_cast<std::uint32_t>(header->begin), TrimIni(key));
    if (!entry) return std::nullopt;
    return WithoutQuotes(entry->value);
}

template <class Take> void IniIndex::ForEachLine(std::string_view section, Take&& take) const {
    const std::optional<IniLine> header = Find(kHeaders, TrimIni(section));
    if (!header) return;
    IniLines lines(m_text, header->next);
    for (auto line = lines.Next(); line && line->kind != Kind::Section; line = lines.Next()) take(*line);
}

std::string IniIndex::Entries(std::string_view section) const {
    std::string entries;
    ForEachLine(section, [&](const IniLine& line) {
        if (line.kind != Kind::Entry && line.kind != Kind::Other) return;
        entries += line.name;
        if (line.kind == Kind::Entry) entries.append("=").append(line.value);
        entries += '\0';
    });
    return entries;
}

std::string IniIndex::Keys(std::string_view section) const {
    std::string keys;
    ForEachLine(section, [&](const IniLine& line) {
        if (line.kind == Kind::Entry) keys.append(line.name) += '\0';
    });
    return keys;
}

std::string IniIndex::Sections() const {
    std::string sections;
    IniLines lines(m_text);
    while (const std::optional<IniLine> line = lines.Next()) {
        if (line->kind == Kind::Section) sections.append(line->name) += '\0';
    }
    return sections;
}

}  // namespace qel
