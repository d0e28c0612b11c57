#pragma once

#include <string_view>
#include <utility>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"

namespace qel {

/// The part of a thread's last failure that a success has to read.
struct FailureMark {
    unsigned count = 0;      // failures so far
    bool isCurrent = false;  // the last operation failed
};

/// One run of an operation, from its first step to its result, which becomes what LastFailure reports. Nothing of it
/// throws; without memory for a text the failure has none.
class Operation {
public:
    /// @param name of a public operation, a literal; null for a step whose failure gets the name of the operation that
    /// it belongs to
    explicit Operation(const char* name) noexcept : m_name(name), m_mark(MarkOfThread()), m_before(m_mark.count) {}
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    /// The operation ends with @p result. When that is 0 its reason is the last one recorded within it, or else
    /// @p otherwise.
    /// @return the same
    template <typename Result> Result Ended(Result result, FailureKind otherwise = FailureKind::kRefused,
                                            std::string_view text = "refused") noexcept {
        if (result) {
            m_mark.isCurrent = false;
        } else {
            Refused(otherwise, text);
        }
        return result;
    }

    /// A failure of an operation within this one, if one is the last thing that happened, gets its name.
    void TakeOver() noexcept {
        if (m_mark.isCurrent && m_mark.count != m_before) Refused(FailureKind::kRefused, "");
    }

    /// As the members of Failure.
    struct Reason {
        FailureKind kind;
        std::string_view item, text;
        long systemError = -1;
        int position = -1;
    };

    /// The operation ends by a failure. @return 0
    QELLIB10_INTERNAL_API int Failed(const Reason& reason) noexcept;
    int Failed(FailureKind kind, std::string_view item, std::string_view text, long systemError = -1) noexcept {
        return Failed({.kind = kind, .item = item, .text = text, .systemError = systemError});
    }

private:
    QELLIB10_INTERNAL_API static FailureMark& MarkOfThread() noexcept;
    QELLIB10_INTERNAL_API void Refused(FailureKind otherwise, std::string_view text) noexcept;

    const char* m_name;
    FailureMark& m_mark;
    unsigned m_before;
};

/// Records why the operation that runs is about to return 0. @return 0
inline int Refuse(FailureKind kind, std::string_view item, std::string_view text, long systemError = -1) noexcept {
    return Operation(nullptr).Failed(kind, item, text, systemError);
}

/// Records that @p operation was given a null pointer for what it needs. @return 0
inline int RefuseNull(const char* operation) noexcept {
    return Operation(operation).Failed(FailureKind::kArgument, "", "a null pointer");
}

}  // namespace qel
