// qel cabinet: the versions of a document in its history cabinet.
#include <limits>
#include <optional>

#include "content_check.h"
#include "file_check.h"

namespace tool {
namespace {

struct Options {
    std::string cabinet, file;
    DWORD version = 0;  // the latest
    bool force = false, json = false;
};

// The versions that could be read are also listed if the cabinet is damaged after them.
Status List(const Options& options) {
    const CString name = Path(options.cabinet);
    Json json{{"guid", nullptr}, {"versions", Json::array()}};
    Status status = kGood;
    try {
        OnFile(options.cabinet, [&] {
            const CFile file(name, CFile::modeRead | CFile::shareDenyWrite);
            qel::CabinetReader cabinet = CabinetOf(file);
            CGuid guid = cabinet.Header().guid;
            json["guid"] = std::string(guid.GetString());
            while (const std::optional<qel::CabinetVersion> version = cabinet.Next()) {
                const bool isIntact = cabinet.IsIntact(*version);
                if (!isIntact) status = kChanged;
                json["versions"].push_back(
                    {{"version", version->number}, {"size", version->size}, {"intact", isIntact}});
            }
        });
    } catch (const Failure& failure) {
        status = Complain(failure.what(), failure.ExitStatus());
    }
    if (options.json) {
        Print(json);
    } else if (!json["guid"].is_null()) {
        Print("cabinet " + json["guid"].get<std::string>() + '\n');
        for (const Json& version : json["versions"])
            Print("version " + version["version"].dump() + ", " + version["size"].dump() + " bytes" +
                  (version["intact"].get<bool>() ? "\n" : ", changed\n"));
    }
    return status;
}

void OpenForWriting(CHistoryCabinetFile& cabinet, const std::string& path) {
    RequireUnsealed(path);
    if (cabinet.Open(Path(path), 0) == 0) throw Named(path, LastRefusal("cannot be opened", kBadHeader));
}

// @return false also if that cannot be found out
bool IsMissing(const CString& name) {
    CFileException error;
    if (CFile().Open(name, CFile::modeRead | CFile::shareDenyNone, &error) != 0) return false;
    return error.m_cause == CFileException::fileNotFound || error.m_cause == CFileException::badPath;
}

// @return whether the new file has got its name; false if there is one of this name already
bool CommitIfFirst(qel::Replacement& made) {
    constexpr LONG kExists = 80;
    try {
        made.CommitNew();
        return true;
    } catch (const CFileException& failure) {
        if (failure.m_lOsError != kExists) throw;
        return false;
    }
}

// The document may be what cannot be read.
Failure NotAdded(const Options& options) {
    const bool isOfDocument = CString(qel::LastFailure().item.c_str()) == Path(options.file);
    const std::string& file = isOfDocument ? options.file : options.cabinet;
    return Failure(Shown(file) + ": " + Why("the version cannot be added"), isOfDocument ? kUnreadable : kFailed);
}

qel::CabinetVersion Find(qel::CabinetReader& cabinet, const Options& options) {
    const DWORD latest = cabinet.Header().versionCount;
    const DWORD number = options.version != 0 ? options.version : latest;
    if (number > latest)
        throw CLI::ValidationError("--version: " + options.cabinet + " has " + Count(latest, "version", "versions"));
    while (const std::optional<qel::CabinetVersion> version = cabinet.Next()) {
        if (version->number == number) return *version;
    }
    throw Failure("has no versions");
}

// The data of a damaged version may still be useful, but must not replace another file.
Status Extract(const Options& options) {
    RequireNew(options.file, options.force, {options.cabinet});
    const bool isNew = IsMissing(Path(options.file));
    CQFile file;
    bool isIntact = false;
    const qel::CabinetVersion version = OnFile(options.cabinet, [&] {
        Open(file, options.cabinet, CFile::modeRead | CFile::shareDenyWrite);
        qel::CabinetReader cabinet = CabinetOf(file);
        const qel::CabinetVersion found = Find(cabinet, options);
        isIntact = cabinet.IsIntact(found);
        return found;
    });
    if (isIntact || isNew) {
        WriteAsAWhole(options.file, options.force, [&](const qel::Descriptor& target) {
            qel::CopyBytes(file.ReadableDescriptor(), version.dataAt, target, 0, version.size, options.cabinet,
                           options.file);
        });
    }
    if (isIntact) return kGood;
    throw Failure(Shown(options.cabinet) + ": version " + std::to_string(version.number) + " is damaged; " +
                      Shown(options.file) + (isNew ? " has what was found of it" : " stays as it was"),
                  kChanged);
}

// A cabinet is made under a name of its own: Create would empty one that another program has made meanwhile.
// @return false if another program has made one
bool MakeWithVersion(CHistoryCabinetFile& cabinet, const CString& name, const CString& source, const Options& options) {
    const auto made = OnFile(options.cabinet, [&] { return std::make_unique<qel::Replacement>(name.View()); });
    const CString unfinished = OnFile(options.cabinet, [&] { return made->Path(); });
    if (cabinet.Create(unfinished) == 0) throw Failure(Shown(options.cabinet) + ": " + Why("cannot be made"));
    if (cabinet.RegistNewVersion(source) == 0) throw NotAdded(options);
    cabinet.Close();
    return OnFile(options.cabinet, [&] { return CommitIfFirst(*made); });
}

Status Add(const Options& options) {
    RequireOther(options.cabinet, options.file);
    CHistoryCabinetFile cabinet;
    const CString name = Path(options.cabinet);
    const CString source = Path(options.file);
    const bool isMissing = IsMissing(name);
    if (isMissing) RequireFolderOf(options.cabinet);
    if (!isMissing || !MakeWithVersion(cabinet, name, source, options)) {
        OpenForWriting(cabinet, options.cabinet);
        if (cabinet.RegistNewVersion(source) == 0) throw NotAdded(options);
    }
    const DWORD version = cabinet.GetLatestVersion();
    CGuid guid = cabinet.GetGUID();
    options.json ? Print(Json{{"file", options.cabinet}, {"version", version}, {"guid", std::string(guid.GetString())}})
                 : Print("version " + std::to_string(version) + '\n');
    return kGood;
}

}  // namespace

void AddCabinet(CLI::App& app, Status& status) {
    CLI::App* const command = app.add_subcommand("cabinet", "List, take out and add versions of a document");
    command->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, const char* meaning, Status (*run)(const Options&)) {
        CLI::App* const action = command->add_subcommand(name, meaning);
        AddFile(*action, "CABINET", options->cabinet, "The cabinet");
        action->callback([options, run, &status] { status = run(*options); });
        return action;
    };
    CLI::App* const list = add("list", "List the versions, and check them", List);
    CLI::App* const extract = add("extract", "Take a version out", Extract);
    AddFile(*extract, "TARGET", options->file, "The file to write");
    extract->add_option("--version", options->version, "Its number (else the latest one)")
        ->transform(WholeNumber(1, std::numeric_limits<DWORD>::max()))
        ->type_name("N");
    extract->add_flag("--force", options->force, "Replace a file that exists");
    CLI::App* const store = add("add", "Add a version; makes the cabinet when it is missing", Add);
    AddFile(*store, "SOURCE", options->file, "The file that becomes the next version");
    for (CLI::App* const action : {list, store}) action->add_flag("--json", options->json, "Write JSON");
    AddSalvage(*command, status);
}

}  // namespace tool
