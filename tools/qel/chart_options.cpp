#include "chart_options.h"

#include <algorithm>
#include <cmath>

#include "csv_time.h"

namespace tool {
namespace {

constexpr int kPaperDots = 600, kScreenDots = 96;
constexpr double kHundredthsPerInch = 2540;

[[noreturn]] void Refuse(const std::string& text, const char* meaning) {
    throw CLI::ValidationError("\"" + text + "\" is not " + meaning);
}

bool IsSuffixOf(const std::string& target, const char* format) {
    const CString suffix((std::string(".") + format).c_str());
    const CString end(target.substr(target.size() - std::min<std::size_t>(target.size(), 4)).c_str());
    return end.CompareNoCase(suffix) == 0;
}

}  // namespace

std::optional<PictureKind> ParseFormat(const PlotOptions& options) {
    std::optional<PictureKind> kind;
    for (const char* const format : {"png", "svg", "pdf"}) {
        if (options.format == format)
            kind = PictureKindOf(std::string(".") + format);
        else if (!options.format.empty() && IsSuffixOf(options.picture.target, format))
            throw CLI::ValidationError("--format " + options.format + ": \"" + options.picture.target +
                                       "\" says another");
    }
    return kind;
}

std::vector<CLI::Option*> AddChartOptions(CLI::App& command, PlotOptions& options) {
    std::vector<CLI::Option*> added;
    const auto add = [&](CLI::Option* option, const char* type) { added.push_back(option->type_name(type)); };
    const auto addFlag = [&](const char* name, bool& value, const char* meaning) {
        added.push_back(command.add_flag(name, value, meaning));
    };
    addFlag("--chart", options.isChart, "A chart for readers, as each of the following options makes too");
    add(command.add_option("--theme", options.theme, "Colours and lines (light)")
            ->check(CLI::IsMember({"light", "dark", "print"})),
        "light|dark|print");
    add(command.add_option("--log", options.log, "Axes that are logarithmic")->check(CLI::IsMember({"x", "y", "xy"})),
        "x|y|xy");
    add(command
            .add_option("--legend", options.legend, "Inside where a corner is free and else beside the plot, or none")
            ->check(CLI::IsMember({"inside", "none"})),
        "inside|none");
    add(command.add_option("--errors", options.errors, "Column with errors of y, one for each -y")
            ->allow_extra_args(false),
        "COLUMN");
    add(command.add_option("--format", options.format, "In place of the suffix")
            ->check(CLI::IsMember({"png", "svg", "pdf"})),
        "png|svg|pdf");
    add(command.add_option("--title", options.title, "Above the plot"), "TEXT");
    add(command.add_option("--subtitle", options.subtitle, "Below the title"), "TEXT");
    add(command.add_option("--limit", options.limits, "Line across the plot, may be given several times")
            ->allow_extra_args(false),
        "VALUE[:LABEL]");
    add(command
            .add_option("--break", options.breaks,
                        "Range that an axis leaves out: x=FROM..TO, y=FROM..TO; y2 is the second axis upward")
            ->allow_extra_args(false),
        "AXIS=FROM..TO");
    CLI::Option* const bars = command.get_option("--bars");
    addFlag("--steps", options.steps, "Each value holds until the next one");
    added.back()->excludes(bars);
    addFlag("--points", options.points, "Points without lines");
    added.back()->excludes(bars)->excludes(command.get_option("--steps"));
    addFlag("--reverse-x", options.reverseX, "High values at the left");
    addFlag("--utc", options.utc, "Times without a zone are UTC, else local time");
    return added;
}

std::optional<ChartEnds> ParseEnds(const std::string& text, bool isUtc) {
    if (text.empty()) return std::nullopt;
    ChartEnds found;
    if (const std::size_t at = text.find('/'); at != std::string::npos) {
        TimeReader reader(isUtc);
        const auto first = reader.Read(text.substr(0, at)), second = reader.Read(text.substr(at + 1));
        if (first && second) found = {{*first, *second}, true, reader.HasLocal()};
    } else if (const auto ends = ParsePair(text, ':')) {
        found.ends = *ends;
    }
    if (found.ends.first == found.ends.second) Refuse(text, "a range such as 0:14");
    return found;
}

qel::ChartLimit ParseLimit(const std::string& text) {
    const std::size_t colon = text.find(':');
    const auto value = ParseNumber(std::string_view(text).substr(0, colon));
    if (!value) Refuse(text, "a limit such as 7.5:upper");
    qel::ChartLimit limit;
    limit.from = *value;
    if (colon != std::string::npos) limit.label = Shown(text.substr(colon + 1));
    return limit;
}

qel::PageSetup ParseChartSize(const PlotOptions& options) {
    const bool isPdf = options.picture.Kind() == PictureKind::kPdf;
    std::string numbers = options.size;
    const bool hasPixels = numbers.ends_with("px"), hasMillimetres = numbers.ends_with("mm");
    if (hasPixels || hasMillimetres) numbers.resize(numbers.size() - 2);
    const bool isPixels = hasPixels || (options.isSizeGiven && !isPdf && !hasMillimetres);
    qel::PageSetup page;
    int dots = options.picture.resolution;
    if (!isPixels) {
        page.sheet = ParseSheet(numbers);
        if (isPdf) dots = std::max(dots, kPaperDots);
    } else {
        if (isPdf) throw CLI::ValidationError("a PDF has no pixels; give its size in millimetres");
        constexpr double kLeast = 16, kMost = 16'384;
        const auto isSide = [](double side) { return side >= kLeast && side <= kMost && side == std::floor(side); };
        const auto size = ParsePair(numbers, 'x');
        if (!size || !isSide(size->first) || !isSide(size->second))
            Refuse(options.size, "a size in pixels such as 800x500");
        if (!options.isResolutionGiven) dots = kScreenDots;
        const auto hundredths = [&](double side) {
            return static_cast<int>(std::lround(side * kHundredthsPerInch / dots));
        };
        page.sheet = {hundredths(size->first), hundredths(size->second)};
    }
    page.dotsPerInch = {dots, dots};
    return page;
}

Heading SplitHeading(const std::string& text) {
    const Heading whole{text, ""};
    if (text.empty() || (text.back() != ')' && text.back() != ']')) return whole;
    const char close = text.back(), open = close == ')' ? '(' : '[';
    int depth = 0;
    for (std::size_t at = text.size(); at-- > 0;) {
        depth += text[at] == close ? 1 : text[at] == open ? -1 : 0;
        if (depth > 0) continue;
        const std::string_view all = text;
        const Heading split{std::string(qel::Trimmed(all.substr(0, at))),
                            std::string(qel::Trimmed(all.substr(at + 1, all.size() - at - 2)))};
        return split.title.empty() ? whole : split;
    }
    return whole;
}

}  // namespace tool
