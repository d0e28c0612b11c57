#pragma once

#include <string>

#include "demo/report/report.h"
#include "demo/result/archive_trail.h"
#include "demo/result/history.h"
#include "demo/result/session.h"

namespace titration {

/// Who may sign as what: a result is reviewed before it is approved, by people whose account says so, and never by its
/// operator.
/// @param store must outlive the rules
qel::SigningRules RulesOf(qel::UserStore& store);

struct NewUser {
    std::string name, fullName, password;
    std::string role;  // "reviewer" or "approver"
};

/// Adds an account and the person's own key, each with its entry.
/// @return what was done
/// @throws Failure
std::string AddUser(const NewUser& user, Session& session, ArchiveTrail& trail, const Installation& installation);

/// The user of the session signs a version, with the hash of its report, and enters the password for it.
/// @param meaning as in qel::signature_meaning
/// @return what was done
/// @throws Failure
std::string Sign(const std::string& meaning, DWORD version, const std::string& password, Session& session,
                 History& history, ArchiveTrail& trail, const Installation& installation, const MadeFiles& made);

}  // namespace titration
