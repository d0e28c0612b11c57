#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace titration {

/// How to convert text in another encoding to UTF-8, for messages.
inline constexpr const char* kToUtf8 = "iconv -f LATIN1 -t UTF-8 (-f CP932 for Japanese)";

/// Requires a file of measured values or settings; its messages say more than the system's error.
/// @throws Failure for a name that is not in UTF-8, for a missing file, and for a folder, pipe or device
void RequireOrdinaryFile(const std::string& path);

/// The whole of a text file, without a byte order mark. UTF-16 that starts with FF FE, as spreadsheets write it, is
/// converted to UTF-8.
/// @throws Failure if it cannot be read, is larger than 64 MiB, is a spreadsheet or a compressed file, or contains zero
/// bytes
std::string ReadTextFile(const std::string& path);

/// The whole of a file.
/// @throws Failure if it cannot be read, and if it is larger than 64 MiB
std::string ReadBytes(const std::string& path);

/// Writes @p text, replacing an existing file.
/// @throws Failure if the system refuses
void WriteTextFile(const std::string& text, const std::string& path);

/// The lines of @p text, ended by LF, CR LF or CR. They point into it.
std::vector<std::string_view> Lines(std::string_view text);

}  // namespace titration
