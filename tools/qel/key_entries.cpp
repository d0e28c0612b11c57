// qel key add, reset, end, password and what it does with the installation's keys: each by entries of the trail.
#include <sstream>

#include <qellib10/record.h>

#include "password.h"
#include "tool.h"
#include "trail_signer.h"

namespace tool {
namespace {

constexpr std::size_t kLongestName = 256;  // of the library

struct Options {
    std::string trail, headFile, person, user, name, by, reason, publicKey;
    std::uint64_t from = 0;
    SignerOptions signer;
    PasswordSource passwords;
    bool json = false;
};

Status ShowEntry(const Options& options, const qel::TrailReceipt& entry) {
    options.json ? Print(Json{{"entry", entry.number}, {"hash", entry.hash}})
                 : Print("entry " + std::to_string(entry.number) + ' ' + entry.hash + '\n');
    return kGood;
}

// Of a person, by several entries; the last one is shown.
template <class Change> Status ChangePerson(const Options& options, Change change) {
    const auto trail = OpenTrail(options.trail, options.headFile, options.signer);
    qel::RecordedPersonKey key(*trail, Path(options.person).View());
    if (change(key) == 0) throw Named(options.person, PersonRefusal("cannot be changed", kInconsistent));
    return ShowEntry(options, trail->Last());
}

Status Add(const Options& options) {
    Password password;
    options.passwords.ReadNew(password, "Password of the new key: ");
    return ChangePerson(options, [&](qel::RecordedPersonKey& key) {
        return key.Make(options.user, options.name, password.View(), options.by, options.reason);
    });
}

Status Reset(const Options& options) {
    Password password;
    options.passwords.ReadNew(password, "Password of the new key: ");
    return ChangePerson(options, [&](qel::RecordedPersonKey& key) {
        return key.Reset(options.user, options.name, password.View(), options.by, options.reason);
    });
}

Status End(const Options& options) {
    return ChangePerson(options,
                        [&](qel::RecordedPersonKey& key) { return key.End(options.user, options.by, options.reason); });
}

Status ChangePassword(const Options& options) {
    Password old, changed;
    options.passwords.Read(old, "Password: ");
    options.passwords.ReadNew(changed, "New password: ");
    return ChangePerson(options, [&](qel::RecordedPersonKey& key) {
        return key.ChangePassword(options.user, old.View(), changed.View());
    });
}

// Kind and key of a file as ssh-keygen writes it with the ending .pub, without its comment.
std::string PublicKeyOf(const std::string& path) {
    std::istringstream line(ReadStart(path));
    std::string kind, key;
    line >> kind >> key;
    if (kind != "ssh-ed25519" || key.empty())
        throw Failure(Shown(path) + ": is no public key of the kind ssh-ed25519", kInconsistent);
    return kind + ' ' + key;
}

Status Enter(const Options& options, std::string_view action) {
    const std::string key = PublicKeyOf(options.publicKey);
    const auto trail = OpenTrail(options.trail, options.headFile, options.signer);
    const auto entry = trail->Append({.user = options.by,
                                      .action = std::string(action),
                                      .object = key,
                                      .after = options.from > 0 ? std::to_string(options.from) : "",
                                      .reason = options.reason});
    if (!entry) throw Named(options.publicKey, LastRefusal("is not entered", kInconsistent));
    return ShowEntry(options, *entry);
}

Status AddInstallation(const Options& options) { return Enter(options, qel::trail_kind::kKeyAdded); }
Status EndInstallation(const Options& options) { return Enter(options, qel::trail_kind::kKeyEnded); }
Status RevokeInstallation(const Options& options) { return Enter(options, qel::trail_kind::kKeyRevoked); }

}  // namespace

void AddKeyEntries(CLI::App& key, Status& status) {
    const auto options = std::make_shared<Options>();
    const auto require = [](CLI::App& action, const char* name, std::string& value, const char* type,
                            const char* meaning) {
        action.add_option(name, value, meaning)->required()->type_name(type);
    };
    const auto requireName = [&](CLI::App& action, const char* name, std::string& value, const char* type,
                                 const char* meaning) {
        require(action, name, value, type, meaning);
        action.get_option(name)->check([](const std::string& text) -> std::string {
            return text.empty() || text.size() > kLongestName ? "has 1 to 256 bytes" : "";
        });
    };
    const auto add = [&](const char* name, const char* meaning, Status (*run)(const Options&)) {
        CLI::App* const action = key.add_subcommand(name, meaning);
        AddFile(*action, "TRAIL", options->trail, "The trail's file");
        require(*action, "--head-file", options->headFile, "FILE", "The trail's head file");
        AddSignerOptions(*action, options->signer);
        action->add_flag("--json", options->json, "Write JSON");
        action->callback([options, run, &status] {
            RequireSigner(options->signer);
            status = run(*options);
        });
        return action;
    };
    CLI::App* const first = add("add", "Make a person's first key, and announce it in a trail", Add);
    CLI::App* const reset = add("reset", "Give a person another key, such as for a forgotten password", Reset);
    CLI::App* const end = add("end", "End a person's key", End);
    CLI::App* const password = add("password", "Change the password of a person's key, by its person", ChangePassword);
    for (CLI::App* const action : {first, reset, end, password}) {
        require(*action, "--person", options->person, "KEYFILE", "The file of the person's key");
        requireName(*action, "--user", options->user, "NAME", "The person's name for logging on");
    }
    for (CLI::App* const action : {first, reset}) {
        requireName(*action, "--name", options->name, "NAME", "The person's name as reports print it");
    }
    for (CLI::App* const action : {first, reset, password}) AddPasswordOption(*action, options->passwords);
    CLI::App* const announce = add("add-installation", "Announce another key that may sign entries", AddInstallation);
    CLI::App* const last = add("end-installation", "End a key that may sign entries", EndInstallation);
    CLI::App* const revoke = add("revoke-installation", "Revoke a key that others may have", RevokeInstallation);
    for (CLI::App* const action : {first, reset, end, announce, last, revoke}) {
        requireName(*action, "--by", options->by, "NAME", "Who does it");
        require(*action, "--reason", options->reason, "TEXT", "Why");
    }
    for (CLI::App* const action : {announce, last, revoke})
        require(*action, "--public-key", options->publicKey, "FILE", "The public key, as ssh-keygen writes it (.pub)");
    revoke->add_option("--from", options->from, "The number of the first entry that is distrusted")
        ->required()
        ->transform(WholeNumber(1, std::int64_t{1} << 53))
        ->type_name("N");
}

}  // namespace tool
