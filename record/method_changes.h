#pragma once

#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/record/trail.h"
#include "qellib10/secure/q_diff_list.h"

namespace qel {

/// The entries trail_kind::kMethodChanged that a change of a method needs: one for each item, with its value before and
/// after. An entry that only says that the method was changed leaves open what, and somebody has to compare files that
/// may be gone. Append them before the changed method is kept, so that nothing takes effect that the trail refuses.
///
/// @code
/// qel::TrailSettings settings;
/// std::shared_ptr<qel::Signer> installation;
/// CQDiffList changes;  // as the user has confirmed them
///
/// qel::Trail trail(settings, installation);
/// if (trail.Open() == 0) return;
/// for (const qel::TrailRecord& record : qel::MethodChanges(changes, "mori", "end points were passed"))
///     if (!trail.Append(record)) return;  // qel::LastFailure() says why; the method stays as it was
/// @endcode
/// @param changes texts in the code page of the process; the name of an item is the entry's object
/// @param user, reason of all entries, UTF-8; the trail takes none without a reason
/// @return in the order of the list
QELLIB10_API std::vector<TrailRecord> MethodChanges(const CQDiffList& changes, std::string_view user,
                                                    std::string_view reason);

}  // namespace qel
