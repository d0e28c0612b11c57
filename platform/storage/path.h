#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

// Paths of this library are text in the process's code page, at most 259 bytes, with the backslash as separator; a
// slash works as well. For a system call they become POSIX paths in UTF-8:
//
//     C:\data\a.txt, C:a.txt     $QELLIB10_DRIVE_C/data/a.txt, $QELLIB10_DRIVE_C/a.txt; unset: "/"
//     \\server\share\a.txt       $QELLIB10_NET_ROOT/server/share/a.txt; unset: "/net"
//     \tmp\a.txt, dir/a.txt      /tmp/a.txt, dir/a.txt
//
// "." and ".." are removed in the text, before links are followed; ".." at a root stays at the root. Names must match
// exactly: names that differ in case are different names. A drive has no current folder of its own. Device names (NUL,
// CON) are ordinary names.
//
// If the code page cannot hold a name on disk (or the name holds a backslash, `?` or `*`), each such byte is shown as
// `?` and two upper-case hexadecimal digits, and the file is found under that text. `?` is in no other name.
namespace qel {

/// @throws CFileException (badPath): 3 for the empty path, 53 for a network path without a share, 123 for an invalid
/// name, 206 for 260 bytes and more.
QELLIB10_API std::string ToPosixPath(std::string_view path);

/// The way back. Uses the longest QELLIB10_DRIVE_X or QELLIB10_NET_ROOT that @p posixPath starts with, else puts `\`
/// before it. ToPosixPath returns @p posixPath again if the length allows it.
QELLIB10_API CString ToLibraryPath(std::string_view posixPath);

/// One name within a folder. Both directions give the same bytes again.
/// @throws CFileException (badPath, 123)
QELLIB10_API std::string ToPosixName(std::string_view name);
QELLIB10_API CString ToLibraryName(std::string_view posixName);

/// @p path made absolute with the current folder, with backslashes only and without "." and "..".
/// @throws CFileException like ToPosixPath, or when the current folder no longer exists
QELLIB10_API CString FullPath(std::string_view path);

/// The process's current folder; it ends with a separator only if it is a root.
/// @throws CFileException when it no longer exists
QELLIB10_API CString CurrentFolder();

}  // namespace qel
