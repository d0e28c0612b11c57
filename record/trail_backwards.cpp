#include "qellib10/record/trail_backwards.h"

#include <algorithm>

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_line.h"

namespace qel {

// Keeps the bytes of the line that is not whole yet.
void LinesBackwards::ReadMore() {
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(kLongestLine, m_from));
    std::string block(size, '\0');
    if (m_file.ReadAt(std::as_writable_bytes(std::span(block)), m_from - size) != size)
        throw DataError("the trail became shorter");
    m_bytes = block.append(m_bytes, 0, m_end);
    m_from -= size;
    m_end += size;
}

std::optional<std::string_view> LinesBackwards::Next() {
    for (;;) {
        const bool isWhole = m_end > 0 && m_bytes[m_end - 1] == '\n';
        const std::string_view text = std::string_view(m_bytes).substr(0, m_end - (isWhole ? 1 : 0));
        const std::size_t before = text.rfind('\n');
        if (before == std::string_view::npos && text.size() >= kLongestLine)
            throw DataError("a line of the trail is longer than 64 KiB");
        if (before == std::string_view::npos && m_from > 0) {
            ReadMore();
            continue;
        }
        if (m_end == 0) return std::nullopt;
        m_isWhole = isWhole;
        m_lineEnd = m_from + m_end;
        m_end = before == std::string_view::npos ? 0 : before + 1;
        return text.substr(m_end);
    }
}

TrailBackwards::TrailBackwards(const std::string& path, const TrailReceipt& last)
    : m_file(path, GuardedFile::Use::kRead), m_lines(m_file, m_file.Size()), m_next(last) {}

// What comes after the first one was appended meanwhile.
std::optional<std::string_view> TrailBackwards::NextWithHash() {
    while (const std::optional<std::string_view> line = m_lines.Next()) {
        if (Hex(Sha256(*line)) == m_next.hash) return line;
        if (m_hasStarted) break;
    }
    return std::nullopt;
}

std::optional<TrailEntry> TrailBackwards::Next() {
    if (m_next.number == 0) return std::nullopt;
    const std::optional<std::string_view> line = NextWithHash();
    if (!line)
        throw DataError("entry " + std::to_string(m_next.number) +
                        " of the trail is not the one that was acknowledged");
    TrailEntry entry = ReadEntry(*line).entry;
    m_hasStarted = true;
    m_next = {entry.number - 1, entry.previous};
    return entry;
}

}  // namespace qel
