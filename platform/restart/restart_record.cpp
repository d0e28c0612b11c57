#include "qellib10/platform/restart/restart_record.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace qel {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::size_t kCheckAt = 2;
constexpr std::size_t kCheckSize = 16;
constexpr std::size_t kBodyAt = kCheckAt + kCheckSize + 1;

bool NeedsNoEscape(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' || c == '.' ||
           c == '_' || c == '-';
}

std::string Escaped(std::string_view path) {
    std::string text;
    for (const char c : path) {
        if (NeedsNoEscape(c)) {
            text += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        text += '%';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

std::optional<std::string> Unescaped(std::string_view text) {
    std::string path;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            path += text[i];
            continue;
        }
        if (i + 2 >= text.size()) return std::nullopt;
        const std::size_t high = kDigits.find(text[i + 1]);
        const std::size_t low = kDigits.find(text[i + 2]);
        if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
        path += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return path;
}

std::string Check(std::string_view body) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : body) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    char digits[kCheckSize + 1];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

std::vector<std::string_view> Fields(std::string_view body) {
    std::vector<std::string_view> fields;
    for (std::size_t at = 0; at <= body.size();) {
        const std::size_t end = std::min(body.find(' ', at), body.size());
        fields.push_back(body.substr(at, end - at));
        at = end + 1;
    }
    return fields;
}

bool IsAbsolute(const std::optional<std::string>& path) {
    return path && path->starts_with('/') && path->find('\0') == path->npos;
}

}  // namespace

std::string RestartRecord::Line() const {
    const bool moves = !operation.target.empty();
    std::string body = bootId + (moves ? " R " : " D ") + Escaped(operation.source);
    if (moves) body += ' ' + Escaped(operation.target);
    return std::string(1, done ? kDone : kWaits) + ' ' + Check(body) + ' ' + body + '\n';
}

std::optional<RestartRecord> RestartRecord::Parse(std::string_view line) {
    if (line.size() < kBodyAt || (line[0] != kWaits && line[0] != kDone) || line[1] != ' ') return std::nullopt;
    const std::string_view body = line.substr(kBodyAt);
    if (line.substr(kCheckAt, kCheckSize) != Check(body) || line[kBodyAt - 1] != ' ') return std::nullopt;

    const std::vector<std::string_view> fields = Fields(body);
    const bool moves = fields.size() == 4 && fields[1] == "R";
    if (!moves && !(fields.size() == 3 && fields[1] == "D")) return std::nullopt;
    const std::optional<std::string> source = Unescaped(fields[2]);
    const std::optional<std::string> target = moves ? Unescaped(fields[3]) : std::nullopt;
    if (!IsAbsolute(source) || (moves && !IsAbsolute(target))) return std::nullopt;
    return RestartRecord{line[0] == kDone, std::string(fields[0]), {*source, target.value_or("")}};
}

}  // namespace qel
