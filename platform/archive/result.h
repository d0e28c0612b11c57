#pragma once

#include <concepts>
#include <new>
#include <utility>

#include "qellib10/platform/archive/archive_exception.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/file_exception.h"

namespace qel {

/// The one place where an operation's inner failures become its result: what @p body returns, or 0 when it threw one of
/// the four. Anything else that is thrown is a defect of ours and passes through.
template <std::invocable Body> int AsResult(Body&& body) {
    try {
        return std::forward<Body>(body)();
    } catch (const CFileException&) {     // the system refused
    } catch (const CArchiveException&) {  // the archive is damaged
    } catch (const DataError&) {          // a format's own check failed
    } catch (const std::bad_alloc&) {     // memory ran out, perhaps by the length that a file claims
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
