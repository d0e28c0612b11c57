// qel key: the keys with which people sign. What makes entries of a trail is in key_entries.cpp.
#include <qellib10/record.h>

#include "password.h"
#include "tool.h"

namespace tool {
namespace {

struct Options {
    std::string file, user, name;
    PasswordSource passwords;
    bool json = false;
};

Status ShowKey(const Options& options, const qel::PersonKey& key) {
    if (options.json) {
        Print(Json{{"user", key.User()},
                   {"name", key.PrintedName()},
                   {"fingerprint", key.Fingerprint()},
                   {"key", key.PublicKey()}});
    } else {
        Print(Shown(key.User()) + ", " + Shown(key.PrintedName()) + '\n' + key.Fingerprint() + '\n' + key.PublicKey() +
              '\n');
    }
    return kGood;
}

void Open(const Options& options, qel::PersonKey& key) {
    if (key.Open(Path(options.file).View()) == 0)
        throw Named(options.file, LastRefusal("is no person's key", kInconsistent));
}

Status Make(const Options& options) {
    RequireNew(options.file, false, {});
    Password password;
    options.passwords.ReadNew(password, "Password of the new key: ");
    qel::PersonKey key;
    if (key.Make(Path(options.file).View(), options.user, options.name, password.View()) == 0)
        throw Named(options.file, LastRefusal("cannot be made", kFailed));
    return ShowKey(options, key);
}

Status Show(const Options& options) {
    qel::PersonKey key;
    Open(options, key);
    return ShowKey(options, key);
}

}  // namespace

void AddKey(CLI::App& app, Status& status) {
    CLI::App* const command = app.add_subcommand("key", "Make, show, announce and end keys; change passwords");
    command->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, const char* meaning, Status (*run)(const Options&)) {
        CLI::App* const action = command->add_subcommand(name, meaning);
        AddFile(*action, "KEYFILE", options->file, "The file of the person's key");
        action->callback([options, run, &status] { status = run(*options); });
        return action;
    };
    CLI::App* const make = add("make", "Make a key, sealed under a password", Make);
    make->add_option("--user", options->user, "The person's name for logging on")->required()->type_name("NAME");
    make->add_option("--name", options->name, "The person's name as reports print it")->required()->type_name("NAME");
    CLI::App* const show = add("show", "Show whose key it is, its fingerprint and the public key", Show);
    AddPasswordOption(*make, options->passwords);
    for (CLI::App* const action : {make, show}) action->add_flag("--json", options->json, "Write JSON");
    AddKeyEntries(*command, status);
}

}  // namespace tool
