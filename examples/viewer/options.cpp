#include "options.h"

#include <charconv>
#include <cstring>
#include <string_view>

namespace viewer {
namespace {

constexpr int kMaxPoints = 10'000'000;

template <class Number> bool Read(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool Take(Options& options, std::string_view name, const char* value) {
    if (name == "--points") return Read(value, options.points) && options.points >= 0 && options.points <= kMaxPoints;
    if (name == "--cross") return Read(value, options.cross.emplace());
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
