#include "trail_report.h"

#include <algorithm>

#include "trail_text.h"

namespace tool {
namespace {

// In the order of qel::TrailFault.
constexpr Status kStatuses[] = {kCut,   kMalformed, kInconsistent, kChanged,    kUnknownSigner, kEndedKey,
                                kClock, kMissing,   kStamp,        kRevokedKey, kOtherTrail,    kNotYetValid};

std::string FindingsText(const VerifiedTrail& trail) {
    std::string text;
    if (trail.failure)
        text += Shown(trail.file) + ": " + NameOf(trail.failure->ExitStatus()) + ": " + trail.failure->what() + '\n';
    for (const qel::TrailFinding& finding : trail.report.findings)
        text += Shown(trail.file) + ": entry " + std::to_string(finding.entry) + ", byte " +
                std::to_string(finding.byte) + ": " + NameOf(StatusOf(finding)) + ": " + Shown(finding.text) +
                (finding.signer.empty() ? "" : ", " + finding.signer) + '\n';
    return text;
}

std::string EndText(const VerifiedTrail& trail) {
    const qel::TrailReport& report = trail.report;
    std::string text = trail.signatures ? SignaturesText(trail.file, *trail.signatures) : "";
    if (trail.failure) return text;
    text += ResultText(report) + '\n';
    if (report.isBeingWritten) text += "another entry is still being written\n";
    if (report.pinned < report.entries) text += "entry " + std::to_string(report.entries) + ", nothing later known\n";
    if (report.stamped > 0)
        text += "entry " + std::to_string(report.stamped) + " was there at " + qel::TrailTimeText(report.stampTime) +
                ", as a time stamp shows\n";
    if (report.clockSet > 0)
        text += Count(report.clockSet, "entry says", "entries say") + " that the clock was set, the first is entry " +
                std::to_string(report.firstClockSet) + '\n';
    if (report.entries > 0) text += "trail " + report.trailId + ", last entry " + report.head + '\n';
    return text;
}

Json FindingJson(const std::string& trail, const qel::TrailFinding& finding) {
    return {{"finding", NameOf(StatusOf(finding))},
            {"status", static_cast<int>(StatusOf(finding))},
            {"file", trail},
            {"entry", finding.entry},
            {"byte", finding.byte},
            {"lastMissing", finding.lastMissing},
            {"signer", finding.signer},
            {"cabinet", finding.cabinet},
            {"cabinetVersion", finding.cabinetVersion},
            {"size", finding.size},
            {"sha256", finding.sha256},
            {"detail", finding.text}};
}

Json TrailJson(const VerifiedTrail& trail) {
    const qel::TrailReport& report = trail.report;
    Json json{{"file", trail.file},
              {"trail", report.trailId},
              {"entries", report.entries},
              {"head", report.head},
              {"pinned", report.pinned},
              {"consistent", report.findingCount == 0 && !trail.failure},
              {"anchored", report.isAnchored},
              {"unanchored", report.unanchored},
              {"beingWritten", report.isBeingWritten},
              {"stamped", report.stamped},
              {"stampTime", report.stamped > 0 ? Json(qel::TrailTimeText(report.stampTime)) : Json(nullptr)},
              {"clockSet", report.clockSet},
              {"firstClockSet", report.firstClockSet},
              {"findingCount", report.findingCount},
              {"findings", Json::array()}};
    for (const qel::TrailFinding& finding : report.findings)
        json["findings"].push_back(FindingJson(trail.file, finding));
    if (trail.failure)
        json["failure"] = {{"finding", NameOf(trail.failure->ExitStatus())},
                           {"status", static_cast<int>(trail.failure->ExitStatus())},
                           {"detail", trail.failure->what()}};
    if (trail.signatures) json["signatures"] = SignaturesJson(trail.file, *trail.signatures);
    return json;
}

Status StatusOfTrail(const VerifiedTrail& trail) {
    const Status status = trail.failure ? trail.failure->ExitStatus() : StatusOf(trail.report);
    const Status ofSignatures = trail.signatures ? WorstOf(*trail.signatures) : kGood;
    return IsFinding(status) || ofSignatures == kGood ? std::max(status, ofSignatures) : ofSignatures;
}

}  // namespace

Status StatusOf(const qel::TrailFinding& finding) { return kStatuses[static_cast<std::size_t>(finding.fault)]; }

Status StatusOf(const qel::TrailReport& report) {
    Status status = kGood;
    for (const qel::TrailFinding& finding : report.findings) status = std::max(status, StatusOf(finding));
    return status == kGood && !report.isAnchored ? kNotAnchored : status;
}

Status StatusOf(const VerifiedChain& chain) {
    Status worst = kGood, loose = kGood;
    for (const VerifiedTrail& trail : chain.trails) {
        const Status status = StatusOfTrail(trail);
        (IsFinding(status) ? worst : loose) = std::max(IsFinding(status) ? worst : loose, status);
    }
    for (const ChainFinding& finding : chain.findings) worst = std::max(worst, finding.status);
    return worst != kGood ? worst : loose;
}

std::string VerifiedText(const std::vector<VerifiedChain>& chains, const std::optional<ArchiveReport>& archive) {
    std::string text;
    for (const VerifiedChain& chain : chains) {
        for (const VerifiedTrail& trail : chain.trails) text += FindingsText(trail);
        for (const ChainFinding& finding : chain.findings)
            text += Shown(finding.file) + ": " + NameOf(finding.status) + ": " + Shown(finding.detail) + '\n';
    }
    if (archive) text += ArchiveText(*archive);
    for (const VerifiedChain& chain : chains)
        for (const VerifiedTrail& trail : chain.trails) text += EndText(trail);
    return text;
}

Json ChainJson(const VerifiedChain& chain) {
    Json json = TrailJson(chain.trails.back());
    json["before"] = Json::array();
    for (std::size_t i = 0; i + 1 < chain.trails.size(); ++i) json["before"].push_back(TrailJson(chain.trails[i]));
    json["chainFindings"] = Json::array();
    for (const ChainFinding& finding : chain.findings)
        json["chainFindings"].push_back({{"finding", NameOf(finding.status)},
                                         {"status", static_cast<int>(finding.status)},
                                         {"file", finding.file},
                                         {"trail", finding.trail},
                                         {"entry", finding.entry},
                                         {"sha256", finding.sha256},
                                         {"detail", finding.detail}});
    return json;
}

}  // namespace tool
