#include <algorithm>
#include <string_view>

#include "qellib10/file/q_file.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/text/multibyte.h"

namespace {

using qel::FindLastCharacter;

constexpr auto kNone = std::string_view::npos;

bool EndsWith(std::string_view text, char last) {
    return !text.empty() && FindLastCharacter(text, last) == text.size() - 1;
}

}  // namespace

CString CQFile::BuildFilePath(const char* folder, const char* name) {
    if (CString(folder).IsEmpty()) return name;
    return Append(folder, name, '\\');
}

CString CQFile::BuildFileName(const char* name, const char* ext) {
    if (CString(name).IsEmpty()) return {};
    return Append(name, ext, '.');
}

CString CQFile::Append(const char* a, const char* b, char sep) {
    CString joined(a);
    if (!EndsWith(joined.View(), sep)) joined += sep;
    return joined += b;
}

CString CQFile::GetFilenameFromPath(const char* path) {
    const CString whole(path);
    const std::size_t backslash = FindLastCharacter(whole.View(), '\\');
    const std::size_t separator = backslash != kNone ? backslash : FindLastCharacter(whole.View(), '/');
    return CString(whole.View().substr(separator + 1));  // npos + 1 is 0
}

CString CQFile::GetFolderFromPath(const char* path) {
    const CString whole(path);
    return CString(whole.View().substr(0, FindLastCharacter(whole.View(), '\\')));
}

// Dots and slashes are never trail bytes, so these may work by bytes.

CString CQFile::GetFileExt(const char* name) {
    const CString whole(name);
    const std::size_t dot = whole.View().rfind('.');
    return dot == kNone || dot == 0 ? whole : CString(whole.View().substr(dot + 1));
}

CString CQFile::GetFileShortExt(const char* name) {
    constexpr std::size_t kLastBytes = 4;  // the dot, and up to three after it
    const CString whole(name);
    const std::size_t size = whole.View().size();
    const std::size_t dot = whole.View().rfind('.');
    if (dot == kNone || dot == 0 || size - dot > kLastBytes) return {};
    return CString(whole.View().substr(dot + 1));
}

CString CQFile::DeleteFileExt(const char* name) {
    const CString whole(name);
    const std::size_t dot = whole.View().rfind('.');
    const std::size_t nameStart = whole.View().rfind('/') + 1;
    if (dot == kNone || dot == 0 || dot < nameStart) return whole;
    return CString(whole.View().substr(0, dot));
}

int CQFile::IsCorrectFilename(const char* name) {
    // The comma and the semicolon part names in the lists that applications keep.
    return qel::AsResult("CQFile::IsCorrectFilename", [&] { return CString(name).FindOneOf("\\/:,;*?\"<>|") < 0; });
}

int CQFile::IsDots(const char* name) {
    const std::string_view text = name != nullptr ? name : "";
    return text == "." || text == "..";
}
