#include "qellib10/runtime/check_repeat_exec.h"

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/handle.h"
#include "qellib10/platform/sync/named_mutex.h"

CCheckRepeatExec::~CCheckRepeatExec() {
    if (m_hMutex != nullptr) qel::CloseHandle(m_hMutex);
}

int CCheckRepeatExec::CheckRepeatExecute(const char* name) {
    if (const HANDLE other = qel::OpenNamedMutex(name)) {
        qel::CloseHandle(other);
        return 1;
    }
    const bool isMissing = qel::LastError() == qel::kFileMissing;
    const qel::OpenedObject mark = qel::CreateNamedMutex(name);
    // Another process's mark that this process could not open now, for example because it has too many open files. One
    // that was missing before has been set since: both instances are then the first, as they have always been. Whoever
    // sets the mark gets 0, so they do not both end.
    const bool isAnothers = mark.existed && !isMissing;
    if (mark.handle == nullptr || isAnothers) {
        if (isAnothers) qel::CloseHandle(mark.handle);
        return 1;
    }
    m_hMutex = mark.handle;
    return 0;
}
