#include "qellib10/record/recorded_users.h"

#include <string>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/record/trail_writer.h"

namespace qel {
namespace {

std::string_view KindOf(AccountEvent event) {
    switch (event) {
        case AccountEvent::kLogon:
            return trail_kind::kLogon;
        case AccountEvent::kLogonRefused:
            return trail_kind::kLogonRefused;
        case AccountEvent::kLogout:
            return trail_kind::kLogout;
        case AccountEvent::kLocked:
            return trail_kind::kAccountLocked;
        case AccountEvent::kAdded:
            return trail_kind::kAccountAdded;
        case AccountEvent::kRemoved:
            return trail_kind::kAccountRemoved;
        case AccountEvent::kRenamed:
            return trail_kind::kAccountRenamed;
        case AccountEvent::kRightsChanged:
            return trail_kind::kRightsChanged;
        case AccountEvent::kPasswordChanged:
            return trail_kind::kPasswordChanged;
        case AccountEvent::kAutomaticLogonChanged:
            return trail_kind::kAutomaticLogonChanged;
        case AccountEvent::kPasswordRefused:
            return trail_kind::kPasswordRefused;
    }
    throw DataError("an event of accounts that is not known");
}

// These are done by, or to, the account's own user, and change nothing that somebody decides.
bool IsOfLogon(AccountEvent event) { return event <= AccountEvent::kLocked; }

constexpr const char* kOwnChange = "by its user";

std::string Utf8(const CString& text) { return ToUtf8(text.View()); }

}  // namespace

struct RecordedUsers::State {
    TrailWriter& trail;
    std::string reason = {};
};

RecordedUsers::RecordedUsers(Trail& trail) : m_state(new State{WriterOf(trail)}) {}
RecordedUsers::~RecordedUsers() = default;

void RecordedUsers::SetReason(std::string_view reason) { m_state->reason = reason; }

bool RecordedUsers::Enter(const AccountChange& change) {
    return Succeeds("RecordedUsers::Enter", [&] {
        TrailRecord record;
        record.action = KindOf(change.event);
        record.user = Utf8(IsOfLogon(change.event) ? change.account : change.user);
        if (!IsOfLogon(change.event)) {
            record.object = Utf8(change.account);
            if (!change.item.IsEmpty()) record.object += ": " + Utf8(change.item);
            record.before = Utf8(change.before);
            record.after = Utf8(change.after);
            record.reason = m_state->reason;
        }
        if (!change.reason.IsEmpty()) {
            record.reason = Utf8(change.reason);
        } else if (change.event == AccountEvent::kPasswordChanged && record.reason.empty()) {
            if (change.user != change.account) throw DataError("a password that somebody else sets needs a reason");
            record.reason = kOwnChange;
        }
        m_state->trail.Append(record);
        m_state->trail.Flush();
    });
}

}  // namespace qel
