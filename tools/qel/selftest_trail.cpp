// The checks of trails and signatures.
#include <fstream>
#include <iterator>

#include <qellib10/record.h>

#include "selftest_checks.h"

namespace tool {
namespace {

std::string InFolder(const std::string& folder, const char* name) { return std::string(Path(folder + '/' + name)); }

std::shared_ptr<qel::KeyFileSigner> Key(const std::string& folder) {
    auto key = std::make_shared<qel::KeyFileSigner>();
    const std::string path = InFolder(folder, "key");
    if (key->Load(path) == 0 && key->Make(path, "selftest") == 0) throw Failure(Why("no key can be made"));
    return key;
}

qel::TrailSettings Settings(const std::string& folder) {
    return {.path = InFolder(folder, "trail.jsonl"),
            .headPath = InFolder(folder, "trail.head"),
            .application = "qel selftest",
            .version = QEL_VERSION};
}

std::string Verified(const std::string& folder) {
    qel::TrailReport report;
    const qel::TrailSettings settings = Settings(folder);
    if (qel::CheckTrail(settings.path, {.headFile = settings.headPath}, report) == 0)
        throw Failure(Why("the trail is not read"));
    return report.findingCount > 0 ? "findings" : report.isAnchored ? "consistent" : "not anchored";
}

std::string Trail(const std::string& folder) {
    qel::Trail trail(Settings(folder), Key(folder));
    bool isDone = trail.Open() != 0;
    for (const char* const after : {"0.02 mL", "0.05 mL"}) {
        const qel::TrailRecord record{.user = "selftest", .action = "checked", .object = "dose", .after = after};
        isDone = isDone && trail.Append(record).has_value();
    }
    if (!isDone) throw Failure(Why("the trail takes no entries"));
    return Verified(folder);
}

// @param change gets the trail's text, which is put back afterwards
template <class Change> std::string Changed(const std::string& folder, Change change) {
    const std::string path = folder + "/trail.jsonl";
    std::ifstream file(path, std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(file), {}};
    std::string text = whole;
    change(text);
    std::ofstream(path, std::ios::binary) << text;
    const std::string found = Verified(folder);
    std::ofstream(path, std::ios::binary) << whole;
    return found;
}

void ChangeValue(std::string& text) {
    const std::size_t at = text.find("0.05 mL");
    if (at == std::string::npos) throw Failure("the trail does not have its entries");
    text.replace(at, 4, "0.06");
}
void RemoveLast(std::string& text) {
    if (text.size() < 2) throw Failure("the trail does not have its entries");
    text.resize(text.rfind('\n', text.size() - 2) + 1);
}

// A version that can be signed.
qel::SigningRequest Registered(const std::string& folder, qel::Trail& trail) {
    std::ofstream(folder + "/version", std::ios::binary) << "1";
    qel::RecordedCabinet cabinet(
        trail, {.cabinetPath = InFolder(folder, "signed.hcf"), .recordPath = InFolder(folder, "signed.qel")});
    const bool isThere =
        cabinet.Open() != 0 && cabinet.Register(InFolder(folder, "version"), "selftest", "").has_value();
    const auto versions = isThere ? cabinet.List() : std::nullopt;
    if (!versions || versions->size() != 1) throw Failure(Why("no version is registered"));
    return {.cabinet = cabinet.Guid(),
            .cabinetVersion = 1,
            .size = versions->front().size,
            .sha256 = versions->front().sha256,
            .meaning = std::string(qel::signature_meaning::kReviewed)};
}

std::string Signature(const std::string& folder) {
    qel::Trail trail(Settings(folder), Key(folder));
    auto person = std::make_shared<qel::PersonKey>();
    if (trail.Open() == 0 || person->Make(InFolder(folder, "person"), "selftest", "Self Test", "violet") == 0)
        throw Failure(Why("no person's key can be made"));
    const qel::TrailRecord added{.user = "selftest",
                                 .action = std::string(qel::trail_kind::kPersonKeyAdded),
                                 .object = person->PublicKey(),
                                 .after = person->PrintedName()};
    if (!trail.Append(added)) throw Failure(Why("the trail takes no key"));
    qel::Signing signing(trail, person, {});
    const qel::SigningRequest request = Registered(folder, trail);
    const bool isRefused = !signing.Sign(request, "selftest", "indigo");
    const bool isSigned = signing.Sign(request, "selftest", "violet").has_value();
    qel::SignatureReport report;
    const bool isRight = qel::CheckSignatures(Settings(folder).path, {}, report) != 0 && report.signatures == 1 &&
                         report.findingCount == 0;
    return std::string(isRefused ? "a wrong password refused" : "a wrong password taken") +
           (isSigned ? ", signed" : ", not signed") + (isRight ? ", right" : ", not right");
}

}  // namespace

void AddTrailChecks(std::vector<SelfCheck>& checks, const std::string& folder) {
    checks.push_back({"a trail of signed entries", "consistent", [=] { return Trail(folder); }});
    checks.push_back({"a changed entry of it", "findings", [=] { return Changed(folder, ChangeValue); }});
    checks.push_back({"its last entry removed", "findings", [=] { return Changed(folder, RemoveLast); }});
    checks.push_back(
        {"a person's signature", "a wrong password refused, signed, right", [=] { return Signature(folder); }});
}

}  // namespace tool
