// qel trail: the entries of an archive's trail, and whether they can be trusted.
#include <qellib10/record.h>

#include "tool.h"

namespace tool {
namespace {

struct Options {
    std::string file, trust, key, trail, head, headFile;
    std::uint64_t atLeast = 0;
    bool json = false;
};

Json JsonOf(const qel::TrailEntry& entry, const std::string& hash) {
    return {{"number", entry.number},
            {"time", qel::TrailTimeText(entry.time)},
            {"clock", entry.clock ? Json(qel::TrailTimeText(*entry.clock)) : Json(nullptr)},
            {"host", entry.host},
            {"application", entry.application},
            {"version", entry.version},
            {"user", entry.user},
            {"action", entry.action},
            {"object", entry.object},
            {"before", entry.before},
            {"after", entry.after},
            {"reason", entry.reason},
            {"cabinet", entry.cabinet},
            {"cabinetVersion", entry.cabinetVersion},
            {"size", entry.size},
            {"sha256", entry.sha256},
            {"statement", entry.statement},
            {"hash", hash}};
}

std::string LineOf(const qel::TrailEntry& entry) {
    std::string line = std::to_string(entry.number) + ' ' + qel::TrailTimeText(entry.time);
    if (!entry.user.empty()) line += ' ' + Shown(entry.user);
    line += ": " + Shown(entry.action);
    if (!entry.object.empty()) line += ' ' + Shown(entry.object);
    if (!entry.cabinet.empty()) line += ' ' + entry.cabinet + " version " + std::to_string(entry.cabinetVersion);
    if (!entry.before.empty() || !entry.after.empty()) {
        line += ": " + Shown(entry.before);
        line += (entry.before.empty() ? "" : " -> ") + Shown(entry.after);
    }
    if (!entry.reason.empty()) line += " (" + Shown(entry.reason) + ')';
    return line + '\n';
}

Failure Refusal(const Options& options) {
    const CString item(qel::LastFailure().item.c_str());
    for (const std::string& file : {options.trust, options.headFile}) {
        if (!file.empty() && item == Path(file)) return Named(file, LastRefusal("cannot be read", kMalformed));
    }
    return Named(options.file, LastRefusal("cannot be read", kMalformed));
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
            Print(LineOf(*entry));
            continue;
        }
        Print(separator + JsonOf(*entry, reader.Hash()).dump());
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
};

const Kind& KindOf(const qel::TrailFinding& finding) { return kKinds[static_cast<std::size_t>(finding.fault)]; }

void WriteText(const Options& options, const qel::TrailReport& report) {
    for (const qel::TrailFinding& finding : report.findings) {
        Print(Shown(options.file) + ": entry " + std::to_string(finding.entry) + ", byte " +
              std::to_string(finding.byte) + ": " + KindOf(finding).name + ": " + Shown(finding.text) +
              (finding.signer.empty() ? "" : ", " + finding.signer) + '\n');
    }
    std::string line = Count(report.entries, "entry", "entries") + ": ";
    line += report.findingCount > 0 ? Count(report.findingCount, "finding", "findings")
            : report.isAnchored     ? "consistent"
                                    : "consistent, not anchored: " + report.unanchored;
    Print(line + '\n');
    if (report.isBeingWritten) Print(std::string("another entry is still being written\n"));
    if (report.pinned < report.entries) Print("entry " + std::to_string(report.entries) + ", nothing later known\n");
    if (report.entries > 0) Print("trail " + report.trailId + ", last entry " + report.head + '\n');
}

void WriteJson(const Options& options, const qel::TrailReport& report) {
    Json json{{"file", options.file},
              {"trail", report.trailId},
              {"entries", report.entries},
              {"head", report.head},
              {"pinned", report.pinned},
              {"consistent", report.findingCount == 0},
              {"anchored", report.isAnchored},
              {"unanchored", report.unanchored},
              {"beingWritten", report.isBeingWritten},
              {"findingCount", report.findingCount},
              {"findings", Json::array()}};
    for (const qel::TrailFinding& finding : report.findings)
        json["findings"].push_back({{"finding", KindOf(finding).name},
                                    {"entry", finding.entry},
                                    {"byte", finding.byte},
                                    {"signer", finding.signer},
                                    {"detail", finding.text}});
    Print(json);
}

std::string LibraryPathOrNone(const std::string& path) { return path.empty() ? "" : std::string(Path(path).View()); }

Status Verify(const Options& options) {
    const qel::TrailAnchors anchors{.trailId = options.trail,
                                    .trustFile = LibraryPathOrNone(options.trust),
                                    .key = options.key,
                                    .head = options.head,
                                    .headFile = LibraryPathOrNone(options.headFile),
                                    .atLeast = options.atLeast};
    qel::TrailReport report;
    if (qel::CheckTrail(Path(options.file).View(), anchors, report) == 0) throw Refusal(options);
    options.json ? WriteJson(options, report) : WriteText(options, report);
    Status status = kGood;
    for (const qel::TrailFinding& finding : report.findings) status = std::max(status, KindOf(finding).status);
    return status == kGood && !report.isAnchored ? kNotAnchored : status;
}

std::string RefuseOtherThanHex(const std::string& text, std::size_t digits) {
    const bool isHex = text.size() == digits && text.find_first_not_of("0123456789abcdef") == std::string::npos;
    return isHex ? "" : "is not " + std::to_string(digits) + " lower-case hexadecimal digits";
}

std::string RefuseOtherThanFingerprint(const std::string& text) {
    return text.starts_with("SHA256:") && text.size() == 50 ? "" : "is not SHA256: and 43 characters";
}

void AddVerifyOptions(CLI::App& verify, Options& options) {
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
    verify.footer(
        "Exit status: 0 consistent and anchored; of several findings the highest:\n"
        "  6  changed         an entry is not what was signed\n"
        "  7  cut             the trail ends within a line\n"
        "  8  inconsistent    entries are exchanged, missing in between, or of another trail\n"
        "  9  malformed       a line that no trail writes\n"
        "  12 unknown signer  an entry is signed by a key that is not trusted\n"
        "  13 key not valid   an entry is signed by a key that had ended, or was not yet valid\n"
        "  14 clock           the time of an entry is before that of the one before\n"
        "  15 missing         entries that have to be there are missing\n"
        "Without any finding:\n"
        "  11 not anchored    consistent, but no key, or no ID of the trail, is known from elsewhere");
}

}  // namespace

void AddTrail(CLI::App& app, Status& status) {
    CLI::App* const command = app.add_subcommand("trail", "List and verify the trail of an archive");
    command->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, const char* meaning, Status (*run)(const Options&)) {
        CLI::App* const action = command->add_subcommand(name, meaning);
        AddFile(*action, "TRAIL", options->file, "The trail's file");
        action->callback([options, run, &status] { status = run(*options); });
        return action;
    };
    CLI::App* const list = add("list", "List the entries, without checking them", List);
    CLI::App* const verify = add("verify", "Check every entry, and that none is missing", Verify);
    AddVerifyOptions(*verify, *options);
    for (CLI::App* const action : {list, verify}) action->add_flag("--json", options->json, "Write JSON");
}

}  // namespace tool
