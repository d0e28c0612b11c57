#include "qellib10/record/account_records.h"

#include <algorithm>
#include <set>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/record/trail_chain.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_line.h"
#include "qellib10/user/account_rights.h"

namespace qel {
namespace {

using Kind = AccountDifference::Kind;

std::string Utf8(const CString& text) { return ToUtf8(text.View()); }

// Of what is named by an account and an item: entries have both in their object.
std::string Start(const std::string& account) { return account + ": "; }

}  // namespace

int AccountRecords::Read(std::string_view trailPath, const TrailReceipt& last) {
    m_names.clear();
    m_rights.clear();
    return ReadOn(trailPath, last);
}

int AccountRecords::ReadOn(std::string_view trailPath, const TrailReceipt& last) {
    return Succeeds("AccountRecords::Read",
                    [&] { ReadChecked(trailPath, last, [this](std::string_view line) { Take(line); }); })
               ? 1
               : 0;
}

void AccountRecords::Take(std::string_view line) {
    constexpr std::string_view kKinds[] = {trail_kind::kAccountAdded, trail_kind::kAccountRemoved,
                                           trail_kind::kAccountRenamed, trail_kind::kRightsChanged};
    // Taking each line apart would take as long as checking the trail does.
    const auto has = [&](std::string_view kind) {
        return line.find("\"action\":\"" + std::string(kind) + '"') != std::string_view::npos;
    };
    if (std::ranges::none_of(kKinds, has)) return;
    TrailEntry entry;
    try {
        entry = ReadEntry(line).entry;
    } catch (const DataError&) {  // CheckTrail reports it
        return;
    }
    const Recorded recorded{entry.after, entry.number};
    if (entry.action == trail_kind::kRightsChanged) {
        m_rights[entry.object] = recorded;
    } else if (entry.action == trail_kind::kAccountRemoved) {
        m_names.erase(entry.object);
        std::erase_if(m_rights, [&](const auto& right) { return right.first.starts_with(Start(entry.object)); });
    } else if (entry.action == trail_kind::kAccountAdded || entry.action == trail_kind::kAccountRenamed) {
        m_names[entry.object] = recorded;
    }
}

void AccountRecords::CompareOne(const std::string& account, const CUserInfo& found,
                                std::vector<AccountDifference>& out) const {
    const auto name = m_names.find(account);
    if (name == m_names.end()) {
        out.push_back({.kind = Kind::kNeverRecorded, .account = account});
        return;
    }
    const auto add = [&](Kind kind, const std::string& item, const Recorded& recorded, const std::string& level) {
        if (recorded.text != level) out.push_back({kind, account, item, recorded.text, level, recorded.entry});
    };
    add(Kind::kName, "", name->second, Utf8(found.GetUserFullname()));
    std::set<std::string> items;
    for (const AccountRight& right : RightsOf(found)) {
        const std::string item = Utf8(right.item);
        if (!items.insert(item).second) continue;
        const auto recorded = m_rights.find(Start(account) + item);
        add(Kind::kRight, item, recorded != m_rights.end() ? recorded->second : Recorded(), Utf8(right.level));
    }
    const std::string start = Start(account);
    for (auto right = m_rights.lower_bound(start); right != m_rights.end() && right->first.starts_with(start);
         ++right) {
        const std::string item = right->first.substr(start.size());
        if (!items.contains(item)) add(Kind::kRight, item, right->second, "");
    }
}

std::optional<std::vector<AccountDifference>> AccountRecords::Compare(CClassAgentConnectInterface& store) const {
    std::vector<AccountDifference> differences;
    const bool isRead =
        AsResult("AccountRecords::Compare", [&] {
            std::set<std::string> there;
            if (store.ReloadUserList() == 0) return 0;
            const int count = store.GetUserCount();
            for (int i = 0; i < count; ++i) {
                const CString name = store.GetUserName(i);
                CUserInfo found;
                if (store.GetUserInfo(name, &found) == 0) return 0;
                there.insert(Utf8(name));
                CompareOne(Utf8(name), found, differences);
            }
            for (const auto& [account, name] : m_names) {
                if (!there.contains(account))
                    differences.push_back(
                        {.kind = Kind::kMissing, .account = account, .recorded = name.text, .entry = name.entry});
            }
            return count >= 0 ? 1 : 0;
        }) != 0;
    return isRead ? std::optional(std::move(differences)) : std::nullopt;
}

}  // namespace qel
