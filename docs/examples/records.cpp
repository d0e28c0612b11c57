// Who changed the method, and why? A trail of signed entries, checked, attacked and checked again.
#include <qellib10/record.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

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

// What somebody does who may write to the archive.
std::string Text() {
    std::ifstream file("archive/trail.jsonl");
    return {std::istreambuf_iterator<char>(file), {}};
}
void Replace(const std::string& text) { std::ofstream("archive/trail.jsonl") << text; }

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
