#pragma once

#include <optional>

#include <qellib10/record.h>

#include "tool.h"

namespace tool {

/// The entries of a trail that were checked, one by one, though the file may have been exchanged since then. Those that
/// were appended later are left out.
class CheckedEntries {
public:
    /// @throws Failure
    CheckedEntries(const std::string& trail, const qel::TrailReport& report);
    /// @param last the last one that counts; number 0: none does. @throws Failure
    CheckedEntries(const std::string& trail, const qel::TrailReceipt& last);

    /// The next entry. @throws Failure when the trail is not the one that was checked
    std::optional<qel::TrailEntry> Next();
    std::string Hash() const { return m_reader.Hash(); }
    std::string Signer() const { return m_reader.Signer(); }
    /// Lines so far that are no entries.
    std::uint64_t Passed() const { return m_passed; }

private:
    CheckedEntries(const std::string& trail, std::uint64_t count, const std::string& head);

    std::string m_trail;
    std::uint64_t m_count;  // of lines
    std::string m_head;     // hash of the last one; empty: they do not follow each other
    std::string m_previous = std::string(64, '0');
    qel::TrailReader m_reader;
    std::uint64_t m_lines = 0, m_passed = 0;
};

}  // namespace tool
