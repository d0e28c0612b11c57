#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/ini/ini_line.h"
#include "qellib10/platform/types.h"

namespace qel {

/// An INI file made ready for look-ups, in the process's code page of that moment. Never changes, so threads share it.
/// Names match without regard to case; blanks at their ends do not count. Of sections with one name the first counts,
/// and in it of entries with one name the first.
class IniIndex {
public:
    /// Bytes of the largest file that is read; no settings come near it.
    static constexpr std::size_t kLargestFile = 32 << 20;

    /// UTF-16 (a file that begins with FF FE) is converted to the code page.
    /// @param bytes at most kLargestFile
    explicit IniIndex(std::string bytes);
    IniIndex(const IniIndex&) = delete;
    IniIndex& operator=(const IniIndex&) = delete;

    /// False once the process's code page has been changed.
    bool IsOfCurrentPage() const;
    /// Whether indexing @p bytes now would give the same.
    bool Matches(std::string_view bytes) const { return IsOfCurrentPage() && m_text == bytes; }
    /// Bytes of memory that it takes.
    std::size_t Cost() const { return m_text.size() + m_slots.size() * sizeof(Slot); }

    /// The value of an entry, without a pair of quotation marks (' or ") around it.
    std::optional<std::string_view> Value(std::string_view section, std::string_view key) const;

    /// What stands in a section, comments left out, each with a zero behind it: name, equals sign and value, or the
    /// whole of another line.
    std::string Entries(std::string_view section) const;
    /// The names of a section's entries, or of all sections, each with a zero behind it.
    std::string Keys(std::string_view section) const;
    std::string Sections() const;

private:
    // A line that can be asked for, under its name's hash and its section: where the header begins.
    struct Slot {
        std::uint64_t key;
        std::uint32_t line;
    };

    static std::uint64_t KeyOf(std::uint32_t section, std::string_view name);
    void Collect();
    void Sort();
    IniLine LineAt(std::uint32_t at) const { return *IniLines(m_text, at).Next(); }
    std::optional<IniLine> Find(std::uint32_t section, std::string_view name) const;
    template <class Take> void ForEachLine(std::string_view section, Take&& take) const;

    std::string m_text;
    UINT m_page;
    std::vector<Slot> m_slots;  // in order of key, name and line, so that the line that counts comes first
};

}  // namespace qel
