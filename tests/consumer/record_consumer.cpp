// What an instrument's service does that only keeps a trail: no drawing, no printing, no users.
#include <qellib10/record.h>

#include <cstdio>
#include <cstdlib>

int main() {
    for (const char* name : {"trail.key", "trail.key.pub", "trail.jsonl", "trail.head"}) std::remove(name);
    // Without ssh-keygen there is no key to sign with, and everything is refused in order.
    const bool hasKey = std::system("ssh-keygen -q -t ed25519 -N '' -f trail.key 2>/dev/null") == 0;
    auto signer = std::make_shared<qel::KeyFileSigner>();
    if (signer->Load("trail.key") != (hasKey ? 1 : 0)) return 1;
    if (!hasKey) return 0;
    qel::Trail trail({.path = "trail.jsonl", .headPath = "trail.head"}, signer);
    qel::TrailRecord record;
    record.action = qel::trail_kind::kLogon;
    qel::TrailReport report;
    const bool isKept = trail.Open() != 0 && trail.Append(record) &&
                        qel::CheckTrail("trail.jsonl", {.headFile = "trail.head"}, report) != 0;
    for (const char* name : {"trail.key", "trail.key.pub", "trail.jsonl", "trail.head"}) std::remove(name);
    return isKept && report.isAnchored && report.findingCount == 0 && report.entries == 2 ? 0 : 1;
}
