// qel verify: checks files and trees of files, on all processors, without changing any.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <map>
#include <thread>

#include "file_check.h"
#include "progress.h"
#include "tree.h"

namespace tool {
namespace {

struct Options {
    std::vector<std::string> paths;
    unsigned jobs = std::max(std::thread::hardware_concurrency(), 1u);
    bool all = false, strict = false, json = false;
};

struct Checked {
    std::string path;
    bool isNamed = false;  // by the user, not found in a folder
    FileReport report;
};

std::vector<Checked> ToCheck(const std::vector<std::string>& paths) {
    std::vector<Checked> files;
    for (const std::string& path : paths) {
        std::error_code error;
        if (!std::filesystem::is_directory(path, error)) {
            files.push_back({path, true, {}});
            continue;
        }
        const Tree tree = FilesBelow(path);
        for (const std::string& folder : tree.unreadableFolders)
            files.push_back({folder, false, {"", false, kUnreadable, "the folder cannot be read"}});
        for (const std::string& file : tree.files) files.push_back({file, false, {}});
    }
    return files;
}

void CheckAll(std::vector<Checked>& files, unsigned jobs) {
    std::atomic<std::size_t> next = 0, done = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < files.size(); i = next++) {
            if (files[i].report.finding == kGood) files[i].report = CheckFile(files[i].path);
            ++done;
        }
    };
    const ProgressBar progress(files.size());
    std::vector<std::jthread> workers;
    for (std::size_t i = 0; i < std::min<std::size_t>(jobs, files.size()); ++i) workers.emplace_back(work);
    for (; progress.IsShown() && done < files.size(); std::this_thread::sleep_for(std::chrono::milliseconds(20)))
        progress.Show(done);
}

constexpr const char* kFindings[] = {
    "intact", "", "", "unknown", "renamed", "unreadable", "changed", "cut", "inconsistent", "malformed", "bad header"};

std::string Line(const Checked& file) {
    const FileReport& report = file.report;
    std::string line = Shown(file.path) + ": " + kFindings[report.finding];
    if (report.isSealed || (!report.kind.empty() && report.kind != "data"))
        line += std::string(report.isSealed ? ", sealed " : ", ") + report.kind;
    return line + ": " + report.detail + '\n';
}

void Write(const std::vector<Checked>& files, const std::map<Status, int>& counts, const Options& options) {
    Json json{{"files", Json::array()}, {"summary", {{"files", files.size()}}}};
    std::string text;
    for (const Checked& file : files) {
        const FileReport& report = file.report;
        const bool isFinding = report.finding >= (options.strict ? kUnknown : kRenamed);
        if (!isFinding && !file.isNamed && !options.all) continue;
        text += Line(file);
        json["files"].push_back({{"file", file.path},
                                 {"finding", kFindings[report.finding]},
                                 {"kind", report.kind},
                                 {"sealed", report.isSealed},
                                 {"detail", report.detail}});
    }
    text += std::to_string(files.size()) + (files.size() == 1 ? " file" : " files");
    for (const auto& [finding, count] : counts) {
        text += (finding == counts.begin()->first ? ": " : ", ") + std::to_string(count) + ' ' + kFindings[finding];
        json["summary"][kFindings[finding]] = count;
    }
    options.json ? Print(json) : Print(text + '\n');
}

Status Verify(const Options& options) {
    std::vector<Checked> files = ToCheck(options.paths);
    CheckAll(files, options.jobs);
    std::map<Status, int> counts;
    Status status = kGood;
    for (const Checked& file : files) {
        ++counts[file.report.finding];
        const bool counted = file.report.finding != kUnknown || file.isNamed || options.strict;
        if (counted) status = std::max(status, file.report.finding);
    }
    Write(files, counts, options);
    return status;
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
    command->add_flag("--json", options->json, "Write JSON");
    command->footer(
        "Exit status: 0 all is intact; of several findings the highest:\n"
        "  3  unknown       a file of an unknown kind (in folders only with --strict)\n"
        "  4  renamed       a sealed file has another name than it was sealed under\n"
        "  5  unreadable    a file or folder cannot be read, or others are writing to the file\n"
        "  6  changed       data do not match their checksums\n"
        "  7  cut           a file ends before its content does\n"
        "  8  inconsistent  counts, places or texts in a file contradict each other\n"
        "  9  malformed     XML is not well-formed, or refers to an entity\n"
        "  10 bad header    the versions of a cabinet cannot be found");
    command->callback([options, &status] { status = Verify(*options); });
}

}  // namespace tool
