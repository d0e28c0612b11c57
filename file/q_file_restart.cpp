#include <cstring>
#include <optional>

#include "qellib10/file/q_file.h"
#include "qellib10/file/restart_file.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/restart/restart_queue.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/temporary_name.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/runtime/system_info.h"

namespace {

constexpr int kDoneNow = 0, kDelayed = 1, kNoShortName = -1, kRefused = -2, kNotMoved = -3;

using qel::Succeeds;

// @return whether it is gone; not if the system does not even show whether it exists
bool DeleteIfThere(const CString& file) {
    try {
        qel::DeleteFile(file.View());
        return true;
    } catch (const CFileException& failure) {
        return qel::IsMissing(failure);
    }
}

// Moves @p source to a new name next to @p target, with the rights that it would have at @p target. Empty on failure:
// @p source has then not moved.
CString MoveBeside(const CString& source, const CString& target) {
    CString name;
    const bool moved = Succeeds([&] {
        const CString full = qel::FullPath(target.View());
        name = qel::TemporaryName(full.View().substr(0, qel::NameStart(full.View())), "");
        qel::DeleteFile(name.View());  // the copy creates it again, with its rights
        qel::CopyToWait(source.View(), name.View(), target.View());
        Succeeds([&] { qel::DeleteFile(source.View()); });  // it does no harm if it stays
    });
    return moved ? name : CString();
}

// Files have no second, shorter name here: the short one is the full one, and only an existing file has one.
std::optional<CString> ShortName(const CString& name) {
    if (!CQFile::IsExist(name)) {
        qel::Refuse(qel::FailureKind::kMissing, name.View(), "no such file");
        return std::nullopt;
    }
    return qel::FullPath(name.View());
}

void CopyName(const CString& name, char* buffer, int size) {
    const std::string_view fitting = qel::LeftWhole(name.View(), static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, fitting.data(), fitting.size());
    buffer[fitting.size()] = '\0';
}

int PutMoveIntoRestartFile(const CString& source, const CString& target) {
    const std::optional<CString> shortTarget = ShortName(target);
    const std::optional<CString> shortSource = ShortName(source);
    if (!shortTarget || !shortSource) return kNoShortName;
    return qel::AddMoveToRestartFile(*shortSource, *shortTarget) ? kDelayed : kRefused;
}

}  // namespace

int CQFile::MoveFileReboot(const char* source, const char* target, char* tempName, int tempNameSize) {
    if (MoveFileA(source, target, 1)) return kDoneNow;
    int result = kNotMoved;
    qel::AsResult("CQFile::MoveFileReboot", [&] {
        const CString to(target);
        const CString waiting = MoveBeside(CString(source), to);
        if (waiting.IsEmpty()) return false;
        result = kRefused;
        if (tempName != nullptr && tempNameSize > 0) CopyName(waiting, tempName, tempNameSize);
        if (CSystemInfo::IsWinNT()) {
            qel::MoveFileDelayed(waiting.View(), to.View());
            result = kDelayed;
        } else {
            result = PutMoveIntoRestartFile(waiting, to);
        }
        return result == kDelayed;
    });
    return result;
}

int CQFile::DeleteFileReboot(const char* name, int tryNow) {
    int result = kRefused;
    qel::AsResult("CQFile::DeleteFileReboot", [&] {
        const CString file(name);
        if (tryNow != 0 && DeleteIfThere(file)) {
            result = kDoneNow;
        } else if (CSystemInfo::IsWinNT()) {
            qel::DeleteFileDelayed(file.View());
            result = kDelayed;
        } else if (qel::AddDeletionToRestartFile(file)) {
            result = kDelayed;
        }
        return result != kRefused;
    });
    return result;
}
