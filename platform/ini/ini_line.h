#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

// The lines of an INI file, text of the code page. A line ends at LF; blanks (09-0D, 20, 1A) at both ends of a line, a
// name and a value are ignored:
//
//     ; text           comment
//     [name]           begins a section; the name runs to the last bracket of the line
//     name = value     an entry, split at the first equals sign
//     anything else    belongs to its section without being an entry that can be asked for
//
// A UTF-8 mark before the first line is not part of it.
namespace qel {

struct IniLine {
    enum class Kind { Blank, Comment, Section, Entry, Other };

    Kind kind = Kind::Blank;
    std::string_view name;   // of a section or an entry; for Other the line
    std::string_view value;  // of an entry, quotation marks included
    std::size_t begin = 0;   // positions in the file: of the line,
    std::size_t end = 0;     // of its line end (LF, or CR and LF),
    std::size_t next = 0;    // and of the next line

    /// Whether the line is of kind @p wanted and its name is @p itsName, without regard to case.
    bool Is(Kind wanted, std::string_view itsName) const;
};

/// Reads one line after another.
class IniLines {
public:
    explicit IniLines(std::string_view bytes);
    /// @param at the start of a line
    IniLines(std::string_view bytes, std::size_t at) : m_bytes(bytes), m_at(at) {}

    std::optional<IniLine> Next();

private:
    std::string_view m_bytes;
    std::size_t m_at;
};

/// Whether the file is UTF-16, which is read but never written.
bool IsUtf16Ini(std::string_view bytes);

/// Without blanks at both ends.
std::string_view TrimIni(std::string_view text);

}  // namespace qel
