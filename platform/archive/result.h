#pragma once

#include <concepts>
#include <new>
#include <utility>

#include "qellib10/platform/archive/archive_exception.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/platform/storage/file_failure.h"

namespace qel {

/// The one place where an operation's inner failures become its result: what @p body returns, or 0 when it threw one of
/// the four. Anything else that is thrown is a defect of ours and passes through. LastFailure has the cause then: what
/// was thrown, or what @p body recorded (Refuse), or an inner call reported, before it returned 0.
/// @param operation the public operation's name; null for a step, whose failure gets the name of its operation
/// @param about the file that a check of its bytes is about; may be null
template <std::invocable Body> int AsResult(const char* operation, const CFile* about, Body&& body) {
    Operation running(operation);
    try {
        return running.Ended(static_cast<int>(std::forward<Body>(body)()));
    } catch (const CFileException& failure) {  // the system refused
        return FailedBy(running, failure);
    } catch (const CArchiveException& failure) {  // the archive is damaged
        return running.Failed(FailureKind::kArchive, failure.m_strFileName.View(), failure.what());
    } catch (const DataError& failure) {  // a format's own check failed
        return FailedBy(running, failure, about);
    } catch (const std::bad_alloc&) {  // memory ran out, perhaps by the length that a file claims
        return FailedByMemory(running);
    }
}

template <std::invocable Body> int AsResult(const char* operation, Body&& body) {
    return AsResult(operation, nullptr, std::forward<Body>(body));
}

/// The same of a step.
template <std::invocable Body> int AsResult(Body&& body) { return AsResult(nullptr, std::forward<Body>(body)); }

/// Whether @p step, which returns nothing, could do its work.
template <std::invocable Step> bool Succeeds(const char* operation, Step&& step) {
    return AsResult(operation, [&] {
               step();
               return 1;
           }) != 0;
}
template <std::invocable Step> bool Succeeds(Step&& step) { return Succeeds(nullptr, std::forward<Step>(step)); }

}  // namespace qel
