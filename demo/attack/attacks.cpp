#include "demo/attack/attacks.h"

#include <algorithm>

#include "demo/attack/attacker.h"
#include "demo/attack/clock_set_back.h"
#include "demo/attack/forged_cabinet.h"
#include "demo/result/archive_trail.h"
#include "demo/result/result_file.h"
#include "demo/support/failure.h"
#include "demo/support/file_step.h"

namespace titration {
namespace {

using Archive = const CopiedArchive&;
using Lines = std::vector<std::string>;

constexpr const char* kCabinet = "results.hcf";
constexpr const char* kMethod = "\"action\":\"method changed\"";
constexpr const char* kRegistered = "\"action\":\"result registered\"";
constexpr const char* kSignature = "\"action\":\"signature\"";

template <class Change> auto OnLines(Change change) {
    return [change](Archive archive) {
        Lines lines = archive.Lines();
        change(lines);
        archive.WriteLines(lines);
    };
}
template <class Change> auto OnCabinet(Change change) {
    return [change](Archive archive) {
        ForgedCabinet cabinet(archive.Read(kCabinet));
        if (cabinet.versions.size() < 2) throw Failure("there are fewer than two versions");
        change(cabinet);
        archive.Write(kCabinet, cabinet.Bytes());
    };
}
// In the last entry of a kind.
auto OnEntry(const char* kind, const char* from, const char* to) {
    return [=](Archive archive) {
        Lines lines = archive.Lines();
        std::string& line = lines[archive.LineWith(kind)];
        const std::size_t at = line.find(from);
        if (at == std::string::npos) throw Failure(std::string("the trail has no entry with ") + from);
        archive.WriteLines((line.replace(at, std::string_view(from).size(), to), lines));
    };
}
void Flip(Archive archive, const char* name) {
    std::string bytes = archive.Read(name);
    bytes.at(bytes.size() / 2) ^= 1;
    archive.Write(name, bytes);
}

// The sealed values with another volume, sealed again.
std::string SealedAgain(Archive archive) {
    const std::string path = archive.Path("variables.qel");
    CCalcVariableList values = LoadVariables(path);
    CCalcVariable value;
    values.GetVariableData(0, &value);
    value.m_dValue += 1;
    values.SetVariableData(0, value);
    StoreVariables(values, path);
    return archive.Read("variables.qel");
}

// The last digit of the result, one higher or lower.
void ChangeTrace(Archive archive) {
    const std::string name = archive.SignedTrace();
    std::string trace = archive.Read(name.c_str());
    constexpr std::string_view kRounded = "\"rounded\": \"";
    const std::size_t at = trace.rfind(kRounded);
    if (at == std::string::npos) throw Failure(name + " has no result");
    trace.at(trace.find('"', at + kRounded.size()) - 1) ^= 1;
    archive.Write(name.c_str(), trace);
}

// All of the archive as it was when the latest version that is signed was registered.
void PutOldStateBack(Archive archive) {
    Lines lines = archive.Lines();
    lines.resize(archive.LineWith(kSignature));
    archive.WriteLines(lines);
    lines.resize(archive.LineWith(kRegistered) + 1);
    archive.WriteLines(lines);
    const std::string key = "\"cabinetversion\":";
    ForgedCabinet cabinet(archive.Read(kCabinet));
    cabinet.versions.resize(std::stoul(lines.back().substr(lines.back().find(key) + key.size())));
    archive.Write(kCabinet, cabinet.Bytes());
    archive.Write("variables.qel", cabinet.versions.back());
    archive.Remove(archive.SignedReport().c_str());
}

// Of who has registered the latest version, in the records beside the cabinet.
void RenameOperator(Archive archive) {
    const std::string line = archive.Lines()[archive.LineWith(kRegistered)], key = "\"user\":\"";
    const std::size_t at = line.find(key) + key.size();
    const std::string name = line.substr(at, line.find('"', at) - at);
    archive.Change("renewals.qel", name, (name.starts_with('x') ? 'y' : 'x') + name.substr(1));
}

void SetClockBack(Archive archive) {
    Lines lines = archive.Lines();
    constexpr std::string_view kTime = "\"time\":\"";
    char& lastDigitOfYear = lines.back().at(lines.back().find(kTime) + kTime.size() + 3);
    lastDigitOfYear = lastDigitOfYear == '0' ? '1' : static_cast<char>(lastDigitOfYear - 1);
    archive.WriteLines(lines);
}

// The application makes an entry, and somebody has set the clock of the computer back by a day.
void EnterWithClockSetBack(Archive archive) {
    const Installation installation(archive.Folder());
    const ClockSetBack clock(std::chrono::hours(24));
    qel::Trail trail({.path = archive.Path(kTrail),
                      .headPath = installation.HeadPath(),
                      .application = "titration",
                      .version = TITRATION_VERSION},
                     installation.Key());
    if (trail.Open() == 0 || !trail.Append({.user = "demo", .action = std::string(qel::trail_kind::kLogon)}))
        throw Failure(Why("the trail does not take the entry"));
}

// The signature of an entry in the place of another one's.
void ExchangeSignatures(Archive archive) {
    Lines lines = archive.Lines();
    const auto at = [](const std::string& line) { return line.find("\"sig\":\""); };
    std::string& line = lines[archive.LineWith(kMethod)];
    const std::string& other = lines[archive.LineWith(kRegistered)];
    line = line.substr(0, at(line)) + other.substr(at(other));
    archive.WriteLines(lines);
}

void AddAttacksOnEntries(std::vector<Attack>& all) {
    const auto add = [&](const char* what, const char* finding, std::function<void(Archive)> run) {
        all.push_back({what, Known::kHead, finding, std::move(run)});
    };
    add("a value in an entry changed", "not what was signed", OnEntry(kMethod, "\"after\":\"", "\"after\":\"1"));
    add("the user of an entry changed", "not what was signed", OnEntry(kSignature, "\"user\":\"", "\"user\":\"x"));
    add("the reason of a change changed", "not what was signed", OnEntry(kMethod, "\"reason\":\"", "\"reason\":\"x"));
    add("the time of an entry set back", "is not what was signed", SetClockBack);
    add("an entry written with the clock set back", "the clock was set back to", EnterWithClockSetBack);
    add("a blank put between two keys of an entry", "is no entry", OnEntry(kMethod, ",\"user\":", ", \"user\":"));
    add("an entry deleted", "names another one before it", OnLines([](Lines& lines) { lines.erase(lines.end() - 5); }));
    add("two entries exchanged", "entry", OnLines([](Lines& lines) { std::swap(lines[9], lines[10]); }));
    add("an entry repeated", "entry", OnLines([](Lines& lines) { lines.insert(lines.begin() + 9, lines[9]); }));
    add("the signature of another entry put into one", "not what was signed", ExchangeSignatures);
    add("the last three entries cut off", "are missing", OnLines([](Lines& lines) { lines.resize(lines.size() - 3); }));
    add("the last entry torn on purpose", "is missing", [](Archive archive) {
        const std::string text = archive.Read("trail.jsonl");
        archive.Write("trail.jsonl", text.substr(0, text.size() - 100));
    });
    add("a line of a million characters appended", "entry",
        [](Archive a) { a.Write("trail.jsonl", a.Read("trail.jsonl") + std::string(1'000'000, ' ')); });
    add("the trail removed", "not found", [](Archive archive) { archive.Remove("trail.jsonl"); });
}

void AddAttacksWithAnotherKey(std::vector<Attack>& all) {
    const auto again = [](Archive archive) { Attacker(archive).MakeTrailAgain(); };
    all.push_back({"an entry appended with an own key", Known::kHead, "signed by a key",
                   [](Archive archive) { Attacker(archive).Append(kRegistered, "demo", "mori"); }});
    all.push_back({"an own key announced with itself", Known::kHead, "signed by a key", [](Archive archive) {
                       const Attacker attacker(archive);
                       attacker.Append("\"action\":\"person key added\"", "person key added", "key added");
                   }});
    all.push_back({"allowed_signers replaced by a list with an own key", Known::kHead, "that no entry has announced",
                   [](Archive archive) {
                       archive.Write(kAllowedSigners, "installation " + Attacker(archive).PublicKey() + '\n');
                   }});
    all.push_back({"the whole trail made again with an own key", Known::kHead, "that of another trail", again});
    all.push_back({"the same, and only the installation's key known", Known::kKey, "this is another trail", again});
    all.push_back({"the same, and nothing known", Known::kNothing, "not anchored", again});
    all.push_back({"the state before the signatures put back", Known::kHead, "are missing", PutOldStateBack});
    all.push_back({"the same, and the head not known", Known::kNothing, "not anchored", PutOldStateBack});
}

void AddAttacksOnVersions(std::vector<Attack>& all) {
    const auto add = [&](const char* what, const char* finding, std::function<void(Archive)> run) {
        all.push_back({what, Known::kHead, finding, std::move(run)});
    };
    add("the values of a version changed, sealed and filed again", "is not what was registered", [](Archive archive) {
        ForgedCabinet cabinet(archive.Read(kCabinet));
        cabinet.versions.back() = SealedAgain(archive);
        archive.Write(kCabinet, cabinet.Bytes());
    });
    add("the last version removed", "was registered, and is not there",
        OnCabinet([](ForgedCabinet& cabinet) { cabinet.versions.pop_back(); }));
    add("two versions exchanged", "is not what was registered",
        OnCabinet([](ForgedCabinet& cabinet) { std::swap(cabinet.versions.at(0), cabinet.versions.at(1)); }));
    add("a version added without an entry", "no entry announced it",
        OnCabinet([](ForgedCabinet& cabinet) { cabinet.versions.push_back(cabinet.versions[0]); }));
    add("another cabinet put in its place", "is missing",
        OnCabinet([](ForgedCabinet& cabinet) { cabinet.guid = std::string(16, 'x'); }));
    add("the cabinet removed", "is missing", [](Archive archive) { archive.Remove(kCabinet); });
    add("who has registered a version changed", "renewals.qel: version", RenameOperator);
}

void AddAttacksOnSignatures(std::vector<Attack>& all) {
    const auto add = [&](const char* what, const char* finding, std::function<void(Archive)> run) {
        all.push_back({what, Known::kHead, finding, std::move(run)});
    };
    add("a signature moved to another version", "the entry says something else than its statement",
        OnEntry(kSignature, "\"cabinetversion\":", "\"cabinetversion\":1"));
    add("an approval used again", "the statement was used before",
        [](Archive archive) { Attacker(archive).Append(kSignature, "", ""); });
    add("what a person has signed changed", "the statement is not what was signed",
        OnEntry(kSignature, R"(meaning\":\")", R"(meaning\":\"x)"));
    add("the report changed that was signed", "has signed",
        [](Archive archive) { Flip(archive, archive.SignedJob().c_str()); });
    add("the printed report changed", "is not what was recorded",
        [](Archive archive) { Flip(archive, archive.SignedReport().c_str()); });
    add("the exported list changed", "versions.csv is not what was recorded",
        [](Archive archive) { Flip(archive, "versions.csv"); });
    add("a digit of a trace changed", ".json is not what was recorded", ChangeTrace);
    add("a sealed file changed and sealed again", "variables.qel is not what was recorded",
        [](Archive archive) { SealedAgain(archive); });
}

}  // namespace

std::vector<Attack> Attacks() {
    std::vector<Attack> all;
    AddAttacksOnEntries(all);
    AddAttacksWithAnotherKey(all);
    AddAttacksOnVersions(all);
    AddAttacksOnSignatures(all);
    return all;
}

}  // namespace titration
