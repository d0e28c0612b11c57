#include "qellib10/graph/axis_breaks.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qel {
namespace {

constexpr double kMostOfGaps = 0.25;  // of an axis

// Breaks between the ends, ascending and apart.
std::vector<AxisRange> Sorted(std::span<const ChartBreak> breaks, const AxisRange& range) {
    std::vector<AxisRange> sorted;
    for (const ChartBreak& each : breaks) {
        if (!std::isfinite(each.from) || !std::isfinite(each.to)) continue;
        const AxisRange cut{std::max(std::min(each.from, each.to), range.low),
                            std::min(std::max(each.from, each.to), range.high)};
        if (cut.low < cut.high) sorted.push_back(cut);
    }
    std::ranges::sort(sorted, {}, &AxisRange::low);
    std::vector<AxisRange> merged;
    for (const AxisRange& each : sorted) {
        if (merged.empty() || each.low > merged.back().high) {
            merged.push_back(each);
        } else {
            merged.back().high = std::max(merged.back().high, each.high);
        }
    }
    return merged;
}

}  // namespace

AxisParts PartsOf(std::span<const ChartBreak> breaks, const AxisRange& range) {
    AxisParts parts;
    double low = range.low;
    for (const AxisRange& each : Sorted(breaks, range)) {
        if (low < each.low) parts.push_back({low, each.low});
        low = each.high;
    }
    if (low < range.high) parts.push_back({low, range.high});
    return parts.empty() ? AxisParts{range} : parts;
}

double LeftOutBetween(std::span<const ChartBreak> breaks, double low, double high) {
    double length = 0;
    for (const AxisRange& each : Sorted(breaks, {low, high})) length += each.high - each.low;
    return std::isfinite(length) ? length : 0;
}

AxisPlaces PlacesOf(const AxisParts& parts, bool isLogarithmic, double from, double to, double gap) {
    AxisPlaces places{{parts.front().low, parts.back().high, isLogarithmic, from, to}, {}, gap};
    if (parts.size() == 1) return places;
    const double length = std::fabs(to - from), direction = to < from ? -1 : 1;
    const double gaps = static_cast<double>(parts.size() - 1);
    gap = std::min(gap, kMostOfGaps * length / gaps);
    // Halves: the length may be more than a number can hold.
    const auto half = [](const AxisRange& part) { return part.high / 2 - part.low / 2; };
    double all = 0, at = 0;
    for (const AxisRange& part : parts) all += half(part);
    for (const AxisRange& part : parts) {
        const double size = (length - gaps * gap) * (half(part) / all);
        places.parts.push_back({part.low, part.high, false, from + direction * at, from + direction * (at + size)});
        at += size + gap;
    }
    places.parts.back().to = to;
    return places;
}

double AxisPlaces::AtInParts(double value) const noexcept {
    if (value <= parts.front().high) return parts.front().At(value);
    if (value >= parts.back().low) return parts.back().At(value);
    for (const AxisPart& part : parts)
        if (value >= part.low && value <= part.high) return part.At(value);
    return std::nan("");
}

double AxisPlaces::ReachedInParts(double value) const noexcept {
    const AxisPart* reached = &parts.front();
    for (const AxisPart& part : parts)
        if (value >= part.low) reached = &part;
    return reached != &parts.back() && value > reached->high ? reached->to : reached->At(value);
}

double AxisPlaces::ValueAt(double place) const noexcept {
    if (parts.empty()) return AxisPart::ValueAt(place);
    const double direction = to < from ? -1 : 1;
    const AxisPart* before = nullptr;
    for (const AxisPart& part : parts) {
        const double past = (place - part.from) * direction;
        if (past < 0 && before != nullptr) return -past < (place - before->to) * direction ? part.low : before->high;
        const bool isHere = (place - part.to) * direction <= 0 || &part == &parts.back();
        if (isHere) return part.from == part.to ? part.low : part.ValueAt(place);
        before = &part;
    }
    return std::nan("");
}

double AxisPlaces::Length() const noexcept {
    if (parts.empty()) return high - low;
    double length = 0;
    for (const AxisPart& part : parts) length += part.high - part.low;
    return length;
}

double AxisPlaces::Stepped(double place, double distance) const noexcept {
    const double target = place + distance;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const auto [start, end] = std::minmax(parts[i - 1].to, parts[i].from);
        if (target > start && target < end) return distance < 0 ? start : end;
    }
    return target;
}

std::string TextOf(const ChartBreak& left) { return NumberText(left.from, 0, 0) + ".." + NumberText(left.to, 0, 0); }

}  // namespace qel
