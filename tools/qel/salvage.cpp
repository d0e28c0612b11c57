// qel cabinet salvage: what is still whole in a damaged cabinet.
#include <filesystem>

#include "tool.h"

namespace tool {
namespace {

namespace fs = std::filesystem;
using Piece = qel::CabinetPiece;

struct Options {
    std::string cabinet, target;
    bool json = false;
};

struct Meaning {
    const char* name;
    Status status;
    const char* detail;
};
// In the order of qel::CabinetPiece::State.
constexpr Meaning kMeanings[] = {
    {"whole", kGood, ""},
    {"unplaced", kInconsistent, "matches its checksums, but it may belong to a document that is a cabinet"},
    {"changed", kChanged, "does not match its checksums"},
    {"cut", kCut, "the file ends within it"},
    {"lost", kMissing, "not found"},
    {"rest", kGood, "after the latest version"},
};

const Meaning& MeaningOf(const Piece& piece) { return kMeanings[static_cast<std::size_t>(piece.state)]; }

// Where the versions go: files of a folder, or a new cabinet.
class Target {
public:
    virtual ~Target() = default;
    // @return the file that has the version now; empty if it was not taken
    virtual std::string Take(const qel::CabinetSalvage& salvage, const Piece& piece) = 0;
    virtual void Finish(const qel::CabinetSalvage&) {}
};

class Folder : public Target {
public:
    explicit Folder(std::string path) : m_path(std::move(path)) {
        std::error_code error;
        fs::create_directory(m_path, error);
        if (!fs::is_directory(m_path, error)) throw Failure(Shown(m_path) + ": the folder cannot be made");
    }

    std::string Take(const qel::CabinetSalvage& salvage, const Piece& piece) override {
        std::string name = "version-" + std::to_string(piece.number);
        if (piece.state == Piece::State::kUnplaced) name = "unplaced-" + name + "-byte-" + std::to_string(piece.at);
        const std::string file = (fs::path(m_path) / name).string();
        std::error_code missing;
        if (fs::exists(fs::symlink_status(file, missing))) throw Failure(Shown(file) + ": exists");
        WriteAsAWhole(file, false, [&](const qel::Descriptor& copy) {
            if (!salvage.CopyData(piece, copy, Path(file).View()))
                throw Failure(Shown(file) + ": the disk has given other bytes than before", kUnreadable);
        });
        return file;
    }

private:
    std::string m_path;
};

class NewCabinet : public Target {
public:
    explicit NewCabinet(const std::string& path)
        : m_path(path), m_made(OnFile(path, [&] { return qel::SalvagedCabinet(Path(path).View()); })) {}

