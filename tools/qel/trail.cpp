// qel trail: the entries of an archive's trail, and whether they can be trusted.
#include <cstdlib>
#include <filesystem>

#include <qellib10/record.h>

#include "tool.h"
#include "trail_archive.h"
#include "trail_export.h"
#include "trail_signatures.h"
#include "trail_text.h"

namespace tool {
namespace {

struct Options {
    std::string file, entry, trust, key, trail, head, headFile, tsaCa, stamp, archive;
    std::uint64_t atLeast = 0;
    TrailExport exported;
    SignatureOptions signatures;
    bool json = false;
};

Failure Refusal(const Options& options) {
    const CString item(qel::LastFailure().item.c_str());
    for (const std::string& file : {options.trust, options.headFile, options.tsaCa, options.stamp}) {
        if (!file.empty() && item == Path(file)) return Named(file, LastRefusal("cannot be read", kFailed));
    }
    return Named(options.file, LastRefusal("cannot be read", kMalformed));
}

// What is asked for by its number, or by the hash that reports print.
Status ShowEntry(const Options& options) {
    qel::TrailReader reader;
    if (reader.Open(Path(options.file).View()) == 0) throw Refusal(options);
    const bool isHash = options.entry.size() == 64;
    for (;;) {
        const std::optional<qel::TrailEntry> entry = reader.Next();
        if (!entry && qel::LastFailure().kind == qel::FailureKind::kNone) break;
        if (!entry && qel::LastFailure().kind != qel::FailureKind::kData) throw Refusal(options);
        if (!entry || (isHash ? reader.Hash() : std::to_string(entry->number)) != options.entry) continue;
        const Json json = EntryJson(*entry, reader.Hash(), reader.Signer());
        options.json ? Print(json) : Print(EntryText(json));
        return kGood;
    }
    throw Failure(Shown(options.file) + ": has no entry " + options.entry, kMissing);
}

// Entry by entry: a trail may have a million.
Status List(const Options& options) {
    qel::TrailReader reader;
    if (reader.Open(Path(options.file).View()) == 0) throw Refusal(options);
    Status status = kGood;
    const char* separator = "[\n";
    for (;;) {
        const std::optional<qel::TrailEntry> entry = reader.Next();
        if (!entry) {
            if (qel::LastFailure().kind == qel::FailureKind::kNone) break;
            const Failure failure = Refusal(options);
            status = Complain(failure.what(), failure.ExitStatus());
            if (status != kMalformed) break;
            continue;
        }
        if (!options.json) {
            Print(EntryLine(*entry));
            continue;
        }
        Print(separator + EntryJson(*entry, reader.Hash(), reader.Signer()).dump());
        separator = ",\n";
    }
    if (options.json) Print(std::string(*separator == '[' ? "[]\n" : "\n]\n"));
    return status;
}

struct Kind {
    const char* name;
    Status status;
};
// In the order of qel::TrailFault.
constexpr Kind kKinds[] = {
    {"cut", kCut},
    {"malformed", kMalformed},
    {"inconsistent", kInconsistent},
    {"changed", kChanged},
    {"unknown signer", kUnknownSigner},
    {"key not valid", kEndedKey},
    {"clock", kClock},
    {"missing", kMissing},
    {"time stamp", kStamp},
    {"revoked key", kRevokedKey},
};

const Kind& KindOf(const qel::TrailFinding& finding) { return kKinds[static_cast<std::size_t>(finding.fault)]; }

void WriteText(const Options& options, const qel::TrailReport& report, const ArchiveReport& archive,
               const std::optional<qel::SignatureReport>& signatures) {
    for (const qel::TrailFinding& finding : report.findings) {
        Print(Shown(options.file) + ": entry " + std::to_string(finding.entry) + ", byte " +
              std::to_string(finding.byte) + ": " + KindOf(finding).name + ": " + Shown(finding.text) +
              (finding.signer.empty() ? "" : ", " + finding.signer) + '\n');
    }
    for (const ArchiveReport::Finding& finding : archive.findings) Print(FindingLine(finding));
    if (!options.archive.empty())
        Print(Count(archive.cabinets, "cabinet", "cabinets") + ", " + Count(archive.versions, "version", "versions") +
              ", " + Count(archive.files, "recorded file", "recorded files") + ": " +
              Count(archive.findings.size(), "finding", "findings") + '\n');
    if (signatures) Print(SignaturesText(options.file, *signatures));
    Print(ResultText(report) + '\n');
    if (report.isBeingWritten) Print(std::string("another entry is still being written\n"));
    if (report.pinned < report.entries) Print("entry " + std::to_string(report.entries) + ", nothing later known\n");
    if (report.stamped > 0)
        Print("entry " + std::to_string(report.stamped) + " was there at " + qel::TrailTimeText(report.stampTime) +
              ", as a time stamp shows\n");
    if (report.entries > 0) Print("trail " + report.trailId + ", last entry " + report.head + '\n');
}

void WriteJson(const Options& options, const qel::TrailReport& report, const ArchiveReport& archive,
               const std::optional<qel::SignatureReport>& signatures) {
    Json json{{"file", options.file},
              {"trail", report.trailId},
              {"entries", report.entries},
              {"head", report.head},
              {"pinned", report.pinned},
              {"consistent", report.findingCount == 0},
              {"anchored", report.isAnchored},
              {"unanchored", report.unanchored},
              {"beingWritten", report.isBeingWritten},
              {"stamped", report.stamped},
              {"stampTime", report.stamped > 0 ? Json(qel::TrailTimeText(report.stampTime)) : Json(nullptr)},
              {"findingCount", report.findingCount},
              {"findings", Json::array()}};
    for (const qel::TrailFinding& finding : report.findings)
        json["findings"].push_back({{"finding", KindOf(finding).name},
                                    {"entry", finding.entry},
                                    {"byte", finding.byte},
                                    {"lastMissing", finding.lastMissing},
                                    {"signer", finding.signer},
                                    {"cabinet", finding.cabinet},
                                    {"cabinetVersion", finding.cabinetVersion},
                                    {"size", finding.size},
                                    {"sha256", finding.sha256},
                                    {"detail", finding.text}});
    if (!options.archive.empty()) {
        json["cabinets"] = archive.cabinets;
        json["versions"] = archive.versions;
        json["recordedFiles"] = archive.files;
        json["archiveFindings"] = Json::array();
        for (const ArchiveReport::Finding& finding : archive.findings)
            json["archiveFindings"].push_back(FindingJson(finding));
    }
    if (signatures) json["signatures"] = SignaturesJson(*signatures);
    Print(json);
}

std::string LibraryPathOrNone(const std::string& path) { return path.empty() ? "" : std::string(Path(path).View()); }

// An installation's own, where the command names no other.
std::string TrustFile(const Options& options) {
    constexpr const char* kUsual = "/etc/qellib10/allowed_signers";
    if (!options.trust.empty() || !options.key.empty()) return options.trust;
    const char* const chosen = std::getenv("QELLIB10_ALLOWED_SIGNERS");
    if (chosen != nullptr) return chosen;
    std::error_code error;
    return std::filesystem::exists(kUsual, error) || error ? kUsual : "";
}

qel::TrailReport Checked(const Options& given) {
    Options options = given;
    options.trust = TrustFile(given);
    const qel::TrailAnchors anchors{.trailId = options.trail,
                                    .trustFile = LibraryPathOrNone(options.trust),
                                    .key = options.key,
                                    .head = options.head,
                                    .headFile = LibraryPathOrNone(options.headFile),
                                    .atLeast = options.atLeast,
                                    .tsaCa = LibraryPathOrNone(options.tsaCa),
                                    .stamp = LibraryPathOrNone(options.stamp)};
    qel::TrailReport report;
    if (qel::CheckTrail(Path(options.file).View(), anchors, report) == 0) throw Refusal(options);
    return report;
}

// Another reader of the trail must find the same entries, unless these are wrong already.
qel::TrailReceipt LastOf(const qel::TrailReport& report) {
    return report.findingCount == 0 ? qel::TrailReceipt{report.entries, report.head} : qel::TrailReceipt();
}

// @param status of other findings
Status StatusOf(const qel::TrailReport& report, Status status) {
    for (const qel::TrailFinding& finding : report.findings) status = std::max(status, KindOf(finding).status);
    return status == kGood && !report.isAnchored ? kNotAnchored : status;
}

Status Export(const Options& options) {
    const qel::TrailReport report = Checked(options);
    const Status status = ExportTrail(options.file, report, options.exported);
    Print(Shown(options.exported.target) + ": " + ResultText(report) + '\n');
    return StatusOf(report, status);
}

Status Verify(const Options& options) {
    const qel::TrailReport report = Checked(options);
    const ArchiveReport archive =
        options.archive.empty() ? ArchiveReport() : CompareArchive(options.file, options.archive, LastOf(report));
    const std::optional<qel::SignatureReport> signatures =
        CheckSignaturesOf(options.file, options.signatures, LastOf(report));
    options.json ? WriteJson(options, report, archive, signatures) : WriteText(options, report, archive, signatures);
    Status status = signatures ? WorstOf(*signatures) : kGood;
    for (const ArchiveReport::Finding& finding : archive.findings) status = std::max(status, finding.status);
    return StatusOf(report, status);
}

std::string RefuseOtherThanHex(const std::string& text, std::size_t digits) {
    const bool isHex = text.size() == digits && text.find_first_not_of("0123456789abcdef") == std::string::npos;
    return isHex ? "" : "is not " + std::to_string(digits) + " lower-case hexadecimal digits";
}

std::string RefuseOtherThanEntry(const std::string& text) {
    const bool isNumber = !text.empty() && text.size() < 20 && text[0] != '0' &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber || RefuseOtherThanHex(text, 64).empty() ? ""
                                                            : "is neither a number from 1 on nor 64 hexadecimal digits";
}

std::string RefuseOtherThanFingerprint(const std::string& text) {
    return text.starts_with("SHA256:") && text.size() == 50 ? "" : "is not SHA256: and 43 characters";
}

void AddAnchors(CLI::App& verify, Options& options) {
    verify.add_option("--trust", options.trust, "Who may sign, in the format of ssh-keygen's allowed signers")
        ->type_name("FILE");
    verify.add_option("--key", options.key, "Fingerprint of the key that started the trail")
        ->check(RefuseOtherThanFingerprint, "")
        ->type_name("SHA256:...");
    verify.add_option("--trail", options.trail, "The trail's ID, as reports print it")
        ->check([](const std::string& text) { return RefuseOtherThanHex(text, 32); }, "")
        ->type_name("ID");
    verify.add_option("--head", options.head, "Hash of an entry that has to be there")
        ->check([](const std::string& text) { return RefuseOtherThanHex(text, 64); }, "")
        ->type_name("HASH");
    verify.add_option("--head-file", options.headFile, "The trail's head file: its entry has to be there")
        ->type_name("FILE");
    verify.add_option("--at-least", options.atLeast, "So many entries have to be there")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1} << 53))
        ->type_name("N");
    CLI::Option* const tsaCa =
        verify.add_option("--tsa-ca", options.tsaCa, "Certificates of the time stamping authority, from elsewhere")
            ->type_name("FILE");
    verify.add_option("--stamp", options.stamp, "A time stamp's answer, kept elsewhere: its entry has to be there")
        ->needs(tsaCa)
        ->type_name("FILE");
}

