#pragma once

#include <string>
#include <string_view>

namespace qel {

/// What this system's desktop reads instead of a shell link: a file `<name>.desktop`. All texts in UTF-8.
struct DesktopEntry {
    std::string name;
    std::string comment;    // empty: no comment
    std::string posixPath;  // absolute
    bool isProgram = true;  // else a folder or document, which is opened
    std::string link;       // the shell link next to it

    std::string Text() const;

    /// Whether Text made @p text: files by others are left alone.
    static bool IsOurs(std::string_view text);
};

}  // namespace qel
