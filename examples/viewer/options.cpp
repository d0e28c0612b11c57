#include "options.h"

#include <cstring>
#include <string_view>

#include <qellib10/qellib10.h>

namespace viewer {
namespace {

constexpr int kMaxPoints = 10'000'000;

bool ReadPoints(std::string_view text, int& points) {
    points = qel::ReadWholeNumber<int>(text).value_or(-1);
    return points >= 0 && points <= kMaxPoints;
}

bool Take(Options& options, std::string_view name, const char* value) {
    if (name == "--points") return ReadPoints(value, options.points);
    if (name == "--cross") return (options.cross = qel::ReadNumber(value)).has_value();
    if (name == "--screenshot") return !(options.screenshot = value).empty();
    return false;
}

}  // namespace

std::optional<Options> ParseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--all") == 0) {
            options.isAll = true;
        } else if (i + 1 == argc || !Take(options, argv[i], argv[i + 1])) {
            return std::nullopt;
        } else {
            ++i;
        }
    }
    return options;
}

}  // namespace viewer
