#pragma once

#include <string>

#include "qellib10/record/signature_state.h"
#include "qellib10/record/trail_writer.h"

namespace qel {

/// Counts what a person was refused in a session, and has each in the trail: whoever tries passwords at the screen is
/// seen, and stopped by the third one.
class Refusals {
public:
    bool HaveEnded() const noexcept { return m_count >= kMost; }
    void End() noexcept { m_count = kMost; }

    /// Counts one, and appends it to the trail with its reason. Somebody may have typed the password in the place of
    /// the name, so the entry has the name only if a key was announced for it.
    /// @param record what it is about
    /// @param typed the name as it was typed
    /// @return 0, and LastFailure has the reason
    /// @throws DataError and CFileException where the trail takes no entry
    int Add(TrailWriter& trail, const SignatureState& state, TrailRecord record, std::string_view typed,
            const std::string& reason);

private:
    static constexpr unsigned kMost = 3;
    unsigned m_count = 0;
};

}  // namespace qel
