#include "options.h"

#include <set>

#include "failure.h"
#include "number.h"

namespace titration {
namespace {

constexpr const char* kUsage =
    "usage: titration {--data FILE [--settings FILE] [--comment TEXT] | --take-out VERSION} --out FOLDER "
    "[--user NAME] [--password TEXT]";

std::string* Place(Options& options, std::string& takeOut, const std::string& name) {
    return name == "--data"       ? &options.data
           : name == "--settings" ? &options.settings
           : name == "--out"      ? &options.out
           : name == "--comment"  ? &options.comment
           : name == "--user"     ? &options.user
           : name == "--password" ? &options.password
           : name == "--take-out" ? &takeOut
                                  : nullptr;
}

}  // namespace

Options ParseOptions(int argc, char** argv) {
    Options options;
    std::string takeOut;
    std::set<std::string> given;
    for (int i = 1; i < argc; i += 2) {
        std::string* const place = Place(options, takeOut, argv[i]);
        if (place == nullptr || i + 1 == argc || !given.insert(argv[i]).second) throw Failure(kUsage);
        *place = argv[i + 1];
    }
    if (!takeOut.empty()) {
        options.takeOut = ParseWholeNumber(takeOut).value_or(0);
        if (options.takeOut == 0) throw Failure("\"" + takeOut + "\" is no version: they count from 1");
    }
    const bool isResult = !options.data.empty();
    const bool hasMore = !options.settings.empty() || !options.comment.empty();
    if (options.out.empty() || isResult == (options.takeOut != 0) || (hasMore && !isResult)) throw Failure(kUsage);
    return options;
}

}  // namespace titration
