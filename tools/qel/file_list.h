#pragma once

#include <map>
#include <string>
#include <vector>

#include <qellib10/record.h>

#include "tool.h"

// Lists of the files of a tree, to compare it with later where no trail says what was there.
//
//     qel-file-list 1
//     SHA-256, size, kind and path of each file, blanks between them, in the order of their paths
//     end 2
//
// The last line has the number of files, since a list may be cut. Bytes of a path other than letters, digits, / . _ and
// - are %XX, with capital digits. A sealed file's kind has "sealed-" before it.
namespace tool {

struct ListedFile {
    std::string kind;
    qel::FileHash hash;
};
/// By their paths from the tree's folder on.
using FileList = std::map<std::string, ListedFile>;

/// The form of a path in a list, and back; a text in any other form stays as it is.
std::string EscapedPath(std::string_view path);
std::string UnescapedPath(std::string_view text);

/// @throws Failure
void SaveList(const std::string& target, bool mayReplace, const FileList& files);
/// @throws Failure kMalformed, with the line, for anything that SaveList does not write
FileList ReadList(const std::string& path);

}  // namespace tool
