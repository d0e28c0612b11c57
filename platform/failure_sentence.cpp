#include "qellib10/platform/failure_sentence.h"

namespace qel {

std::string FailureSentence(const Failure& why, std::string_view otherwise) {
    const bool isKnown = why.kind != FailureKind::kNone && why.kind != FailureKind::kRefused && !why.text.empty();
    return isKnown ? why.text : std::string(otherwise);
}

}  // namespace qel
