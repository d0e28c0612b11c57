#include "trail_anchors.h"

#include <cstdlib>
#include <filesystem>

namespace tool {
namespace {

std::string LibraryPathOrNone(const std::string& path) { return path.empty() ? "" : std::string(Path(path).View()); }

// An installation's own, where the command names no other.
std::string TrustFile(const AnchorOptions& options) {
    constexpr const char* kUsual = "/etc/qellib10/allowed_signers";
    if (!options.trust.empty() || !options.key.empty()) return options.trust;
    const char* const chosen = std::getenv("QELLIB10_ALLOWED_SIGNERS");
    if (chosen != nullptr) return chosen;
    std::error_code error;
    return std::filesystem::exists(kUsual, error) || error ? kUsual : "";
}

std::string RefuseOtherThanHex(const std::string& text, std::size_t digits) {
    const bool isHex = text.size() == digits && text.find_first_not_of("0123456789abcdef") == std::string::npos;
    return isHex ? "" : "is not " + std::to_string(digits) + " lower-case hexadecimal digits";
}

std::string RefuseOtherThanFingerprint(const std::string& text) {
    return text.starts_with("SHA256:") && text.size() == 50 ? "" : "is not SHA256: and 43 characters";
}

}  // namespace

bool AnchorOptions::HasTrust() const { return !key.empty() || !TrustFile(*this).empty(); }

void AddAnchors(CLI::App& command, AnchorOptions& options) {
    command.add_option("--trust", options.trust, "Who may sign, in the format of ssh-keygen's allowed signers")
        ->type_name("FILE");
    command.add_option("--key", options.key, "Fingerprint of the key that started the trail")
        ->check(RefuseOtherThanFingerprint, "")
        ->type_name("SHA256:...");
    command.add_option("--trail", options.trail, "The trail's ID, as reports print it")
        ->check([](const std::string& text) { return RefuseOtherThanHex(text, 32); }, "")
        ->type_name("ID");
    command.add_option("--head", options.head, "Hash of an entry that has to be there")
        ->check([](const std::string& text) { return RefuseOtherThanHex(text, 64); }, "")
        ->type_name("HASH");
    command.add_option("--head-file", options.headFile, "The trail's head file: its entry has to be there")
        ->type_name("FILE");
    command.add_option("--at-least", options.atLeast, "So many entries have to be there")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1} << 53))
        ->type_name("N");
    CLI::Option* const tsaCa =
        command.add_option("--tsa-ca", options.tsaCa, "Certificates of the time stamping authority, from elsewhere")
            ->type_name("FILE");
    command.add_option("--stamp", options.stamp, "A time stamp's answer, kept elsewhere: its entry has to be there")
        ->needs(tsaCa)
        ->type_name("FILE");
}

Failure TrailRefusal(const std::string& trail, const AnchorOptions& options) {
    const CString item(qel::LastFailure().item.c_str());
    for (const std::string& file : {options.trust, options.headFile, options.tsaCa, options.stamp}) {
        if (!file.empty() && item == Path(file)) return Named(file, LastRefusal("cannot be read", kFailed));
    }
    return Named(trail, LastRefusal("cannot be read", kMalformed));
}

qel::TrailReport CheckedTrail(const std::string& trail, const AnchorOptions& given) {
    AnchorOptions options = given;
    options.trust = TrustFile(given);
    const qel::TrailAnchors anchors{.trailId = options.trail,
                                    .trustFile = LibraryPathOrNone(options.trust),
                                    .key = options.key,
                                    .head = options.head,
                                    .headFile = LibraryPathOrNone(options.headFile),
                                    .atLeast = options.atLeast,
                                    .tsaCa = LibraryPathOrNone(options.tsaCa),
                                    .stamp = LibraryPathOrNone(options.stamp)};
    qel::TrailReport report;
    if (qel::CheckTrail(Path(trail).View(), anchors, report) == 0) throw TrailRefusal(trail, options);
    return report;
}

}  // namespace tool