void AddVerifyOptions(CLI::App& verify, Options& options) {
    AddAnchors(verify, options);
    verify
        .add_option("--archive", options.archive,
                    "Compare the cabinets, and recorded and sealed files, in this folder and all below, too")
        ->check(CLI::ExistingDirectory, "")
        ->type_name("FOLDER");
    AddSignatureOptions(verify, options.signatures);
    verify.footer(
        "Exit status: 0 consistent and anchored; of several findings the highest:\n"
        "  5  unreadable      a file of the archive cannot be read\n"
        "  6  changed         an entry is not what was signed, or a version not what was registered\n"
        "  7  cut             the trail ends within a line\n"
        "  8  inconsistent    entries are exchanged, missing in between, or of another trail\n"
        "  9  malformed       a line that no trail writes\n"
        "  12 unknown signer  an entry is signed by a key that is not trusted\n"
        "  13 key not valid   an entry is signed by a key that had ended, or was not yet valid\n"
        "  14 clock           the time of an entry is before that of the one before\n"
        "  15 missing         entries that have to be there, or versions that were registered, are missing\n"
        "  16 never recorded  a version of a cabinet that no entry announced\n"
        "  17 time stamp      a time stamp is not one of its entry, or not the authority's\n"
        "  18 revoked key     an entry is signed by a key that was revoked, and nothing shows it was there before\n"
        "  19 signature       a person's signature is not what was signed, or belongs to another entry\n"
        "  20 person's key    a person's signature is made with a key that is not that person's, or has ended\n"
        "  21 against rules   a person's signature is one that the rules do not allow\n"
        "Without any finding:\n"
        "  11 not anchored    consistent, but no key, or no ID of the trail, is known from elsewhere");
}

}  // namespace

