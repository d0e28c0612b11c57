#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace titration {

/// How text in another encoding becomes UTF-8, for messages.
inline constexpr const char* kToUtf8 = "iconv -f LATIN1 -t UTF-8 (-f CP932 for Japanese)";

/// Why a file of measured values or settings cannot be one, in words that say more than the system's error.
/// @throws Failure for a name that is not in UTF-8, for what is not there, and for a folder, pipe or device
void RequireOrdinaryFile(const std::string& path);

/// The whole of a text file, without a byte order mark. UTF-16 that begins with FF FE, as spreadsheets write it, is
/// converted to UTF-8.
/// @throws Failure when it cannot be read, is larger than 64 MiB, or holds zero bytes
std::string ReadTextFile(const std::string& path);

/// The whole of a file.
/// @throws Failure when it cannot be read, and when it is larger than 64 MiB
std::string ReadBytes(const std::string& path);

/// Writes @p text in place of a file that is there.
/// @throws Failure when the system refuses
void WriteTextFile(const std::string& text, const std::string& path);

/// The lines of @p text, ended by LF, CR LF or CR. They point into it.
std::vector<std::string_view> Lines(std::string_view text);

/// Without @p blanks at both ends.
std::string_view Trimmed(std::string_view text, std::string_view blanks = " \t");

}  // namespace titration
