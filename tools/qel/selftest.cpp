// qel selftest: whether the installed library does on this machine what it has to; what an installation's papers file.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "selftest_checks.h"
#include "table_pdf.h"

namespace tool {
namespace {

struct Options {
    std::string report, folder;
    bool force = false, json = false;
};

struct Result {
    const char* name;
    const char* expected;
    std::string found;
    bool isRight;
};

// A folder of its own, which is removed again.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& below) : path(below + "/qel-selftest-XXXXXX") {
        if (::mkdtemp(path.data()) == nullptr) throw Failure(Shown(below) + ": no folder can be made there");
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path;
};

Result Run(const SelfCheck& check) {
    try {
        const std::string found = Guarded(check.run);
        return {check.name, check.expected, found, found == check.expected};
    } catch (const Failure& failure) {
        return {check.name, check.expected, failure.what(), false};
    }
}

std::vector<Result> RunAll(const Options& options) {
    std::error_code error;
    const TemporaryFolder folder(options.folder.empty() ? std::filesystem::temp_directory_path(error).native()
                                                        : options.folder);
    std::vector<Result> results;
    for (const SelfCheck& check : SelfChecks(folder.path)) results.push_back(Run(check));
    return results;
}

std::string Host() {
    char name[256] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? name : "unknown";
}

std::string Now() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const std::time_t seconds = std::chrono::duration_cast<std::chrono::seconds>(now).count();
    std::tm utc = {};
    ::gmtime_r(&seconds, &utc);
    char text[32] = {};
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text;
}

struct Place {
    std::string time = Now(), host = Host(), system = Utf8(CSystemInfo::GetSystemName().View());
};

std::string Summary(const std::vector<Result>& results) {
    const auto right = std::ranges::count_if(results, &Result::isRight);
    return std::to_string(right) + " of " + Count(results.size(), "check", "checks") + " passed";
}

void WriteReport(const std::string& target, const std::vector<Result>& results, const Place& place,
                 const std::string& folder) {
    TablePdf table{
        .title = "Installation check",
        .headline = "Installation check of QELLIB10 " QEL_VERSION,
        .continued = "Installation check (continued)",
        .head = {place.time + ", " + Shown(place.host) + ", " + Shown(place.system),
                 "Files in " + (folder.empty() ? std::string("the folder for temporary files") : Shown(folder)),
                 Summary(results)},
        .columns = {{"Check", 70}, {"Expected", 80}, {"Found", 93}, {"Result", 30}}};
    for (const Result& result : results)
        table.rows.push_back({result.name, table.Fitted(result.expected, 1), table.Fitted(result.found, 2),
                              result.isRight ? "passed" : "FAILED"});
    table.rows.push_back({"Performed by", "", "", ""});
    table.rows.push_back({"Date, signature", "", "", ""});
    table.Write(target);
}

Status SelfTest(const Options& options) {
    if (!options.report.empty()) RequireNew(options.report, options.force, {});
    const Place place;
    const std::vector<Result> results = RunAll(options);
    const bool isRight = std::ranges::all_of(results, &Result::isRight);
    if (!options.report.empty()) WriteReport(options.report, results, place, options.folder);
    if (!options.json) {
        for (const Result& result : results)
            Print((result.isRight ? "passed  " : "FAILED  ") + std::string(result.name) + ": " + Shown(result.found) +
                  (result.isRight ? "" : ", expected " + std::string(result.expected)) + '\n');
        Print(Summary(results) + '\n');
    } else {
        Json json{{"version", QEL_VERSION}, {"time", place.time}, {"host", place.host},
                  {"system", place.system}, {"passed", isRight},  {"checks", Json::array()}};
        for (const Result& result : results)
            json["checks"].push_back({{"check", result.name},
                                      {"expected", result.expected},
                                      {"found", result.found},
                                      {"passed", result.isRight}});
        Print(json);
    }
    return isRight ? kGood : kFailed;
}

}  // namespace

void AddSelfTest(CLI::App& app, Status& status) {
    CLI::App* const command =
        app.add_subcommand("selftest", "Check that the installed library does what it has to on this machine");
    const auto options = std::make_shared<Options>();
    command->add_option("--report", options->report, "Write a report with all results")->type_name("FILE.pdf");
    command->add_option("--folder", options->folder, "Try files in this folder, such as where archives will be")
        ->check(CLI::ExistingDirectory, "")
        ->type_name("FOLDER");
    command->add_flag("--force", options->force, "Replace a report that exists");
    command->add_flag("--json", options->json, "Write JSON");
    command->footer("Exit status: 0 all checks passed; 1 one has not, or the report cannot be written");
    command->callback([options, &status] { status = SelfTest(*options); });
}

}  // namespace tool
