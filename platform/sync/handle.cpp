#include "qellib10/platform/sync/handle.h"

#include "qellib10/platform/sync/last_error.h"
#include "qellib10/platform/sync/object_table.h"

namespace qel {
namespace {

thread_local DWORD lastError = 0;

}  // namespace

DWORD LastError() { return lastError; }
void SetLastError(DWORD code) { lastError = code; }

bool CloseHandle(HANDLE handle) {
    return RunWithLastError([&] { return ObjectTable::Get().Close(handle), true; }, false);
}

}  // namespace qel
