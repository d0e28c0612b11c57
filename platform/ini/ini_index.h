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

/// An INI file prepared for look-ups, in the process's code page at that moment. Never changes, so threads share it.
/// Names match without regard to case and to blanks at their ends. Of sections with the same name the first is used,
/// and in it the first entry with a name.
class IniIndex {
public:
    /// Size of the largest file that is read; settings are never that large.
    static constexpr std::size_t kLargestFile = 32 << 20;

    /// UTF-16 (a file that starts with FF FE) is converted to the code page.
    /// @param bytes at most kLargestFile
    explicit IniIndex(std::string bytes);
    IniIndex(const IniIndex&) = delete;
    IniIndex& operator=(const IniIndex&) = delete;

    /// False after the process's code page has changed.
    bool IsOfCurrentPage() const;
    /// Whether indexing @p bytes now would give the same index.
    bool Matches(std::string_view bytes) const { return IsOfCurrentPage() && m_text == bytes; }
    /// The memory that it uses, in bytes.
    std::size_t Cost() const { return m_text.size() + m_slots.size() * sizeof(Slot); }

    /// The value of an entry, without a pair of quotation marks (' or ") around it.
    std::optional<std::string_view> Value(std::string_view section, std::string_view key) const;

    /// The lines of a section without comments, each followed by a zero: name, equals sign and value, or the whole line
    /// if it is not an entry.
    std::string Entries(std::string_view section) const;
    /// The names of a section's entries, or of all sections, each followed by a zero.
    std::string Keys(std::string_view section) const;
    std::string Sections() const;

private:
    // A line that can be looked up: the hash of its name, and the start of its section's header.
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
    std::vector<Slot> m_slots;  // sorted by key, name and line, so that the line that is used comes first
};

}  // namespace qel
