// qel verify: checks files and trees of files, on all processors, without changing any.
#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>

#include <fnmatch.h>

#include "tree.h"
#include "verify_report.h"
#include "workers.h"
#ifdef QEL_WITH_TRAIL
#include "resume.h"
#include "trail_options.h"
#include "verify_lists.h"
#include "verify_trails.h"
#endif

namespace tool {
namespace {

struct Options {
    std::vector<std::string> paths, sealed;
    unsigned jobs = Processors();
    VerifyOutput output;
#ifdef QEL_WITH_TRAIL
    std::string resume;
    ListOptions lists;
    TrailOptions trails;
#endif
};

// Paths below it are compared as texts. "link/.." is not the folder that the link is in, and stays.
std::string WithoutRepeatedSlashes(const std::string& path) {
    std::filesystem::path clean;
    for (const std::filesystem::path& each : std::filesystem::path(path))
        if (each != "." && !each.empty()) clean /= each;
    return clean.empty() ? path : clean.string();
}

struct ToCheck {
    std::vector<CheckedFile> files;
    std::vector<Tree::Other> others;
    std::vector<std::string> folders;

    explicit ToCheck(const std::vector<std::string>& paths) {
        for (const std::string& path : paths) Add(WithoutRepeatedSlashes(path));
    }
    void Add(const std::string& path) {
        std::error_code error;
        if (!std::filesystem::is_directory(path, error)) {
            files.push_back({path, true, {}, std::filesystem::path(path).filename().string()});
            return;
        }
        folders.push_back(path);
        const Tree tree = FilesBelow(path);
        for (const std::string& folder : tree.unreadableFolders)
            files.push_back({folder, false, {"", false, kUnreadable, "the folder cannot be read"}});
        for (const std::string& file : tree.files) files.push_back({file, false, {}, NameBelow(path, file)});
        others.insert(others.end(), tree.others.begin(), tree.others.end());
    }
};

// Names without a slash are those of files in any folder.
bool MatchesAny(const std::vector<std::string>& patterns, const std::string& name) {
    return std::ranges::any_of(patterns, [&](const std::string& pattern) {
        const bool isPath = pattern.find('/') != std::string::npos;
        const std::string text = isPath ? name : std::filesystem::path(name).filename().string();
        return ::fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
    });
}

void RequireSealed(CheckedFile& file, const Options& options) {
    FileReport& report = file.report;
    const bool isWorse = IsFinding(report.finding) && report.finding > kUnknown;
    if (report.isSealed || isWorse || !MatchesAny(options.sealed, file.name)) return;
    report.Raise(kNotSealed, "has to be sealed");
}

using Checking = std::function<FileReport(const std::string& file)>;

void CheckAll(std::vector<CheckedFile>& files, const Options& options, const Checking& check) {
    ForEachAtOnce(files.size(), options.jobs, [&](std::size_t i) {
        if (files[i].report.finding == kGood) files[i].report = check(files[i].path);
        RequireSealed(files[i], options);
    });
}

Status WorstOf(const std::vector<CheckedFile>& files, const Options& options) {
    Status status = kGood;
    for (const CheckedFile& file : files) {
        const bool isCounted = file.report.finding != kUnknown || file.isNamed || options.output.strict;
        if (isCounted && IsFinding(file.report.finding)) status = std::max(status, file.report.finding);
    }
    return status;
}

#ifdef QEL_WITH_TRAIL
// Whoever knows a trail from elsewhere expects one. The installation's own trust is about archives, not about each
// file.
void RequireTrail(VerifyResults& results, const ToCheck& given, const Options& options) {
    const AnchorOptions& anchors = options.trails.anchors;
    if (anchors.AreThere() && results.archives.empty() && given.folders.empty())
        results.files.push_back({options.paths[0], false, {"", false, kMissing, "has no trail"}});
    if (anchors.AreThere() || anchors.HasTrust())
        RequireTrails(results.files, given.folders, results.archives, anchors.AreThere());
}

Status Verify(const Options& options) {
    if (options.lists.AreThere()) RequireTreeForLists(options.lists, options.paths);
    ToCheck given(options.paths);
    std::optional<Resume> resume;
    if (!options.resume.empty()) {
        RequireOutside(options.resume, options.paths);
        resume.emplace(options.resume);
    }
    CheckAll(given.files, options,
             [&](const std::string& file) { return resume ? resume->Check(file) : CheckFile(file); });
    TrailOptions trails = options.trails;
    trails.jobs = options.jobs;
    trails.resume = resume ? &*resume : nullptr;
    VerifyResults results;
    results.files = std::move(given.files);
    results.archives = VerifyTrails(results.files, trails);
    RequireTrail(results, given, options);
    if (options.lists.AreThere()) UseLists(results.files, given.others, options.paths[0], options.lists);
    results.passed = resume ? resume->Passed() : 0;
    PrintVerified(results, options.output);
    Status status = WorstOf(results.files, options), loose = kGood;
    for (const VerifiedArchive& archive : results.archives) {
        const Status worst = archive.Worst();
        (IsFinding(worst) ? status : loose) = std::max(IsFinding(worst) ? status : loose, worst);
    }
    return WithResume(status != kGood ? status : loose, trails.resume);
}

void AddTrailOptions(CLI::App& command, Options& options) {
    CLI::Option* const resume =
        command.add_option("--resume", options.resume, "Go on with an interrupted run: what it has read is kept here")
            ->type_name("FILE");
    command.add_option("--save-list", options.lists.saveList, "Write path, size and SHA-256 of all files to this one")
        ->excludes(resume)
        ->type_name("FILE");
    command.add_option("--against", options.lists.against, "Compare with the files of such a list")
        ->excludes(resume)
        ->type_name("FILE");
    command.add_flag("--force", options.lists.force, "Replace a list that exists");
    AddAnchors(command, options.trails.anchors);
    AddBefore(command, options.trails.before);
    AddSignatureOptions(command, options.trails.signatures);
}
#else
Status Verify(const Options& options) {
    ToCheck given(options.paths);
    CheckAll(given.files, options, CheckFile);
    VerifyResults results;
    results.files = std::move(given.files);
    PrintVerified(results, options.output);
    return WorstOf(results.files, options);
}
#endif

}  // namespace

void AddVerify(CLI::App& app, Status& status) {
    CLI::App* const command =
        app.add_subcommand("verify", "Check sealed files, cabinets, archives, documents and job files");
    const auto options = std::make_shared<Options>();
    command->add_option("PATH", options->paths, "Files, and folders whose files are checked with all below")
        ->required();
    command->add_option("-j,--jobs", options->jobs, "Files that are checked at the same time")
        ->transform(WholeNumber(1, 256))
        ->type_name("N");
    command->add_flag("--all", options->output.all, "List intact files of folders, too");
    command->add_flag("--strict", options->output.strict, "A file of an unknown kind is a finding in folders, too");
    command->add_option("--sealed", options->sealed, "Files that have to be sealed: a name or a path with * and ?")
        ->allow_extra_args(false)
        ->type_name("GLOB");
#ifdef QEL_WITH_TRAIL
    AddTrailOptions(*command, *options);
    const std::string more = std::string("\nOf trails and their archives:\n") + kTrailStatuses;
#else
    const std::string more;
#endif
    command->add_flag("--json", options->output.json, "Write JSON");
    command->footer(
        "Exit status: 0 all is intact; of several findings the highest:\n"
        "  3  unknown       a file of an unknown kind (in folders only with --strict)\n"
        "  4  renamed       a sealed file has another name than it was sealed under\n"
        "  5  unreadable    a file or folder cannot be read, or others are writing to the file\n"
        "  6  changed       data do not match their checksums, or the list\n"
        "  7  cut           a file ends before its content does\n"
        "  8  inconsistent  counts, places or texts in a file contradict each other\n"
        "  9  malformed     XML is not well-formed, or refers to an entity\n"
        "  10 bad header    the versions of a cabinet cannot be found\n"
        "  15 missing       a file of the list is not there\n"
        "  22 added         a file is not in the list\n"
        "  23 not sealed    a file that has to be sealed is not\n"
        "  38 too large     a document, job or file of renewal records of more than 64 MiB, not read" +
        more);
    command->callback([options, &status] { status = Verify(*options); });
}

}  // namespace tool
