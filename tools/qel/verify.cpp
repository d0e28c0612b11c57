// qel verify: checks files and trees of files, on all processors, without changing any.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <thread>

#include <fnmatch.h>

#include "file_check.h"
#ifdef QEL_WITH_TRAIL
#include "file_list.h"
#include "resume.h"
#endif
#include "progress.h"
#include "tree.h"

namespace tool {
namespace {

struct Options {
    std::vector<std::string> paths, sealed;
    std::string saveList, against, resume;
    unsigned jobs = std::max(std::thread::hardware_concurrency(), 1u);
    bool all = false, strict = false, force = false, json = false;

    bool HasList() const { return !saveList.empty() || !against.empty(); }
};

struct Checked {
    std::string path;
    bool isNamed = false;  // by the user, not found in a folder
    FileReport report;
    std::string name = {};  // from the folder on that the user named
};

std::vector<Checked> ToCheck(const std::vector<std::string>& paths) {
    std::vector<Checked> files;
    for (const std::string& path : paths) {
        std::error_code error;
        if (!std::filesystem::is_directory(path, error)) {
            files.push_back({path, true, {}, std::filesystem::path(path).filename().string()});
            continue;
        }
        const Tree tree = FilesBelow(path);
        for (const std::string& folder : tree.unreadableFolders)
            files.push_back({folder, false, {"", false, kUnreadable, "the folder cannot be read"}});
        for (const std::string& file : tree.files) files.push_back({file, false, {}, NameBelow(path, file)});
    }
    return files;
}

// Names without a slash are those of files in any folder.
bool MatchesAny(const std::vector<std::string>& patterns, const std::string& name) {
    return std::ranges::any_of(patterns, [&](const std::string& pattern) {
        const bool isPath = pattern.find('/') != std::string::npos;
        const std::string text = isPath ? name : std::filesystem::path(name).filename().string();
        return ::fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
    });
}

void RequireSealed(Checked& file, const Options& options) {
    FileReport& report = file.report;
    if (report.isSealed || report.finding > kUnknown || !MatchesAny(options.sealed, file.name)) return;
    report.finding = kNotSealed;
    report.detail = "has to be sealed";
}

#ifdef QEL_WITH_TRAIL
std::string ListedKind(const FileReport& report) { return (report.isSealed ? "sealed-" : "") + report.kind; }

FileList ListOf(std::vector<Checked>& files) {
    FileList list;
    for (Checked& file : files) {
        if (file.report.finding == kUnreadable) continue;
        const std::optional<qel::FileHash> hash = qel::HashFile(Path(file.path).View());
        if (hash) {
            list.emplace(file.name, ListedFile{ListedKind(file.report), *hash});
        } else {
            file.report.finding = kUnreadable;
            file.report.detail = Why("cannot be read");
        }
    }
    return list;
}

void Raise(FileReport& report, Status finding, const char* detail) {
    if (finding <= report.finding) return;
    report.finding = finding;
    report.detail = detail;
}

void Compare(std::vector<Checked>& files, const std::string& folder, const FileList& now, FileList before) {
    for (Checked& file : files) {
        auto known = before.extract(file.name);
        const auto found = now.find(file.name);
        if (found == now.end()) continue;  // it cannot be read
        if (known.empty()) {
            Raise(file.report, kAdded, "is not in the list");
        } else if (!(known.mapped().hash == found->second.hash)) {
            Raise(file.report, kChanged, "is not what the list has");
        }
    }
    for (const auto& [name, missing] : before) {
        const std::string path = (std::filesystem::path(folder) / name).string();
        files.push_back({path, false, {missing.kind, false, kMissing, "is in the list, and not there"}, name});
    }
}

void UseLists(std::vector<Checked>& files, const Options& options) {
    const FileList before = options.against.empty() ? FileList() : ReadList(options.against);
    const FileList now = ListOf(files);
    if (!options.saveList.empty()) SaveList(options.saveList, options.force, now);
    if (!options.against.empty()) Compare(files, options.paths[0], now, before);
}

// A file of ours in the tree would be one more file there.
void RequireOutside(const std::string& file, const std::vector<std::string>& trees) {
    std::error_code error;
    if (file.empty()) return;
    const std::filesystem::path at = std::filesystem::weakly_canonical(std::filesystem::absolute(file, error), error);
    for (const std::string& tree : trees) {
        const auto relative = at.lexically_relative(std::filesystem::canonical(tree, error));
        if (relative.empty() || *relative.begin() != "..")
            throw CLI::ValidationError("\"" + file + "\" is in the folder that is checked");
    }
}

void RequireTreeForLists(const Options& options) {
    std::error_code error;
    if (options.paths.size() != 1 || !std::filesystem::is_directory(options.paths[0], error))
        throw CLI::ValidationError("a list is that of one folder");
    for (const std::string& list : {options.saveList, options.against}) RequireOutside(list, options.paths);
    if (!options.saveList.empty()) RequireNew(options.saveList, options.force, {options.against});
}
#endif

using Checking = std::function<FileReport(const std::string& file)>;

void CheckAll(std::vector<Checked>& files, const Options& options, const Checking& check) {
    std::atomic<std::size_t> next = 0, done = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < files.size(); i = next++) {
            if (files[i].report.finding == kGood) files[i].report = check(files[i].path);
            RequireSealed(files[i], options);
            ++done;
        }
    };
    const ProgressBar progress(files.size());
    std::vector<std::jthread> workers;
    for (std::size_t i = 0; i < std::min<std::size_t>(options.jobs, files.size()); ++i) workers.emplace_back(work);
    for (; progress.IsShown() && done < files.size(); std::this_thread::sleep_for(std::chrono::milliseconds(20)))
        progress.Show(done);
}

