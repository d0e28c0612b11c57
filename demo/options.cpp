#include "demo/options.h"

#include <set>

#include "demo/support/failure.h"
#include "demo/support/number.h"

namespace titration {
namespace {

constexpr const char* kUsage =
    "usage: titration {--data FILE [--settings FILE] [--table NUMBER] [--comment TEXT] [--printer NAME] | --take-out "
    "VERSION | "
    "--print COUNT | --list | --verify} --out FOLDER [--user NAME] [--password TEXT]";

struct NumberTexts {
    std::string table, takeOut, print;
};

std::string* Place(Options& options, NumberTexts& numbers, const std::string& name) {
    return name == "--data"       ? &options.data
           : name == "--settings" ? &options.settings
           : name == "--out"      ? &options.out
           : name == "--comment"  ? &options.comment
           : name == "--printer"  ? &options.printer
           : name == "--user"     ? &options.user
           : name == "--password" ? &options.password
           : name == "--table"    ? &numbers.table
           : name == "--take-out" ? &numbers.takeOut
           : name == "--print"    ? &numbers.print
                                  : nullptr;
}

bool* Flag(Options& options, const std::string& name) {
    return name == "--list" ? &options.list : name == "--verify" ? &options.verify : nullptr;
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
    const bool isResult = !options.data.empty();
    const bool hasMore =
        !options.settings.empty() || !options.comment.empty() || options.table > 0 || given.contains("--printer");
    const int actions = isResult + (options.takeOut != 0) + (options.print != 0) + options.list + options.verify;
    if (options.out.empty() || actions != 1 || (hasMore && !isResult)) throw Failure(kUsage);
    return options;
}

}  // namespace titration
