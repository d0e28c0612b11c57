#include "qellib10/record/signature_block.h"

#include <algorithm>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/text/printable_text.h"
#include "qellib10/record/person_statement_text.h"
#include "qellib10/record/signature_log.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_writer.h"

namespace qel {
namespace {

ShownSignature Shown(const SignatureLog::Entry& entry) {
    const SignedStatement read = ReadSignedStatement(entry.line.entry.statement);
    return {.meaning = read.statement.meaning,
            .name = read.statement.name,
            .user = read.statement.user,
            .time = read.statement.time,
            .key = read.signature.key.Fingerprint(),
            .reportSha256 = read.statement.reportSha256,
            .entry = entry.line.entry.number,
            .entryHash = entry.hash};
}

// An interrupted registering that was abandoned had a content of its own. A signature of another content does not
// count.
bool IsAboutContent(const TrailEntry& entry) {
    using namespace trail_kind;
    const std::string_view kinds[] = {kRegistered, kRecovered, kVersionTakenOut};
    return std::ranges::find(kinds, entry.action) != std::end(kinds);
}

SignatureBlock Read(Trail& trail, std::string_view cabinet, const RecordedVersion& version, const SigningRules& rules) {
    if (version.entry == 0) throw DataError("the version was not recorded");
    TrailWriter& writer = WriterOf(trail);
    writer.Refresh();
    SignatureBlock block{.cabinet = std::string(cabinet), .version = version, .isChanged = version.IsFinding()};
    SignatureLog log(writer.Path(), rules);
    log.CatchUp(writer.Last(), [&](const SignatureLog::Entry& entry) {
        const TrailEntry& said = entry.line.entry;
        if (said.number == version.entry && entry.hash == version.entryHash)
            block.installationKey = entry.line.signature.key.Fingerprint();
        const bool isOfVersion = said.cabinet == cabinet && said.cabinetVersion == version.version;
        if (isOfVersion && said.action == trail_kind::kSignature && entry.problems.empty())
            block.signatures.push_back(Shown(entry));
        if (isOfVersion && IsAboutContent(said) && said.sha256 != version.sha256) block.isChanged = true;
    });
    if (block.installationKey.empty()) throw DataError("the version's entry is not in the trail");
    block.trailId = log.TrailId();
    block.whyNotFinal = block.isChanged ? "the version is not what was recorded"
                                        : log.State().WhyNotFinal(block.cabinet, version.version);
    return block;
}

}  // namespace

std::vector<std::string> SignatureBlock::Lines() const {
    const auto line = [](std::uint64_t number, std::int64_t time, const std::string& user, const std::string& what) {
        return "entry " + std::to_string(number) + ", " + TrailTimeText(time) + ", " + PrintableText(user) + ": " +
               PrintableText(what);
    };
    std::vector<std::string> lines = {line(version.entry, version.time, version.user,
                                           version.reason.empty() ? "registered" : "registered, " + version.reason)};
    for (const ShownSignature& signature : signatures)
        lines.push_back(
            line(signature.entry, signature.time, signature.user, signature.meaning + ", " + signature.name));
    if (isChanged) lines.emplace_back("changed since the first entry");
    if (!whyNotFinal.empty()) lines.push_back("not final: " + whyNotFinal);
    lines.push_back("version " + std::to_string(version.version) + " of " + cabinet);
    lines.push_back("SHA-256 " + version.sha256);
    lines.push_back("hash of entry " + std::to_string(version.entry) + ": " + version.entryHash);
    lines.push_back("trail " + trailId);
    lines.push_back("installation " + installationKey);
    return lines;
}

std::optional<SignatureBlock> ReadSignatureBlock(Trail& trail, std::string_view cabinet, const RecordedVersion& version,
                                                 const SigningRules& rules) {
    std::optional<SignatureBlock> block;
    AsResult("ReadSignatureBlock", [&] {
        block = Read(trail, cabinet, version, rules);
        return 1;
    });
    return block;
}

}  // namespace qel
