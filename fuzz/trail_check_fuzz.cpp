// The bytes of an input say which entries a trail has, by which of four keys, and what is wrong with them. Laws: every
// trail gets a bounded report, and the same one again; none is right that a plain check of each line refuses, or that
// is shorter than is known; where no key was revoked and no time stamp is in it, the plain check accepts no other.
#include "qellib10/record/trail_check.h"

#include <algorithm>
#include <array>
#include <set>
#include <vector>

#include "../tests/support/temp_folder.h"
#include "law.h"
#include "qellib10/platform/crypto/digest.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/signature_check.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_keys.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_line.h"

namespace kind = qel::trail_kind;

namespace {

constexpr std::size_t kLongestUsefulInput = 96;
const std::string kTrailId(32, '7');

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}
    bool IsOver() const { return m_next == m_end; }
    unsigned Byte() { return IsOver() ? 0 : *m_next++; }

private:
    const std::uint8_t *m_next, *m_end;
};

std::array<std::byte, 32> SeedOf(unsigned signer) {
    std::array<std::byte, 32> seed;
    seed.fill(static_cast<std::byte>(signer + 1));
    return seed;
}
const qel::SshPublicKey& PublicKey(unsigned signer) {
    static const std::vector<qel::SshPublicKey> keys = [] {
        std::vector<qel::SshPublicKey> made;
        for (unsigned i = 0; i < 4; ++i) made.push_back({qel::PublicKeyOf(SeedOf(i))});
        return made;
    }();
    return keys.at(signer);
}

std::string HashOf(const std::string& line) { return qel::Hex(qel::Sha256(line)); }

std::vector<std::string> MakeLines(Input& input) {
    static constexpr std::string_view kActions[] = {
        "measured",        kind::kTrailStarted, kind::kTrailContinued, kind::kKeyAdded,  kind::kKeyEnded,
        kind::kKeyRevoked, kind::kTimeStamp,    kind::kPersonKeyAdded, kind::kSignature, kind::kRegistered};
    std::vector<std::string> lines;
    while (!input.IsOver()) {
        const unsigned what = input.Byte(), keys = input.Byte();
        if (what % 16 >= std::size(kActions)) {
            if (!lines.empty()) lines.back()[(what * 256 + keys) % lines.back().size()] ^= 1;
            continue;
        }
        qel::TrailEntry entry;
        entry.action = kActions[what % 16];
        entry.user = "mori";
        entry.host = "pc";
        entry.application = "Titrator";
        entry.version = "1";
        entry.reason = "because";
        entry.object = PublicKey(keys / 4 % 4).Text();
        entry.after = std::to_string(keys / 16);
        entry.statement = what % 16 == 6 ? "MAA=" : "";
        entry.trailId = kTrailId;
        entry.number = lines.size() + 1 + (what & 16 ? 1 : 0);
        entry.time = 1'800'000'000'000 + static_cast<std::int64_t>(lines.size()) - (what & 32 ? 1000 : 0);
        entry.bootId = "11111111-1111-1111-1111-111111111111";
        entry.previous = lines.empty() || what & 64 ? std::string(64, '0') : HashOf(lines.back());
        const std::string part = qel::SignedPart(entry);
        const unsigned signer = keys % 4;
        const auto signature = qel::SignEd25519(SeedOf(signer), qel::BytesToSign(qel::kEntryNamespace, part));
        lines.push_back(qel::LineOf(part, {PublicKey(what & 128 ? 3 - signer : signer), signature}));
    }
    return lines;
}

// The plain check of each line. @throws DataError for the first wrong one
void RequireRight(const std::vector<std::string>& lines) {
    const auto require = [](bool holds) {
        if (!holds) throw qel::DataError("wrong");
    };
    std::vector<qel::SshPublicKey> active;
    std::set<qel::SshPublicKey> announced;
    std::string previous(64, '0');
    std::int64_t time = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const qel::ReadLine line = qel::ReadEntry(lines[i]);
        const qel::TrailEntry& entry = line.entry;
        const qel::SshPublicKey& signer = line.signature.key;
        require(entry.number == i + 1 && entry.trailId == kTrailId && entry.previous == previous && entry.time >= time);
        require(line.IsSigned());
        require(std::ranges::find(active, signer) != active.end() ||
                (signer == PublicKey(0) && !announced.contains(signer)));
        qel::RequireOtherSigner(entry, signer);
        qel::ApplyToKeys(entry, active);
        require(i > 0 || !active.empty());
        announced.insert(active.begin(), active.end());
        previous = HashOf(lines[i]);
        time = entry.time;
    }
}

bool IsRight(const std::vector<std::string>& lines) {
    try {
        RequireRight(lines);
        return true;
    } catch (const qel::DataError&) {
        return false;
    }
}

qel::TrailReport Check(const std::string& path, const qel::TrailAnchors& anchors) {
    qel::TrailReport report;
    Require(qel::CheckTrail(path, anchors, report) == 1);
    Require(report.findings.size() <= qel::TrailReport::kMostFindings);
    Require(report.findingCount >= report.findings.size());
    return report;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    static const TempFolder folder;
    Input input(data, size);
    const std::vector<std::string> lines = MakeLines(input);
    std::string text;
    bool isSimple = true;
    for (const std::string& line : lines) {
        text += line + '\n';
        for (const std::string_view action : {kind::kKeyRevoked, kind::kTimeStamp})
            isSimple = isSimple && line.find(action) == std::string::npos;
    }
    folder.Write("t", text);
    const std::string path = folder.Name("t");
    const qel::TrailAnchors anchors{.trailId = kTrailId, .key = PublicKey(0).Fingerprint()};
    const qel::TrailReport report = Check(path, anchors);
    const bool isAccepted = report.findingCount == 0, isRight = !lines.empty() && IsRight(lines);
    Require(isRight || !isAccepted);
    Require(isAccepted || !isRight || !isSimple);
    const qel::TrailReport again = Check(path, anchors);
    Require(again.findingCount == report.findingCount && again.head == report.head);
    Require(
        std::ranges::equal(again.findings, report.findings, {}, &qel::TrailFinding::text, &qel::TrailFinding::text));
    Require(Check(path, {.atLeast = lines.size() + 2}).findingCount > 0);
    qel::SignatureReport signatures;
    qel::CheckSignatures(path, {}, signatures);
    return 0;
}
