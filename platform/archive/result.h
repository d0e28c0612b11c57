#pragma once

#include <concepts>
#include <utility>

#include "qellib10/platform/archive/archive_exception.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/file_exception.h"

namespace qel {

/// The one place where an operation's inner failures become its result: what @p body answers, or 0 when it threw one of
/// the three. Anything else that is thrown is a defect of ours, or memory that ran out, and passes through.
template <std::invocable Body> int AsResult(Body&& body) {
    try {
        return std::forward<Body>(body)();
    } catch (const CFileException&) {     // the system refused
    } catch (const CArchiveException&) {  // the archive is damaged
    } catch (const DataError&) {          // a format's own check failed
    }
    return 0;
}

/// Whether @p step, which answers nothing, could do its work.
template <std::invocable Step> bool Succeeds(Step&& step) {
    return AsResult([&] {
               step();
               return 1;
           }) != 0;
}

}  // namespace qel
