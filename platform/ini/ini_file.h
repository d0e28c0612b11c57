#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

// Settings in INI files, with the platform's results and, in what is written, the platform's bytes. A file name without
// a folder means the Windows folder (qel::WindowsFolder). Nothing is thrown but std::bad_alloc; safe from any thread.
//
//     [section]
//     key = value            names match without regard to case, the first of a name counts
//     key="  value "         a pair of quotation marks goes when it is read, the blanks stay
//     ; text                 comment
//
// Files are text of the process's code page; a UTF-8 mark at the beginning is skipped and kept. UTF-16 files are read
// but never written. Files above 32 MiB are neither read nor written.
//
// A write replaces the file as a whole, under a lock: readers see the old file or the new one, and of two processes
// that write different keys both win. It waits some seconds for others that write, or hold the file open. A file in a
// folder that the caller may not write is written in place: readers may find a part of the new text for a moment, and
// after a crash for good. Through a link to a file that is not there yet that file is made.
namespace qel {

/// The value of a key as a text of at most @p size - 1 bytes that splits no character, or @p defaultValue (null: the
/// empty text), trailing blanks cut, when section or key is missing or the file cannot be read. An empty value gives
/// the empty text.
/// @param key null: the names of all keys of the section; @param section null: the names of all sections. Each name
/// is followed by a zero.
QELLIB10_API std::string ReadProfileString(const char* section, const char* key, const char* defaultValue, DWORD size,
                                           const char* file);

/// All lines of a section but comments, each with a zero behind it and entries as name, equals sign and value; empty
/// when file or section is missing. What needs more than @p size - 2 bytes is cut, at whole characters, and filled up
/// with zeros to that length, which so says that the buffer was too small.
/// @return none when there is a file that cannot be read
QELLIB10_API std::optional<std::string> ReadProfileSection(const char* section, DWORD size, const char* file);

/// Sets a key; a null @p value deletes it, a null @p key deletes the section. Deleting what is missing succeeds.
/// @return false, and nothing is written, without a section, for a text with a line end in it or a name that would not
/// be found again, and when the file cannot be written; its folder must exist
QELLIB10_API bool WriteProfileString(const char* section, const char* key, const char* value, const char* file);

/// Puts @p entry, a line of the form name=value, behind the last one of the section; others of its name stay.
/// @return as WriteProfileString
QELLIB10_API bool AddProfileEntry(const char* section, std::string_view entry, const char* file);

}  // namespace qel
