#pragma once

#include <optional>
#include <string>

#include <qellib10/record.h>

#include "tool.h"

// What people have signed in a trail, as qel trail verify reports it.
namespace tool {

struct RuleOptions {
    unsigned approvals = 1;
    bool approvalNeedsReview = false, authorMayApprove = false;

    qel::SigningRules Rules() const;
};

void AddRuleOptions(CLI::App& command, RuleOptions& options);

struct SignatureOptions {
    bool isAsked = false;
    RuleOptions rules;
};

/// --signatures and the rules.
void AddSignatureOptions(CLI::App& verify, SignatureOptions& options);

/// @param last the entry that has to be the last one; number 0: none counts
/// @return nothing for a trail without signatures, unless they were asked for. @throws Failure
std::optional<qel::SignatureReport> CheckSignaturesOf(const std::string& trail, const SignatureOptions& options,
                                                      const qel::TrailReceipt& last);

std::string SignaturesText(const std::string& trail, const qel::SignatureReport& report);
Json SignaturesJson(const std::string& trail, const qel::SignatureReport& report);
/// That of the worst finding.
Status WorstOf(const qel::SignatureReport& report);

}  // namespace tool