void AddTrail(CLI::App& app, Status& status) {
    CLI::App* const command = app.add_subcommand("trail", "List, verify and export the trail of an archive");
    command->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, const char* meaning, Status (*run)(const Options&)) {
        CLI::App* const action = command->add_subcommand(name, meaning);
        AddFile(*action, "TRAIL", options->file, "The trail's file");
        action->callback([options, run, &status] { status = run(*options); });
        return action;
    };
    CLI::App* const list = add("list", "List the entries, without checking them", List);
    CLI::App* const show = add("show", "Show all of an entry, without checking it", ShowEntry);
    show->add_option("ENTRY", options->entry, "Its number, or the SHA-256 of its line")
        ->required()
        ->check(RefuseOtherThanEntry, "")
        ->type_name("");
    CLI::App* const verify = add("verify", "Check every entry, and that none is missing", Verify);
    AddVerifyOptions(*verify, *options);
    CLI::App* const exported = add("export", "Check the entries, and write them to a file", Export);
    exported->add_option("--to", options->exported.target, "The file to write")->required()->type_name("FILE");
    exported->add_option("--format", options->exported.format, "Else as the file's suffix says")
        ->check(CLI::IsMember({"text", "json", "csv", "pdf"}))
        ->type_name("text|json|csv|pdf");
    exported->add_flag("--force", options->exported.force, "Replace a file that exists");
    AddAnchors(*exported, *options);
    exported->footer("Exit status: that of qel trail verify; the file is written whatever was found");
    for (CLI::App* const action : {list, show, verify}) action->add_flag("--json", options->json, "Write JSON");
}

}  // namespace tool
