#pragma once

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/handle.h"
#include "qellib10/platform/sync/system_failure.h"

namespace qel {

/// The answer of @p body; @p failed when a step of it fails, whose code is then the last error.
template <typename Body, typename Answer> Answer AnswerOf(Body&& body, Answer failed) {
    try {
        return body();
    } catch (const SystemFailure& failure) {
        SetLastError(static_cast<DWORD>(failure.code));
        return failed;
    }
}

/// The same for @p body that makes an object or finds it made, which the last error tells too.
template <typename Body> OpenedObject CreatedBy(Body&& body) {
    const OpenedObject opened = AnswerOf(body, OpenedObject{});
    if (opened.handle != nullptr) SetLastError(opened.existed ? kAlreadyExists : 0);
    return opened;
}

}  // namespace qel
