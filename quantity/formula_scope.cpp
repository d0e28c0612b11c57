#include "qellib10/quantity/formula_scope.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/utf8_name.h"

namespace qel {
namespace {

constexpr std::size_t kMostCompared = 10'000;
constexpr std::size_t kLongestCompared = 64;

// How many bytes to add, take away, replace, or swap with the next one (optimal string alignment).
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> before, last, row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < a.size(); ++i) {
        before = std::exchange(last, row);
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            row[j + 1] = std::min({last[j] + (a[i] == b[j] ? 0U : 1U), row[j] + 1, last[j + 1] + 1});
            const bool isSwapped = i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j];
            if (isSwapped) row[j + 1] = std::min(row[j + 1], before[j - 1] + 1);
        }
    }
    return row.back();
}

}  // namespace

FormulaScope::FormulaScope(const CCalcVariableList& list) {
    CCalcVariable variable;
    for (int i = 0; list.GetVariableData(i, &variable) != 0; ++i) {
        const std::string_view name = variable.m_szName.View();
        m_positions.emplace(FoldUtf8Name(ToUtf8(name)), m_names.size());
        m_names.push_back(ToUtf8(name));
    }
}

std::size_t FormulaScope::Add(std::string_view name) {
    const auto [found, isNew] = m_positions.emplace(FoldUtf8Name(name), m_names.size());
    if (isNew) m_names.emplace_back(name);
    return found->second;
}

std::optional<std::size_t> FormulaScope::Find(std::string_view name) const {
    const auto found = m_positions.find(FoldUtf8Name(name));
    return found != m_positions.end() ? std::optional(found->second) : std::nullopt;
}

std::string FormulaScope::Nearest(std::string_view name) const {
    std::vector<std::string_view> names;
    for (const std::string& each : m_names) {
        if (names.size() == kMostCompared) break;
        names.push_back(each);
    }
    return NearestName(name, names);
}

std::string NearestName(std::string_view name, const std::vector<std::string_view>& names) {
    if (name.size() > kLongestCompared) return {};
    const std::string wanted = FoldUtf8Name(name);
    const auto characters =
        std::ranges::count_if(name, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
    std::size_t least = characters < 2 ? 1 : std::max<std::size_t>(name.size() / 3, 1) + 1;
    std::string_view nearest;
    for (const std::string_view each : names) {
        const std::size_t longer = std::max(each.size(), name.size()) - std::min(each.size(), name.size());
        if (longer >= least) continue;
        const std::size_t distance = Distance(wanted, FoldUtf8Name(each));
        if (distance < least) {
            least = distance;
            nearest = each;
        }
    }
    return std::string(nearest);
}

}  // namespace qel
