// Who changed the method, and why? A trail of signed entries and a recorded result, attacked and checked.
#include <qellib10/record.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

// The installation's key. Where it matters an agent of another user has it: see qel::SshAgentSigner.
std::shared_ptr<qel::Signer> Installation(const std::string& folder) {
    const std::string key = folder + "/key";
    const std::string make = "ssh-keygen -q -t ed25519 -N '' -C titrator -f " + key;
    if (std::system(make.c_str()) != 0) return nullptr;
    auto signer = std::make_shared<qel::KeyFileSigner>();
    return signer->Load(key) != 0 ? signer : nullptr;
}

bool Report(qel::Trail& trail, const char* user, std::string_view action, const char* object, const char* after) {
    qel::TrailRecord record;
    record.user = user;
    record.action = action;
    record.object = object;
    record.after = after;
    if (action == qel::trail_kind::kMethodChanged) {
        record.before = "dose 0.05 mL";
        record.reason = "end points were passed";
    }
    return trail.Append(record).has_value();
}

void Verify(const char* what, const qel::TrailAnchors& anchors) {
    qel::TrailReport report;
    if (qel::CheckTrail("archive/trail.jsonl", anchors, report) == 0) return;
    std::printf("%s: %d entries, %s\n", what, static_cast<int>(report.entries),
                report.findingCount > 0 ? "findings"
                : report.isAnchored     ? "consistent"
                                        : "consistent, not anchored");
    for (const qel::TrailFinding& finding : report.findings)
        std::printf("  entry %d: %s\n", static_cast<int>(finding.entry), finding.text.c_str());
}

// Registers a result, unless there is none, and lists all of them.
bool Versions(qel::Trail& trail, const char* result) {
    qel::RecordedCabinet results(trail, {.cabinetPath = "archive/results.hcf", .recordPath = "archive/renewals.qel"});
    if (results.Open() == 0) return false;
    if (result != nullptr) {
        std::ofstream("result.txt") << result;
        if (!results.Register("result.txt", "mori", "blank raised")) return false;
    }
    const std::optional<std::vector<qel::RecordedVersion>> versions = results.List();
    if (!versions) return false;
    for (const qel::RecordedVersion& version : *versions)
        std::printf("version %d of %s: %s\n", static_cast<int>(version.version), version.user.c_str(),
                    version.IsFinding() ? "not what was recorded" : "as recorded");
    return true;
}

// What somebody does who may write to the archive.
std::string Text(const char* name = "archive/trail.jsonl") {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
void Replace(const std::string& text, const char* name = "archive/trail.jsonl") {
    std::ofstream(name, std::ios::binary) << text;
}

}  // namespace

int main() {
    for (const char* folder : {"archive", "installation"}) std::filesystem::create_directory(folder);
    const std::shared_ptr<qel::Signer> signer = Installation("installation");
    if (signer == nullptr) return 1;
    qel::Trail trail({.path = "archive/trail.jsonl",
                      .headPath = "installation/trail.head",
                      .application = "Titrator",
                      .version = "2.1"},
                     signer);
    if (trail.Open() == 0 || !Report(trail, "mori", qel::trail_kind::kLogon, "", "") ||
        !Report(trail, "mori", qel::trail_kind::kMethodChanged, "Chloride", "dose 0.02 mL") ||
        !Report(trail, "mori", qel::trail_kind::kLogout, "", "")) {
        std::puts(qel::LastFailure().text.c_str());
        return 1;
    }
    if (!Versions(trail, "chloride 35.1 mg/L")) return 1;
    std::string cabinet = Text("archive/results.hcf");
    cabinet.replace(cabinet.find("35.1"), 4, "35.4");
    Replace(cabinet, "archive/results.hcf");
    if (!Versions(trail, nullptr)) return 1;

    qel::TrailReader reader;
    if (reader.Open("archive/trail.jsonl") == 0) return 1;
    while (const std::optional<qel::TrailEntry> entry = reader.Next())
        std::printf("%d %s: %s\n", static_cast<int>(entry->number),
                    entry->user.empty() ? "the installation" : entry->user.c_str(), entry->action.c_str());

    const qel::TrailAnchors head{.headFile = "installation/trail.head"};
    Verify("from itself", {});
    Verify("with the head file", head);

    const std::string text = Text();
    std::string changed = text;
    changed.replace(text.find("0.05 mL"), 4, "0.01");
    Replace(changed);
    Verify("a value changed", head);
    Replace(text.substr(0, text.rfind('\n', text.size() - 2) + 1));
    Verify("the last entry removed", head);
    Verify("the same without the head file", {});
    return 0;
}
