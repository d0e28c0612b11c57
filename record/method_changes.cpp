#include "qellib10/record/method_changes.h"

#include "qellib10/platform/text/code_page.h"
#include "qellib10/record/trail_kind.h"

namespace qel {

std::vector<TrailRecord> MethodChanges(const CQDiffList& changes, std::string_view user, std::string_view reason) {
    std::vector<TrailRecord> records;
    CDiffItem item;
    for (int i = 0; changes.GetDiffItemIndex(i, &item) != 0; ++i) {
        records.push_back({.user = std::string(user),
                           .action = std::string(trail_kind::kMethodChanged),
                           .object = ToUtf8(item.GetName().View()),
                           .before = ToUtf8(item.GetBefore().View()),
                           .after = ToUtf8(item.GetAfter().View()),
                           .reason = std::string(reason)});
    }
    return records;
}

}  // namespace qel
