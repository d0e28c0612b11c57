#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

// Settings in INI files. Results, and the bytes written, are those of the platform. A file name without a folder is in
// the Windows folder (qel::WindowsFolder). Only std::bad_alloc is thrown; safe from any thread.
//
//     [section]
//     key = value            names match without regard to case, the first of a name counts
//     key="  value "         a pair of quotation marks is removed when it is read, the blanks stay
//     ; text                 comment
//
// Files are text of the process's code page; a UTF-8 mark at the start is skipped and kept. UTF-16 files are read but
// never written. Files above 32 MiB are neither read nor written.
//
// A write replaces the file as a whole, under a lock: readers see the old file or the new one, and when two processes
// write different keys, both are kept. It waits some seconds for others that are writing or have the file open. A file
// in a folder that the caller may not write to is written in place: readers may see a part of the new text for a
// moment, and after a crash for good. A link to a file that does not exist yet creates that file.
namespace qel {

/// The value of a key as a text of at most @p size - 1 bytes, cut between characters. Returns @p defaultValue (null:
/// the empty text) without trailing blanks if section or key is missing or the file cannot be read. An empty value
/// gives the empty text.
/// @param key null: the names of all keys of the section; @param section null: the names of all sections. Each name is
/// followed by a zero.
QELLIB10_API std::string ReadProfileString(const char* section, const char* key, const char* defaultValue, DWORD size,
                                           const char* file);

/// All lines of a section except comments, each followed by a zero, entries as name, equals sign and value; empty if
/// the file or section is missing. If it does not fit in @p size - 2 bytes, it is cut between characters and filled
/// with zeros to that length, which shows that the buffer was too small.
/// @return nothing if the file exists but cannot be read
QELLIB10_API std::optional<std::string> ReadProfileSection(const char* section, DWORD size, const char* file);

/// Sets a key; a null @p value deletes it, a null @p key deletes the section. Deleting something missing succeeds.
/// @return false, and nothing is written, without a section, for a text with a line end in it, for a name that could
/// not be found again, and if the file cannot be written; its folder must exist
QELLIB10_API bool WriteProfileString(const char* section, const char* key, const char* value, const char* file);

/// Adds @p entry, a line of the form name=value, after the last line of the section; others with its name stay.
/// @return like WriteProfileString
QELLIB10_API bool AddProfileEntry(const char* section, std::string_view entry, const char* file);

}  // namespace qel
