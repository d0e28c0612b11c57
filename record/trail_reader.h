#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/record/trail_entry.h"

namespace qel {

/// Goes through the entries of a trail, one at a time, so a trail of any size takes the same memory. It reads what is
/// there and does not say whether that can be trusted: CheckTrail does.
///
/// @code
/// qel::TrailReader reader;
/// if (reader.Open(R"(\srv\archive\trail.jsonl)") == 0) return;
/// while (const std::optional<qel::TrailEntry> entry = reader.Next())
///     std::printf("%s %s: %s\n", qel::TrailTimeText(entry->time).c_str(), entry->user.c_str(), entry->action.c_str());
/// if (qel::LastFailure().kind != qel::FailureKind::kNone) return;  // it is damaged there
/// @endcode
///
/// Nothing is locked: others may append meanwhile. One thread at a time.
class QELLIB10_API TrailReader {
public:
    TrailReader();
    ~TrailReader();

    /// @param path in the library's form; no link, device or pipe
    int Open(std::string_view path);
    /// The next entry. Nothing at the end, where qel::LastFailure().kind is kNone, and nothing at a line that is not
    /// an entry, or not whole; there it has the reason, and the next call goes on after that line.
    std::optional<TrailEntry> Next();
    /// SHA-256 of the line that Next has returned.
    std::string Hash() const;
    /// Fingerprint of the key that it names as its signer, "SHA256:...".
    std::string Signer() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
