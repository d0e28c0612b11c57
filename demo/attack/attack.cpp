#include "demo/attack/attack.h"

#include <algorithm>
#include <cstdio>

#include "demo/attack/attacks.h"
#include "demo/result/archive_trail.h"
#include "demo/support/failure.h"
#include "demo/support/file_step.h"
#include "demo/support/text_file.h"
#include "demo/verify/record_checks.h"

namespace titration {
namespace {

// What is known from outside the archive.
qel::TrailAnchors AnchorsOf(Known known, const Installation& installation, const CopiedArchive& copy) {
    if (known == Known::kHead) return {.headFile = installation.HeadPath()};
    if (known == Known::kNothing) return {};
    const std::string trust(qel::ToLibraryPath(copy.Outside("allowed_signers").native()));
    WriteTextFile("installation namespaces=\"qellib10-entry\" " + installation.Key()->PublicKey() + "\n", trust);
    qel::TrailReader reader;
    if (reader.Open(copy.Path(kTrail)) == 0) throw Failure(Why("the trail cannot be read"));
    const auto first = reader.Next();
    return {.trailId = first ? first->trailId : "", .trustFile = trust};
}

// @return whether the verification says what it should
bool Show(int number, const Attack& attack, const CString& archive, const Installation& installation) {
    const CopiedArchive copy(archive);
    const qel::TrailAnchors anchors = AnchorsOf(attack.known, installation, copy);
    try {
        attack.run(copy);
    } catch (const Failure& failure) {  // other results than the demonstration's
        std::printf("FAILED   %2d %s: cannot be tried: %s\n", number, attack.what, failure.what());
        return false;
    }
    RecordChecks checks(copy.Folder(), anchors);
    const std::vector<std::string> findings = checks.All();
    const bool isSeen = !findings.empty();
    const auto says = [&](const std::string& text) { return text.find(attack.finding) != std::string::npos; };
    const auto found = std::ranges::find_if(findings, says);
    const bool isRight = attack.known == Known::kNothing ? says(checks.Summary()) : found != findings.end();
    const std::string shown = found != findings.end() ? *found : isSeen ? findings.front() : checks.Summary();
    std::printf("%s %2d %s: %s\n",
                !isRight ? "FAILED  "
                : isSeen ? "noticed "
                         : "not seen",
                number, attack.what, qel::PrintableText(shown).c_str());
    return isRight;
}

}  // namespace

bool ShowAttacks(const CString& archive) {
    const Installation installation(archive);
    if (!installation.HasHead() || CopiedArchive(archive).SignedReport().empty())
        throw Failure(std::string(archive) + ": has no trail with a signed report; scripts/demo makes one");
    std::vector<std::string> before = RecordChecks(archive, {.headFile = installation.HeadPath()}).All();
    if (!before.empty()) throw Failure(std::string(archive) + ": is not whole: " + before.front());
    int number = 0, failed = 0;
    for (const Attack& attack : Attacks()) failed += Show(++number, attack, archive, installation) ? 0 : 1;
    std::printf("%d attacks, %s\n", number, failed == 0 ? "all answered as they should be" : "some not noticed");
    return failed == 0;
}

}  // namespace titration
