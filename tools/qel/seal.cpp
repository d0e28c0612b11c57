// qel seal: seals data files, also sealed ones again.
#include <algorithm>

#include "file_check.h"

namespace tool {
namespace {

struct Options {
    std::vector<std::string> files;
    std::string after;
    bool isNew = false, json = false;
};

// A copy with the file's identity; the file is closed.
CCheckDatafile ReadSeal(const std::string& path) {
    return OnFile(path, [&] {
        CQFile file;
        Open(file, path, CFile::modeRead | CFile::shareDenyWrite);
        CCheckDatafile seal;
        seal.EnableCheckFilename(0);
        if (seal.ReadPackData(&file) == 0) throw Failure(Why("has no seal"), kChanged);
        return seal;
    });
}

CCheckDatafile Seal(const std::string& path, const Options& options) {
    const FileReport report = CheckFile(path);
    CCheckDatafile seal;
    if (!options.after.empty()) seal = ReadSeal(options.after);
    seal.EnableCheckFilename(1);
    OnFile(path, [&] {
        if (report.finding == kRenamed) throw Failure("is renamed, " + report.detail, kRenamed);
        if (report.finding > kRenamed) throw Failure(report.detail, report.finding);
        if (report.isSealed && (options.isNew || !options.after.empty())) throw Failure("is sealed already");
        CQFile file;
        Open(file, path, CFile::modeReadWrite | CFile::shareExclusive);
        if (seal.PackUpdateData(&file, report.isSealed ? 0 : 1) == 0) throw Failure(Why("cannot be sealed"));
        file.Flush();
        file.Close();
    });
    return seal;
}

// Continues after a file that cannot be sealed.
Status SealAll(const Options& options) {
    Json json = Json::array();
    Status status = kGood;
    for (const std::string& path : options.files) {
        try {
            const CCheckDatafile seal = Seal(path, options);
            const std::string guid(seal.GetGUID().GetString());
            json.push_back({{"file", path}, {"version", seal.GetVersion()}, {"guid", guid}});
            if (!options.json)
                Print(Shown(path) + ": sealed as version " + std::to_string(seal.GetVersion()) + " of " + guid + '\n');
        } catch (const Failure& failure) {
            status = std::max(status, Complain(failure.what(), failure.ExitStatus()));
        }
    }
    if (options.json) Print(json);
    return status;
}

}  // namespace

void AddSeal(CLI::App& app, Status& status) {
    CLI::App* const command = app.add_subcommand("seal", "Seal data files; a sealed file gets its next version");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->files, "Files to seal")->required();
    command->add_flag("--new", options->isNew, "Refuse files that are sealed already");
    command->add_option("--after", options->after, "Take over the identity of this sealed file, with its next version")
        ->type_name("FILE");
    command->add_flag("--json", options->json, "Write JSON");
    command->callback([options, &status] { status = SealAll(*options); });
}

}  // namespace tool
