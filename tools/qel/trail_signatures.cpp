#include "trail_signatures.h"

#include <algorithm>

namespace tool {
namespace {

struct Kind {
    const char* name;
    Status status;
};
// In the order of qel::SignatureFault.
constexpr Kind kKinds[] = {
    {"malformed", kBadSignature},
    {"person's key", kUnknownPerson},
    {"changed", kBadSignature},
    {"unknown person's key", kUnknownPerson},
    {"ended person's key", kUnknownPerson},
    {"repeated", kBadSignature},
    {"other trail", kBadSignature},
    {"other entry", kBadSignature},
    {"not allowed", kAgainstRules},
    {"same person", kAgainstRules},
    {"order", kAgainstRules},
    {"changed version", kAgainstRules},
    {"other name", kBadSignature},
    {"not registered", kAgainstRules},
};

const Kind& KindOf(const qel::SignatureFinding& finding) { return kKinds[static_cast<std::size_t>(finding.fault)]; }

}  // namespace

qel::SigningRules RuleOptions::Rules() const {
    qel::SigningRules rules;
    rules.approvals = approvals;
    rules.approvalNeedsReview = approvalNeedsReview;
    rules.authorMayApprove = authorMayApprove;
    return rules;
}

void AddRuleOptions(CLI::App& command, RuleOptions& options) {
    command.add_option("--approvals", options.approvals, "So many people have to approve (1)")
        ->transform(WholeNumber(0, 100))
        ->type_name("N");
    command.add_flag("--approval-needs-review", options.approvalNeedsReview, "\"approved\" needs \"reviewed\" before");
    command.add_flag("--author-may-approve", options.authorMayApprove, "An author may approve");
}

void AddSignatureOptions(CLI::App& verify, SignatureOptions& options) {
    verify.add_flag("--signatures", options.isAsked, "Report on signatures of people also where there are none");
    AddRuleOptions(verify, options.rules);
}

std::optional<qel::SignatureReport> CheckSignaturesOf(const std::string& trail, const SignatureOptions& options,
                                                      const qel::TrailReceipt& last) {
    qel::SignatureReport report;
    if (last.number > 0 && qel::CheckSignatures(Path(trail).View(), options.rules.Rules(), report, last) == 0)
        throw Named(trail, LastRefusal("cannot be read", kMalformed));
    // Lines that are no entries are a finding of the trail itself.
    const bool isThere = report.signatures > 0 || std::ranges::any_of(report.findings, [](const auto& finding) {
                             return finding.fault != qel::SignatureFault::kMalformed;
                         });
    return isThere || options.isAsked ? std::optional(std::move(report)) : std::nullopt;
}

std::string SignaturesText(const std::string& trail, const qel::SignatureReport& report) {
    std::string text;
    for (const qel::SignatureFinding& finding : report.findings)
        text += Shown(trail) + ": entry " + std::to_string(finding.entry) + ": signature: " + KindOf(finding).name +
                ": " + Shown(finding.text) + (finding.user.empty() ? "" : ", " + Shown(finding.user)) + '\n';
    return text + Count(report.signatures, "signature", "signatures") + ": " +
           Count(report.findingCount, "finding", "findings") + '\n';
}

Json SignaturesJson(const std::string& trail, const qel::SignatureReport& report) {
    Json json{{"count", report.signatures}, {"findingCount", report.findingCount}, {"findings", Json::array()}};
    for (const qel::SignatureFinding& finding : report.findings)
        json["findings"].push_back({{"finding", KindOf(finding).name},
                                    {"status", static_cast<int>(KindOf(finding).status)},
                                    {"file", trail},
                                    {"entry", finding.entry},
                                    {"byte", finding.byte},
                                    {"user", finding.user},
                                    {"cabinet", finding.cabinet},
                                    {"cabinetVersion", finding.cabinetVersion},
                                    {"size", finding.size},
                                    {"sha256", finding.sha256},
                                    {"signer", finding.signer},
                                    {"detail", finding.text}});
    return json;
}

Status WorstOf(const qel::SignatureReport& report) {
    Status status = kGood;
    for (const qel::SignatureFinding& finding : report.findings) status = std::max(status, KindOf(finding).status);
    return status;
}

}  // namespace tool
