#pragma once

#include <functional>
#include <random>

#include "trail_folder.h"

using Lines = std::vector<std::string>;
using Random = std::minstd_rand;

inline std::size_t Below(Random& random, std::size_t n) { return static_cast<std::size_t>(random() % n); }

inline std::string Joined(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) text += line;
    return text;
}

inline std::string WithoutEnd(const std::string& line) { return line.substr(0, line.find('\n')); }

// Makes each line name the one before: whoever may write can compute the hashes again.
inline void Chain(Lines& lines) {
    constexpr std::string_view kKey = ",\"prev\":\"";
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::size_t at = lines[i].rfind(kKey);
        if (at == std::string::npos || lines[i].size() < at + 80) continue;
        lines[i].replace(at + kKey.size(), 64, HashOf(WithoutEnd(lines[i - 1])));
    }
}

// Writes line @p i again as the key @p key would after a change, and those after it with their hashes.
inline void SignAgain(Lines& lines, std::size_t i, int key, const std::function<void(qel::TrailEntry&)>& change) {
    for (std::size_t at = i; at < lines.size(); ++at) {
        qel::TrailEntry entry = qel::ReadEntry(WithoutEnd(lines[at])).entry;
        if (at > i) entry.previous = HashOf(WithoutEnd(lines[at - 1]));
        if (at == i) change(entry);
        lines[at] = ByteSigner(key).Line(entry);
    }
}

/// A change of one bit or byte.
inline void ChangeByte(std::string& bytes, Random& random) {
    const std::size_t at = Below(random, bytes.size());
    switch (Below(random, 3)) {
        case 0:
            bytes[at] ^= static_cast<char>(1 << Below(random, 8));
            break;
        case 1:
            bytes.erase(at, 1);
            break;
        default:
            bytes.insert(at, 1, static_cast<char>(Below(random, 256)));
    }
}

/// Gives a line the value that another one has in a field.
inline void CopyField(std::string& to, const std::string& from, Random& random) {
    constexpr const char* kKeys[] = {"\"number\":", "\"time\":", "\"boottime\":", "\"action\":", "\"object\":",
                                     "\"sha256\":", "\"size\":", "\"prev\":",     "\"sig\":"};
    const char* const key = kKeys[Below(random, std::size(kKeys))];
    const std::size_t at = to.find(key), other = from.find(key);
    if (at == std::string::npos || other == std::string::npos) return;
    const std::string value = from.substr(other, from.find_first_of(",}", other) - other);
    to.replace(at, to.find_first_of(",}", at) - at, value);
}

/// One change as somebody makes who has no key but their own, with or without the hashes that follow from it.
inline void ChangeTrail(Lines& lines, Random& random) {
    const auto any = [&] { return lines.begin() + static_cast<std::ptrdiff_t>(Below(random, lines.size())); };
    switch (Below(random, 7)) {
        case 0:
            ChangeByte(*any(), random);
            break;
        case 1:
            std::iter_swap(any(), any());
            break;
        case 2:
            lines.erase(any());
            break;
        case 3:
            lines.insert(any(), std::string(*any()));
            break;
        case 4:
            CopyField(*any(), *any(), random);
            break;
        case 5:
            lines.resize(Below(random, lines.size()));
            break;
        default:
            SignAgain(lines, Below(random, lines.size()), 2, [](auto& entry) { entry.object += 'x'; });
    }
    if (Below(random, 2) == 0) Chain(lines);
}