const char* NameOf(Status finding) {
    constexpr const char* kFindings[] = {"intact",       "",           "",          "unknown",
                                         "renamed",      "unreadable", "changed",   "cut",
                                         "inconsistent", "malformed",  "bad header"};
    switch (finding) {
        case kMissing:
            return "missing";
        case kAdded:
            return "added";
        case kNotSealed:
            return "not sealed";
        default:
            return kFindings[finding];
    }
}

std::string Line(const Checked& file) {
    const FileReport& report = file.report;
    std::string line = Shown(file.path) + ": " + NameOf(report.finding);
    if (report.isSealed || (!report.kind.empty() && report.kind != "data"))
        line += std::string(report.isSealed ? ", sealed " : ", ") + report.kind;
    return line + ": " + report.detail + '\n';
}

void Write(const std::vector<Checked>& files, const std::map<Status, int>& counts, std::size_t passed,
           const Options& options) {
    Json json{{"files", Json::array()}, {"summary", {{"files", files.size()}}}};
    std::string text;
    for (const Checked& file : files) {
        const FileReport& report = file.report;
        const bool isFinding = report.finding >= (options.strict ? kUnknown : kRenamed);
        if (!isFinding && !file.isNamed && !options.all) continue;
        text += Line(file);
        json["files"].push_back({{"file", file.path},
                                 {"finding", NameOf(report.finding)},
                                 {"kind", report.kind},
                                 {"sealed", report.isSealed},
                                 {"detail", report.detail}});
    }
    text += std::to_string(files.size()) + (files.size() == 1 ? " file" : " files");
    for (const auto& [finding, count] : counts) {
        text += (finding == counts.begin()->first ? ": " : ", ") + std::to_string(count) + ' ' + NameOf(finding);
        json["summary"][NameOf(finding)] = count;
    }
    if (passed > 0) text += ", " + std::to_string(passed) + " not read again";
    json["summary"]["notReadAgain"] = passed;
    options.json ? Print(json) : Print(text + '\n');
}

Status Verify(const Options& options) {
#ifdef QEL_WITH_TRAIL
    if (options.HasList()) RequireTreeForLists(options);
#endif
    std::vector<Checked> files = ToCheck(options.paths);
    std::size_t passed = 0;
#ifdef QEL_WITH_TRAIL
    if (options.resume.empty()) {
        CheckAll(files, options, CheckFile);
    } else {
        RequireOutside(options.resume, options.paths);
        Resume resume(options.resume);
        CheckAll(files, options, [&](const std::string& file) { return resume.Check(file); });
        passed = resume.Passed();
    }
    if (options.HasList()) UseLists(files, options);
#else
    CheckAll(files, options, CheckFile);
#endif
    std::map<Status, int> counts;
    Status status = kGood;
    for (const Checked& file : files) {
        ++counts[file.report.finding];
        const bool counted = file.report.finding != kUnknown || file.isNamed || options.strict;
        if (counted) status = std::max(status, file.report.finding);
    }
    Write(files, counts, passed, options);
    return status == kGood && passed > 0 ? kNotReadAgain : status;
}

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
    command->add_flag("--all", options->all, "List intact files of folders, too");
    command->add_flag("--strict", options->strict, "A file of an unknown kind is a finding in folders, too");
    command->add_option("--sealed", options->sealed, "Files that have to be sealed: a name or a path with * and ?")
        ->allow_extra_args(false)
        ->type_name("GLOB");
#ifdef QEL_WITH_TRAIL
    CLI::Option* const resume =
        command->add_option("--resume", options->resume, "Go on with an interrupted run: what it has read is kept here")
            ->type_name("FILE");
    command->add_option("--save-list", options->saveList, "Write path, size and SHA-256 of all files to this one")
        ->excludes(resume)
        ->type_name("FILE");
    command->add_option("--against", options->against, "Compare with the files of such a list")
        ->excludes(resume)
        ->type_name("FILE");
    command->add_flag("--force", options->force, "Replace a list that exists");
#endif
    command->add_flag("--json", options->json, "Write JSON");
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
        "Without any finding:\n"
        "  24 not read again  files that an interrupted run has read were not read again");
    command->callback([options, &status] { status = Verify(*options); });
}

}  // namespace tool
