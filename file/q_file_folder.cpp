#include <string>
#include <vector>

#include "qellib10/file/q_file.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/delete_tree.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/find_files.h"
#include "qellib10/platform/storage/folder_walk.h"
#include "qellib10/platform/storage/make_folders.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"

namespace {

bool TryDelete(std::string_view file) {
    return qel::Succeeds([&] { qel::DeleteFile(file); });
}

std::vector<qel::FoundFile> Matching(std::string_view pattern) {
    try {
        return qel::FindFiles(pattern);
    } catch (const CFileException&) {  // if nothing can be listed, nothing matches
        return {};
    }
}

}  // namespace

int CQFile::CreateDirectories(const char* path) {
    return qel::AsResult("CQFile::CreateDirectories", [&] {
        const CString whole(path);
        if (whole.GetLength() >= MAX_PATH) qel::ThrowCode(qel::kPathTooLong, whole.View());
        const qel::FolderRoute route(whole.View());
        qel::FolderWalk walk(route.start);
        if (qel::MakeFolders(walk, route.names)) return 1;
        walk.MakeCurrent();
        return 0;
    });
}

int CQFile::DelTree(const char* folder) {
    return qel::Succeeds("CQFile::DelTree", [&] { qel::DeleteTree(CString(folder).View()); });
}

int CQFile::DeleteFiles(const char* pattern) {
    return qel::AsResult("CQFile::DeleteFiles", [&] {
        const CString whole(pattern);
        const std::string folder(whole.View().substr(0, qel::NameStart(whole.View())));
        int result = 1;
        for (const qel::FoundFile& file : Matching(whole.View())) {
            if (!file.isFolder && !TryDelete(folder + std::string(file.name.View()))) result = 0;
        }
        return result;
    });
}

int CQFile::MoveFileA(const char* source, const char* target, int overwrite) {
    return qel::Succeeds("CQFile::MoveFileA", [&] {
        const CString from(source);
        const CString to(target);
        qel::MakeFolders(to.View().substr(0, qel::NameStart(to.View())));
        qel::CopyToMove(from.View(), to.View(), overwrite == 0);
        TryDelete(from.View());
    });
}
