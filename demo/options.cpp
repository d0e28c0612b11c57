#include "demo/options.h"

#include <algorithm>
#include <set>
#include <utility>

#include "demo/support/failure.h"
#include "demo/support/number.h"

namespace titration {
namespace {

constexpr const char* kUsage =
    "usage: titration {--data FILE [--settings FILE] [--table NUMBER] [--comment TEXT] [--printer NAME] | --take-out "
    "VERSION | "
    "--print COUNT | --add-user NAME --full-name TEXT --new-password TEXT --role ROLE | --sign MEANING --version "
    "NUMBER | "
    "--signed-report VERSION | --export | --list | --verify | --attack} --out FOLDER [--user NAME] [--password TEXT]";

struct NumberTexts {
    std::string table, takeOut, print, version, signedReport;
};

std::string* Place(Options& options, NumberTexts& numbers, const std::string& name) {
    const std::pair<const char*, std::string*> places[] = {
        {"--data", &options.data},
        {"--settings", &options.settings},
        {"--out", &options.out},
        {"--comment", &options.comment},
        {"--printer", &options.printer},
        {"--user", &options.user},
        {"--password", &options.password},
        {"--add-user", &options.addUser},
        {"--full-name", &options.fullName},
        {"--new-password", &options.newPassword},
        {"--role", &options.role},
        {"--sign", &options.sign},
        {"--table", &numbers.table},
        {"--take-out", &numbers.takeOut},
        {"--print", &numbers.print},
        {"--version", &numbers.version},
        {"--signed-report", &numbers.signedReport},
    };
    const auto found = std::ranges::find(places, name, &std::pair<const char*, std::string*>::first);
    return found != std::end(places) ? found->second : nullptr;
}

bool* Flag(Options& options, const std::string& name) {
    return name == "--list"     ? &options.list
           : name == "--verify" ? &options.verify
           : name == "--attack" ? &options.attack
           : name == "--export" ? &options.isExport
                                : nullptr;
}

// Each action has all of its own options, and no other one has them.
bool AreForTheAction(const Options& options, bool isPrinterGiven) {
    const bool isResult = !options.data.empty(), isUser = !options.addUser.empty(), isSigning = !options.sign.empty();
    const int actions = isResult + (options.takeOut != 0) + (options.print != 0) + isUser + isSigning +
                        (options.signedReport != 0) + options.isExport + options.list + options.verify + options.attack;
    const bool isOfResult =
        !options.settings.empty() || !options.comment.empty() || options.table > 0 || isPrinterGiven;
    const int ofUser = !options.fullName.empty() + !options.newPassword.empty() + !options.role.empty();
    return actions == 1 && (!isOfResult || isResult) && ofUser == (isUser ? 3 : 0) &&
           (options.version != 0) == isSigning;
}

// 0 for an option that is not given.
int CountOf(const std::string& text, const char* what) {
    const int number = text.empty() ? 0 : ParseWholeNumber(text).value_or(0);
    if (number == 0 && !text.empty()) throw Failure("\"" + text + "\" is not a " + what + ": they count from 1");
    return number;
}

}  // namespace

Options ParseOptions(int argc, char** argv) {
    Options options;
    NumberTexts numbers;
    std::set<std::string> given;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        if (!given.insert(name).second) throw Failure(kUsage);
        if (bool* const flag = Flag(options, name)) {
            *flag = true;
            continue;
        }
        std::string* const place = Place(options, numbers, name);
        if (place == nullptr || ++i == argc) throw Failure(kUsage);
        *place = argv[i];
    }
    options.table = CountOf(numbers.table, "table");
    options.takeOut = CountOf(numbers.takeOut, "version");
    options.print = CountOf(numbers.print, "number of reports");
    options.version = CountOf(numbers.version, "version");
    options.signedReport = CountOf(numbers.signedReport, "version");
    if (options.out.empty() || !AreForTheAction(options, given.contains("--printer"))) throw Failure(kUsage);
    return options;
}

}  // namespace titration
