#include "qellib10/platform/failure.h"

#include <new>

#include "qellib10/platform/operation.h"

namespace qel {
namespace {

// Of the static block: a success that looks at it calls no one, in a library that was loaded later too.
[[gnu::tls_model("initial-exec")]] constinit thread_local FailureMark theMark;
[[gnu::tls_model("initial-exec")]] constinit thread_local bool theRecordIsGone = false;

struct Record {
    ~Record() { theRecordIsGone = true; }
    Failure failure;
};

// Made by the first failure; null while the thread ends.
Failure* RecordOfThread() noexcept {
    if (theRecordIsGone) return nullptr;
    static thread_local Record record;
    return &record.failure;
}

void Assign(std::string& to, std::string_view text) noexcept {
    try {
        to = text;
    } catch (const std::bad_alloc&) {
        to.clear();
    }
}

}  // namespace

FailureMark& Operation::MarkOfThread() noexcept { return theMark; }

void Operation::Refused(FailureKind otherwise, std::string_view text) noexcept {
    if (m_mark.count == m_before) {
        Failed(otherwise, "", text);
        return;
    }
    m_mark.isCurrent = true;
    Failure* const failure = RecordOfThread();
    if (failure != nullptr && m_name != nullptr) failure->operation = m_name;
}

int Operation::Failed(const Reason& reason) noexcept {
    ++m_mark.count;
    Failure* const failure = RecordOfThread();
    m_mark.isCurrent = failure != nullptr;
    if (failure == nullptr) return 0;
    failure->kind = reason.kind;
    failure->operation = m_name != nullptr ? m_name : "";
    failure->systemError = reason.systemError;
    failure->position = reason.position;
    Assign(failure->item, reason.item);
    Assign(failure->text, reason.text);
    return 0;
}

Failure LastFailure() {
    const Failure* const failure = theMark.isCurrent ? RecordOfThread() : nullptr;
    return failure != nullptr ? *failure : Failure{};
}

}  // namespace qel