    std::string Take(const qel::CabinetSalvage& salvage, const Piece& piece) override {
        return OnFile(m_path, [&] { return m_made.Add(salvage, piece) ? m_path : ""; });
    }
    void Finish(const qel::CabinetSalvage& salvage) override {
        OnFile(m_path, [&] { m_made.Commit(salvage.Guid().value_or(CGuid::CreateNewGuid())); });
    }

private:
    std::string m_path;
    qel::SalvagedCabinet m_made;
};

std::unique_ptr<Target> TargetOf(const Options& options) {
    std::error_code missing;
    if (options.target.ends_with('/') || fs::is_directory(options.target, missing))
        return std::make_unique<Folder>(options.target);
    if (fs::exists(fs::symlink_status(options.target, missing))) throw Failure(Shown(options.target) + ": exists");
    RequireFolderOf(options.target);
    return std::make_unique<NewCabinet>(options.target);
}

// Whoever forges a cabinet may put millions of versions into it: lines for people are written at once, and JSON, which
// is one value, has so many parts and the number of the others.
constexpr std::size_t kMostParts = 10'000;

struct Salvaged {
    Json json;
    std::size_t taken = 0, notListed = 0;
    Status status = kGood;
};

std::string Line(const Options& options, const Piece& piece, const std::string& file, const std::string& detail) {
    std::string line = Shown(options.cabinet) + ": ";
    if (piece.number > 0) line += "version " + std::to_string(piece.number);
    if (piece.state == Piece::State::kLost && piece.lastNumber != piece.number)
        line += piece.lastNumber == 0 ? " and perhaps later ones" : " to " + std::to_string(piece.lastNumber);
    line += (piece.number > 0 ? ", byte " : "byte ") + std::to_string(piece.at) + ", " +
            Count(piece.size, "byte", "bytes") + ": " + MeaningOf(piece).name;
    if (!detail.empty()) line += ": " + detail;
    return line + (file.empty() ? "\n" : ", now in " + Shown(file) + '\n');
}

void Take(const Options& options, const qel::CabinetSalvage& salvage, const Piece& piece, Target& target,
          Salvaged& result) {
    std::string file, detail = MeaningOf(piece).detail;
    Status status = MeaningOf(piece).status;
    if (piece.HasData()) {
        try {
            file = target.Take(salvage, piece);
            if (file.empty()) {
                status = std::max(status, kInconsistent);
                detail += std::string(detail.empty() ? "" : "; ") + "not taken out, as a version before it is missing";
            }
        } catch (const Failure& failure) {
            status = std::max(status, failure.ExitStatus());
            detail = failure.what();
        }
    }
    if (!file.empty()) ++result.taken;
    result.status = std::max(result.status, status);
    if (!options.json) return Print(Line(options, piece, file, detail));
    if (result.json["parts"].size() == kMostParts) {
        ++result.notListed;
        return;
    }
    result.json["parts"].push_back({{"state", MeaningOf(piece).name},
                                    {"version", piece.number},
                                    {"lastVersion", piece.lastNumber},
                                    {"byte", piece.at},
                                    {"size", piece.size},
                                    {"status", static_cast<int>(status)},
                                    {"target", file},
                                    {"detail", detail}});
}

void Summarize(const Options& options, const qel::CabinetSalvage& salvage, Salvaged& result) {
    const std::optional<CGuid> guid = salvage.Guid();
    result.json["guid"] = guid ? Json(std::string(guid->GetString())) : Json(nullptr);
    result.json["headerIntact"] = salvage.HasHeader();
    result.json["unreadableBytes"] = salvage.UnreadableBytes();
    result.json["givenUp"] = salvage.HasGivenUp();
    result.json["takenOut"] = result.taken;
    result.json["partsNotListed"] = result.notListed;
    std::string text;
    const std::string name = Shown(options.cabinet) + ": ";
    if (!salvage.HasHeader()) {
        text += name + "its header is damaged" +
                (guid ? "" : ", and its identity is not known: a new cabinet has one of its own") + '\n';
        result.status = std::max(result.status, kBadHeader);
    }
    if (salvage.UnreadableBytes() > 0)
        text += name + Count(salvage.UnreadableBytes(), "byte", "bytes") + " cannot be read\n";
    if (salvage.HasGivenUp()) text += name + "has too many headers of versions to look at all of them\n";
    text += Count(result.taken, "version", "versions") + " taken out\n";
    options.json ? Print(result.json) : Print(text);
}

Status Salvage(const Options& options) {
    CQFile file;
    OnFile(options.cabinet, [&] { Open(file, options.cabinet, CFile::modeRead | CFile::shareDenyWrite); });
    qel::CabinetSalvage salvage(file);
    const std::unique_ptr<Target> target = TargetOf(options);
    Salvaged result{{{"file", options.cabinet}, {"parts", Json::array()}}};
    while (const std::optional<Piece> piece = salvage.Next()) Take(options, salvage, *piece, *target, result);
    target->Finish(salvage);
    Summarize(options, salvage, result);
    return result.status;
}

}  // namespace

void AddSalvage(CLI::App& cabinet, Status& status) {
    const auto options = std::make_shared<Options>();
    CLI::App* const command = cabinet.add_subcommand("salvage", "Take out what is whole of a damaged cabinet");
    AddFile(*command, "CABINET", options->cabinet, "The cabinet, which stays as it is");
    command
        ->add_option("--to", options->target,
                     "A folder for the versions, also one to be made, with a / at its end; or a new cabinet")
        ->required()
        ->type_name("TARGET");
    command->add_flag("--json", options->json, "Write JSON");
    command->footer(
        "Exit status: 0 all versions were taken out; of several findings the highest:\n"
        "  1  a file cannot be written, or exists\n"
        "  6  changed       a version does not match its checksums\n"
        "  7  cut           the file ends within a version\n"
        "  8  inconsistent  it is not certain which version it is, or one before it is missing in the new cabinet\n"
        "  10 bad header    the cabinet's header is damaged: versions may be missing at its end\n"
        "  15 missing       versions are not found");
    command->callback([options, &status] { status = Salvage(*options); });
}

}  // namespace tool
