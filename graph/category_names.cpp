#include "qellib10/graph/category_names.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

namespace qel {
namespace {

constexpr double kBetweenAcross = 6, kBetweenDown = 2;  // points between two names
constexpr const char* kFewest = "000000";               // names are not shortened further

class NameFitter {
public:
    NameFitter(std::span<const std::string> names, const AxisRange& range, const ChartCanvas& canvas,
               const LabelStyle& style, const NameSpace& space)
        : m_names(names), m_range(range), m_canvas(canvas), m_style(style), m_space(space) {
        const double count = static_cast<double>(names.size());
        m_first = static_cast<std::size_t>(std::clamp(std::ceil(range.low), 0.0, count));
        m_end = static_cast<std::size_t>(std::clamp(std::floor(range.high) + 1, 0.0, count));
        m_pitch = space.along.length / (range.high - range.low);
    }

    CategoryNames Fit() const {
        CategoryNames usual{CategoryTicks(m_names, m_range.low, m_range.high, m_space.along)};
        const double height = m_canvas.Measure(kFewest, m_style).Height() + m_canvas.Units(kBetweenDown);
        const bool hasAll = NamesNotShown(m_names, m_range, usual.ticks) == 0;
        const double beside = m_space.isHorizontal ? m_pitch : m_space.longest;
        const bool canOverhang = m_space.isHorizontal && m_end > m_first + 1;
        if (hasAll && (canOverhang || Widest() <= beside)) return usual;
        const auto ofHeight = [height](std::string_view) { return height; };
        if (!m_space.isHorizontal) return {TicksOf(Shortened(m_space.longest), ofHeight)};

        const double gap = m_canvas.Units(kBetweenAcross), longest = m_pitch - gap;
        const double fewest = std::min(Widest(), m_canvas.Measure(kFewest, m_style).width);
        if (fewest >= Widest() && longest < fewest) return usual;  // many short names
        if (longest >= fewest) {
            const auto width = [&](std::string_view text) { return m_canvas.Measure(text, m_style).width + gap; };
            const bool isClear = longest >= m_space.longest || AreDistinct(ShortenedAtEnd(longest));
            if (isClear) return {TicksOf(Shortened(longest), width)};
        }
        return {TicksOf(Shortened(m_space.longest), ofHeight), true};
    }

private:
    double Widest() const {
        double widest = 0;
        for (std::size_t i = m_first; i < m_end; ++i)
            widest = std::max(widest, m_canvas.Measure(m_names[i], m_style).width);
        return widest;
    }

    // Those that are not between the ends stay empty.
    template <class Shorten> std::vector<std::string> Each(const Shorten& shorten) const {
        std::vector<std::string> shortened(m_names.size());
        for (std::size_t i = m_first; i < m_end; ++i) shortened[i] = shorten(m_names[i]);
        return shortened;
    }

    std::vector<std::string> ShortenedAtEnd(double width) const {
        return Each([&](const std::string& name) { return m_canvas.Shortened(name, m_style, width); });
    }

    // In the middle, if only that tells them apart.
    std::vector<std::string> Shortened(double width) const {
        std::vector<std::string> atEnd = ShortenedAtEnd(width);
        if (AreDistinct(atEnd)) return atEnd;
        std::vector<std::string> inMiddle = Each([&](const std::string& name) { return WithoutMiddle(name, width); });
        return AreDistinct(inMiddle) ? inMiddle : atEnd;
    }

    std::string WithoutMiddle(const std::string& name, double width) const {
        const auto isFitting = [&](const std::string& text) { return m_canvas.Measure(text, m_style).width <= width; };
        if (isFitting(name)) return name;
        std::vector<std::size_t> starts;  // of its characters
        for (std::size_t i = 0; i < name.size(); ++i)
            if ((static_cast<unsigned char>(name[i]) & 0xC0) != 0x80) starts.push_back(i);
        std::string longest;
        for (std::size_t kept = 2; kept < starts.size(); ++kept) {
            const std::string text =
                name.substr(0, starts[kept - kept / 2]) + "\u2026" + name.substr(starts[starts.size() - kept / 2]);
            if (!isFitting(text)) break;
            longest = text;
        }
        return longest;
    }

    bool AreDistinct(const std::vector<std::string>& shortened) const {
        std::set<std::string_view> before, after;
        for (std::size_t i = m_first; i < m_end; ++i) {
            before.insert(m_names[i]);
            after.insert(shortened[i]);
        }
        return before.size() == after.size();
    }

    template <class Extent> AxisTicks TicksOf(const std::vector<std::string>& names, const Extent& extent) const {
        AxisSpace space = m_space.along;
        space.extent = extent;
        return CategoryTicks(names, m_range.low, m_range.high, space);
    }

    std::span<const std::string> m_names;
    const AxisRange& m_range;
    const ChartCanvas& m_canvas;
    const LabelStyle& m_style;
    const NameSpace& m_space;
    std::size_t m_first, m_end;  // of the names between the ends
    double m_pitch;              // device units from one to the next
};

}  // namespace

CategoryNames FitCategoryNames(std::span<const std::string> names, const AxisRange& range, const ChartCanvas& canvas,
                               const LabelStyle& style, const NameSpace& space) {
    return NameFitter(names, range, canvas, style, space).Fit();
}

std::size_t NamesNotShown(std::span<const std::string> names, const AxisRange& range, const AxisTicks& ticks) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const double place = static_cast<double>(i);
        if (place < range.low || place > range.high || names[i].empty()) continue;
        const auto tick = std::ranges::lower_bound(ticks.ticks, place, {}, &AxisTick::value);
        count += tick == ticks.ticks.end() || tick->value != place || tick->text.empty() ? 1 : 0;
    }
    return count;
}

}  // namespace qel
