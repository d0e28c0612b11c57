#include "qellib10/record/trail_chain.h"

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/text_forms.h"

namespace qel {
namespace {

constexpr std::string_view kPrevious = ",\"prev\":\"";

[[noreturn]] void Refuse() { throw DataError("the trail is not the one that was checked before"); }

// Quotation marks in texts have a backslash before them, so the last place is that of the key.
std::string_view PreviousOf(std::string_view line) {
    const std::size_t at = line.rfind(kPrevious);
    return at == std::string_view::npos ? "" : line.substr(at + kPrevious.size(), 64);
}

}  // namespace

void TrailChain::Add(std::string_view line) {
    if (m_last.number == 0) return;
    if (PreviousOf(line) != m_hash) Refuse();
    m_hash = Hex(Sha256(line));
    ++m_number;
    if (IsAtEnd() && m_hash != m_last.hash) Refuse();
}

void TrailChain::RequireEnd() const {
    if (m_last.number > 0 && !IsAtEnd()) Refuse();
}

TrailLines::Kind ReadChecked(std::string_view path, const TrailReceipt& last,
                             const std::function<void(std::string_view line)>& take) {
    const GuardedFile file(std::string(path), GuardedFile::Use::kRead);
    TrailLines lines(file, 0, file.Size());
    TrailChain chain(last);
    TrailLines::Kind kind = TrailLines::Kind::kWhole;
    while (!chain.IsAtEnd()) {
        const TrailLines::Line line = lines.Next();
        kind = line.kind;
        if (kind != TrailLines::Kind::kWhole) break;
        chain.Add(line.text);
        take(line.text);
    }
    chain.RequireEnd();
    return kind;
}

}  // namespace qel
