#include "qellib10/record/trail_file.h"

#include <algorithm>

#include "qellib10/platform/error.h"

namespace qel {

bool TrailLines::ReadMore() {
    m_bytes.erase(0, m_start);
    m_start = 0;
    const std::size_t before = m_bytes.size();
    const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(kLongestLine, m_end - m_readTo));
    m_bytes.resize(before + wanted);
    const std::size_t got = m_file.ReadAt(std::as_writable_bytes(std::span(m_bytes)).subspan(before), m_readTo);
    m_bytes.resize(before + got);
    m_readTo += got;
    return got > 0;
}

TrailLines::Line TrailLines::Next() {
    Line line;
    line.at = m_at;
    for (std::size_t searched = 0;;) {
        const std::string_view rest = std::string_view(m_bytes).substr(m_start);
        const std::size_t end = rest.find('\n', searched);
        const std::size_t size = std::min(end, rest.size());
        line.text = rest.substr(0, size);
        if (size >= kLongestLine) {
            line.kind = Kind::kTooLong;
            m_end = m_readTo;
            m_start = m_bytes.size();
            return line;
        }
        if (end != std::string_view::npos) break;
        searched = rest.size();
        if (ReadMore()) continue;
        line.text = std::string_view(m_bytes).substr(m_start);
        line.kind = line.text.empty() ? Kind::kEnd : Kind::kPart;
        m_start = m_bytes.size();
        m_at = line.End();
        return line;
    }
    line.kind = Kind::kWhole;
    m_start += line.text.size() + 1;
    m_at = line.End();
    return line;
}

std::string LineBefore(const GuardedFile& file, std::uint64_t end) {
    const std::uint64_t from = end - std::min<std::uint64_t>(end, kLongestLine + 1);
    std::string bytes(static_cast<std::size_t>(end - from), '\0');
    const std::size_t got = file.ReadAt(std::as_writable_bytes(std::span(bytes)), from);
    if (got != bytes.size() || bytes.empty() || bytes.back() != '\n')
        throw DataError("the trail has no whole line where its last acknowledged entry should end");
    bytes.pop_back();
    const std::size_t before = bytes.rfind('\n');
    if (before == std::string::npos && from > 0) throw DataError("a line of the trail is longer than 64 KiB");
    return before == std::string::npos ? bytes : bytes.substr(before + 1);
}

std::string ReadShortFile(const std::string& path, std::uint64_t most, const char* refusal) {
    const GuardedFile file(path, GuardedFile::Use::kRead);
    const std::uint64_t size = file.Size();
    if (size > most) throw DataError(refusal);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    bytes.resize(file.ReadAt(std::as_writable_bytes(std::span(bytes)), 0));
    return bytes;
}

}  // namespace qel
