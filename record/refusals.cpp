#include "qellib10/record/refusals.h"

#include "qellib10/platform/operation.h"
#include "qellib10/record/trail_kind.h"

namespace qel {

int Refusals::Add(TrailWriter& trail, const SignatureState& state, TrailRecord record, std::string_view typed,
                  const std::string& reason) {
    ++m_count;
    record.user = state.IsPerson(typed) ? typed : std::string_view();
    record.action = trail_kind::kSignatureRefused;
    record.reason = reason;
    trail.Append(record);
    trail.Flush();
    return Refuse(FailureKind::kRefused, "", reason);
}

}  // namespace qel
