#include "qellib10/platform/ini/ini_edit.h"

#include <algorithm>

#include "qellib10/platform/ini/ini_line.h"

namespace qel {
namespace {

using Kind = IniLine::Kind;

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kForbiddenInLines{"\r\n\0", 3};

// The lines of the first section with a name; no header: there is no such section.
struct Section {
    std::optional<IniLine> header;
    std::optional<IniLine> entry;  // the first one with the wanted name
    std::size_t lastUsed = 0;      // after its last line that is not blank
    std::size_t end = 0;           // where the next section starts, or the file ends
};

Section Locate(std::string_view bytes, std::string_view name, std::string_view key) {
    Section section;
    IniLines lines(bytes);
    while (const std::optional<IniLine> line = lines.Next()) {
        if (!section.header) {
            if (!line->Is(Kind::Section, name)) continue;
            section.header = line;
        } else if (line->kind == Kind::Section) {
            break;
        } else if (!section.entry && line->Is(Kind::Entry, key)) {
            section.entry = line;
        }
        section.end = line->next;
        if (line->kind != Kind::Blank) section.lastUsed = line->next;
    }
    return section;
}

// The only line of @p text, if a file can contain it as it is, other than as its first line.
std::optional<IniLine> OnlyLine(std::string_view text) {
    if (text.find_first_of(kForbiddenInLines) != std::string_view::npos) return std::nullopt;
    return IniLines(text, 0).Next();
}

bool ReadsAs(std::string_view text, Kind kind, std::string_view name) {
    const std::optional<IniLine> line = OnlyLine(text);
    return line && line->Is(kind, name);
}

std::string Replaced(std::string_view bytes, std::size_t begin, std::size_t end, std::string_view text) {
    std::string changed;
    changed.reserve(bytes.size() + text.size());
    return changed.append(bytes.substr(0, begin)).append(text).append(bytes.substr(end));
}

// Whether a line can start at @p at: the line before it may be the file's last one, without an end.
bool BeginsLine(std::string_view bytes, std::size_t at) {
    const std::optional<IniLine> first = IniLines(bytes.substr(0, at)).Next();
    return !first || bytes[at - 1] == '\n';
}

// @param lines whole lines that replace those from @p begin to @p end
std::string WithLines(std::string_view bytes, std::size_t begin, std::size_t end, std::string_view lines) {
    std::string text;
    if (!lines.empty() && !BeginsLine(bytes, begin)) text = kLineEnd;
    return Replaced(bytes, begin, end, text.append(lines));
}

// Nothing if the header would read as something else.
std::optional<std::string> WithNewSection(std::string_view bytes, std::string_view name, std::string_view lines) {
    const std::string header = std::string("[").append(name).append("]");
    if (!ReadsAs(header, Kind::Section, name)) return std::nullopt;
    return WithLines(bytes, bytes.size(), bytes.size(), std::string(header).append(kLineEnd).append(lines));
}

}  // namespace

std::optional<std::string> WithIniValue(std::string_view bytes, std::string_view section, std::string_view key,
                                        std::string_view value) {
    section = TrimIni(section);
    key = TrimIni(key);
    const Section found = Locate(bytes, section, key);
    std::string line = std::string(found.entry ? found.entry->name : key).append("=").append(value);
    if (!ReadsAs(line, Kind::Entry, key)) return std::nullopt;  // "[a=b]" would read as a header
    if (found.entry) return Replaced(bytes, found.entry->begin, found.entry->end, line);
    line += kLineEnd;
    if (!found.header) return WithNewSection(bytes, section, line);
    return WithLines(bytes, found.lastUsed, found.lastUsed, line);
}

std::string WithoutIniKey(std::string_view bytes, std::string_view section, std::string_view key) {
    const Section found = Locate(bytes, TrimIni(section), TrimIni(key));
    return found.entry ? Replaced(bytes, found.entry->begin, found.entry->next, {}) : std::string(bytes);
}

std::string WithoutIniSection(std::string_view bytes, std::string_view section) {
    const Section found = Locate(bytes, TrimIni(section), {});
    return found.header ? Replaced(bytes, found.header->begin, found.end, {}) : std::string(bytes);
}

std::optional<std::string> WithIniEntries(std::string_view bytes, std::string_view section, std::string_view entries) {
    section = TrimIni(section);
    std::string lines;
    while (!entries.empty() && entries[0] != '\0') {
        const std::string_view entry = entries.substr(0, entries.find('\0'));
        const std::optional<IniLine> line = OnlyLine(entry);
        if (!line || (line->kind != Kind::Entry && line->kind != Kind::Other)) return std::nullopt;
        lines.append(entry).append(kLineEnd);
        entries.remove_prefix(std::min(entry.size() + 1, entries.size()));
    }
    const Section found = Locate(bytes, section, {});
    if (!found.header) return WithNewSection(bytes, section, lines);
    return WithLines(bytes, found.header->next, std::max(found.header->next, found.lastUsed), lines);
}

}  // namespace qel
