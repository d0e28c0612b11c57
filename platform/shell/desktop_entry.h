#pragma once

#include <string>
#include <string_view>

namespace qel {

/// What this system's desktop reads in place of a shell link: a file `<name>.desktop`. All texts in UTF-8.
struct DesktopEntry {
    std::string name;
    std::string comment;    // empty: none
    std::string posixPath;  // absolute
    bool isProgram = true;  // else a folder or document, which is opened
    std::string link;       // the shell link that it stands beside

    std::string Text() const;

    /// Whether @p text was made by Text: files by others are left alone.
    static bool IsOurs(std::string_view text);
};

}  // namespace qel
