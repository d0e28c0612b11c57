#include "qellib10/runtime/check_repeat_exec.h"

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
    m_hMutex = qel::CreateNamedMutex(name).handle;
    return 0;
}
