#pragma once

#include <new>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/handle.h"
#include "qellib10/platform/sync/system_failure.h"

namespace qel {

/// Returns what @p body returns. When a step of it fails: sets the last error to the step's code, or to 8 without
/// memory, and returns @p failed.
template <typename Body, typename Result> Result RunWithLastError(Body&& body, Result failed) {
    try {
        return body();
    } catch (const SystemFailure& failure) {
        SetLastError(static_cast<DWORD>(failure.code));
        return failed;
    } catch (const std::bad_alloc&) {
        SetLastError(kOutOfMemory);
        return failed;
    }
}

/// The same for @p body that creates an object or opens the existing one. The last error also says which of the two.
template <typename Body> OpenedObject CreateWithLastError(Body&& body) {
    const OpenedObject opened = RunWithLastError(body, OpenedObject{});
    if (opened.handle != nullptr) SetLastError(opened.existed ? kAlreadyExists : 0);
    return opened;
}

}  // namespace qel
