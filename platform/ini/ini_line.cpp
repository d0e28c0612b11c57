#include "qellib10/platform/ini/ini_line.h"

#include <algorithm>

#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr std::string_view kBlanks = "\t\n\v\f\r \x1A";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

constexpr bool IsBlank(char c) { return kBlanks.find(c) != std::string_view::npos; }

// @param text the line without blanks around it
void TakeApart(std::string_view text, IniLine& line) {
    if (text.empty()) return;
    if (text[0] == ';') {
        line.kind = IniLine::Kind::Comment;
        return;
    }
    if (text[0] == '[') {
        if (const std::size_t bracket = FindLastCharacter(text, ']'); bracket != std::string_view::npos) {
            line.kind = IniLine::Kind::Section;
            line.name = TrimIni(text.substr(1, bracket - 1));
            return;
        }
    }
    const std::size_t equals = text.find('=');  // never a trail byte
    line.name = TrimIni(text.substr(0, equals));
    line.kind = equals == std::string_view::npos ? IniLine::Kind::Other : IniLine::Kind::Entry;
    if (equals != std::string_view::npos) line.value = TrimIni(text.substr(equals + 1));
}

}  // namespace

std::string_view TrimIni(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

bool IsUtf16Ini(std::string_view bytes) { return bytes.starts_with(kUtf16Mark); }

bool IniLine::Is(Kind wanted, std::string_view itsName) const { return kind == wanted && SameName(name, itsName); }

IniLines::IniLines(std::string_view bytes)
    : m_bytes(bytes), m_at(bytes.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0) {}

std::optional<IniLine> IniLines::Next() {
    if (m_at == m_bytes.size()) return std::nullopt;
    IniLine line;
    line.begin = m_at;
    const std::size_t feed = m_bytes.find('\n', m_at);
    line.next = feed == std::string_view::npos ? m_bytes.size() : feed + 1;
    line.end = std::min(feed, m_bytes.size());
    if (feed != std::string_view::npos && feed > line.begin && m_bytes[feed - 1] == '\r') --line.end;
    m_at = line.next;
    TakeApart(TrimIni(m_bytes.substr(line.begin, line.end - line.begin)), line);
    return line;
}

}  // namespace qel
