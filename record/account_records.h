#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/record/trail.h"
#include "qellib10/user/class_agent_connect_interface.h"

namespace qel {

/// In what an account of a store is not what the entries of a trail have made of it. Texts are UTF-8.
struct QELLIB10_API AccountDifference {
    enum class Kind {
        kNeverRecorded,  ///< no entry has added the account, or it was removed since
        kMissing,        ///< entries say that it is there
        kName,           ///< the name for people to read
        kRight           ///< `item`: a privilege, or the level of a function
    };

    Kind kind = Kind::kNeverRecorded;
    std::string account = {};
    std::string item = {};      ///< as AccountChange::item
    std::string recorded = {};  ///< what the entries say; empty: there is no such item
    std::string found = {};     ///< what the store has; the same
    std::uint64_t entry = 0;    ///< the last one about it; 0 if there is none
};

/// What a trail says about accounts, by the entries of qel::RecordedUsers. To notice that somebody has changed the
/// store's file itself, such as to become a manager: that makes no entry.
///
/// @code
/// qel::AccountRecords records;
/// qel::UserStoreSettings settings;
/// settings.isReadOnly = true;
/// qel::UserStore store(R"(\srv\titrator\users.db)", settings);
/// store.Connect();
/// if (records.Read(R"(\srv\archive\trail.jsonl)") == 0) return;
/// const auto differences = records.Compare(store);
/// if (!differences) std::puts(qel::LastFailure().text.c_str());
/// @endcode
///
/// As CabinetRecords it takes the trail as it is: run CheckTrail on it, too. Passwords are in no entry, so one that was
/// exchanged in the file is not seen. The trail has to have the accounts from the first one on. One thread at a time.
class QELLIB10_API AccountRecords {
public:
    /// Goes through a trail once.
    /// @param last the last entry that counts for CheckTrail, TrailReport::rightUpTo: the trail must have it, and later
    /// ones do not count. With number 0 the trail is taken as it is, so do not read one of which none counts
    /// @return 0 when it cannot be read, or is not the one that was checked; qel::LastFailure has the reason
    int Read(std::string_view trailPath, const TrailReceipt& last = {});
    /// Reads one more trail, which continues the one that was read last.
    int ReadOn(std::string_view trailPath, const TrailReceipt& last);

    /// In the order of the store's accounts, then those that are missing. An account that somebody changes meanwhile
    /// may differ.
    /// @return nothing when the store cannot be read
    std::optional<std::vector<AccountDifference>> Compare(CClassAgentConnectInterface& store) const;

private:
    struct Recorded {
        std::string text;
        std::uint64_t entry = 0;
    };

    void Take(std::string_view line);
    void CompareOne(const std::string& account, const CUserInfo& found, std::vector<AccountDifference>& out) const;

    std::map<std::string, Recorded> m_names;   // for people to read, by account
    std::map<std::string, Recorded> m_rights;  // levels, by account and item as the entries' objects
};

}  // namespace qel
