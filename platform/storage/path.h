#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

// Paths of this library are text in the process's code page, at most 259 bytes, their separator the backslash; a slash
// works as well. At the moment of a system call they become POSIX paths in UTF-8:
//
//     C:\data\a.txt, C:a.txt     $QELLIB10_DRIVE_C/data/a.txt, $QELLIB10_DRIVE_C/a.txt; unset: "/"
//     \\server\share\a.txt       $QELLIB10_NET_ROOT/server/share/a.txt; unset: "/net"
//     \tmp\a.txt, dir/a.txt      /tmp/a.txt, dir/a.txt
//
// "." and ".." are removed by text, before links are looked at; ".." at a root stays there. Look-up is exact: names
// that differ in case are two names. A drive has no current folder of its own. Device names (NUL, CON) are ordinary.
//
// A name on disk that the code page cannot hold (or that holds a backslash, `?` or `*`) appears as `?` and two
// upper-case hexadecimal digits for each such byte, and is found again under that text: `?` stands in no name
// otherwise.
namespace qel {

/// @throws CFileException (badPath): 3 for the empty path, 53 for a network path without a share, 123 for a name that
/// cannot be, 206 for 260 bytes and more.
QELLIB10_API std::string ToPosixPath(std::string_view path);

/// The way back, with the longest QELLIB10_DRIVE_X or QELLIB10_NET_ROOT that begins @p posixPath, else `\` in front.
/// ToPosixPath gives @p posixPath again where its length allows it.
QELLIB10_API CString ToLibraryPath(std::string_view posixPath);

/// One name within a folder. Both ways give the same bytes again.
/// @throws CFileException (badPath, 123)
QELLIB10_API std::string ToPosixName(std::string_view name);
QELLIB10_API CString ToLibraryName(std::string_view posixName);

/// @p path with the current folder put in front of a relative one, backslashes throughout, "." and ".." removed.
/// @throws CFileException as ToPosixPath, or when the current folder is gone
QELLIB10_API CString FullPath(std::string_view path);

/// The process's current folder; no separator at its end but for a root.
/// @throws CFileException when it is gone
QELLIB10_API CString CurrentFolder();

}  // namespace qel
