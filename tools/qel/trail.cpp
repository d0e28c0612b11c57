// qel trail: the entries of an archive's trail, and whether they can be trusted.
#include <algorithm>
#include <memory>

#include <qellib10/record.h>

#include "tool.h"
#include "trail_before.h"
#include "trail_export.h"
#include "trail_options.h"
#include "trail_text.h"
#include "workers.h"

namespace tool {
namespace {

struct Options {
    std::string file, entry, archive, resume;
    std::vector<std::string> before;
    AnchorOptions anchors;
    TrailExport exported;
    SignatureOptions signatures;
    unsigned jobs = Processors();
    bool json = false;
};

Failure Refusal(const Options& options) { return TrailRefusal(options.file, options.anchors); }

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

Status Export(const Options& options) {
    const qel::TrailReport report = CheckedTrail(options.file, options.anchors);
    const Status status = ExportTrail(options.file, report, options.exported);
    Print(Shown(options.exported.target) + ": " + ResultText(report) + '\n');
    const Status ofTrail = StatusOf(report);
    return IsFinding(ofTrail) || status == kGood ? std::max(ofTrail, status) : status;
}

// The archive's own file of allowed signers.
Status Signers(const Options& options) {
    qel::TrailSigners signers;
    if (signers.Read(Path(options.file).View()) == 0) throw Refusal(options);
    Print(signers.Text());
    return kGood;
}

ArchiveReport CompareArchive(const Options& options, const VerifiedChain& chain, Resume* resume) {
    std::vector<ReadTrail> trails;
    for (const VerifiedTrail& trail : chain.trails)
        if (trail.Counts()) trails.push_back({trail.file, trail.report.rightUpTo});
    ArchiveOptions archive{.folder = options.archive, .jobs = options.jobs, .resume = resume};
    if (resume != nullptr) archive.content = [=](const std::string& file) { return resume->Check(file); };
    return CompareArchive(trails, archive);
}

Status Verify(const Options& options) {
    RequireOutside(options.resume, {options.archive});
    std::unique_ptr<Resume> resume;
    if (!options.resume.empty()) resume = std::make_unique<Resume>(options.resume);
    const VerifiedChain chain = VerifyChain(options.file, options.before, options.anchors, options.signatures);
    std::optional<ArchiveReport> archive;
    if (!options.archive.empty()) archive = CompareArchive(options, chain, resume.get());
    const std::size_t passed = resume ? resume->Passed() : 0;
    if (options.json) {
        Json json = ChainJson(chain);
        if (archive) AddArchiveJson(*archive, json);
        if (resume) json["notReadAgain"] = passed;
        Print(json);
    } else {
        Print(VerifiedText({chain}, archive) + NotReadAgainText(passed));
    }
    const Status ofTrails = StatusOf(chain), ofArchive = archive ? WorstOf(*archive) : kGood;
    const Status worst = IsFinding(ofTrails) ? std::max(ofTrails, ofArchive) : ofArchive;
    return WithResume(worst != kGood ? worst : ofTrails, resume.get());
}

std::string RefuseOtherThanEntry(const std::string& text) {
    const bool isNumber = !text.empty() && text.size() < 20 && text[0] != '0' &&
                          text.find_first_not_of("0123456789") == std::string::npos;
    const bool isHash = text.size() == 64 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
    return isNumber || isHash ? "" : "is neither a number from 1 on nor 64 hexadecimal digits";
}

void AddVerifyOptions(CLI::App& verify, Options& options) {
    AddAnchors(verify, options.anchors);
    CLI::Option* const archive =
        verify
            .add_option("--archive", options.archive,
                        "Compare the cabinets, and recorded and sealed files, in this folder and all below, too")
            ->check(CLI::ExistingDirectory, "")
            ->type_name("FOLDER");
    AddBefore(verify, options.before);
    verify.add_option("-j,--jobs", options.jobs, "Files of the archive that are read at the same time")
        ->transform(WholeNumber(1, 256))
        ->type_name("N");
    verify.add_option("--resume", options.resume, "Go on with an interrupted run: what it has read is kept here")
        ->needs(archive)
        ->type_name("FILE");
    AddSignatureOptions(verify, options.signatures);
    verify.footer(std::string("Exit status: 0 consistent and anchored; of several findings the highest:\n") +
                  kTrailStatuses);
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
    add("signers", "Write which keys may sign, as the entries say, in the format of allowed signers", Signers);
    CLI::App* const verify = add("verify", "Check every entry, and that none is missing", Verify);
    AddVerifyOptions(*verify, *options);
    CLI::App* const exported = add("export", "Check the entries, and write them to a file", Export);
    exported->add_option("--to", options->exported.target, "The file to write")->required()->type_name("FILE");
    exported->add_option("--format", options->exported.format, "Else as the file's suffix says")
        ->check(CLI::IsMember({"text", "json", "csv", "pdf"}))
        ->type_name("text|json|csv|pdf");
    exported->add_flag("--force", options->exported.force, "Replace a file that exists");
    AddAnchors(*exported, options->anchors);
    exported->footer("Exit status: that of qel trail verify; the file is written whatever was found");
    for (CLI::App* const action : {list, show, verify}) action->add_flag("--json", options->json, "Write JSON");
}

}  // namespace tool
