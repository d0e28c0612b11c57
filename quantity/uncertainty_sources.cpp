#include "qellib10/quantity/uncertainty_sources.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>

#include "qellib10/quantity/correlation_matrix.h"

namespace qel {

using Kind = FormulaError::Kind;

namespace {

constexpr std::size_t kNowhere = SIZE_MAX;  // the slot of an input that the program does not name

bool AreAlike(const UncertaintyComponent& a, const UncertaintyComponent& b) {
    return a.distribution == b.distribution && a.degreesOfFreedom == b.degreesOfFreedom;
}

}  // namespace

UncertaintySources::UncertaintySources(const FormulaProgram& program, std::span<const UncertainInput> inputs,
                                       std::span<const InputCorrelation> correlations,
                                       std::pmr::memory_resource* memory)
    : m_program(program),
      m_sources(memory),
      m_shares(memory),
      m_components(memory),
      m_values(memory),
      m_isUncertain(program.variables.size(), memory) {
    m_values.reserve(program.variables.size());
    m_components.reserve(program.variables.size());
    for (std::uint32_t slot = 0; slot < program.variables.size(); ++slot) {
        if (program.variables[slot] >= inputs.size())
            throw FormulaError{Kind::kReading, 0, 0, "values that are not there", {}, {}};
        const UncertainInput& input = inputs[program.variables[slot]];
        m_values.push_back(input.value);
        for (const UncertaintyComponent& component : input.components) {
            if (!std::isfinite(component.uncertainty)) Refuse(slot, "an uncertainty that is not finite");
            if (!(component.degreesOfFreedom >= 1.0)) Refuse(slot, "less than one degree of freedom");
            m_components.push_back({&component, slot, kCorrelated});
            if (component.uncertainty != 0.0) m_isUncertain[slot] = 1;
        }
    }
    const std::vector<InputCorrelation> bySlot = OfSlots(correlations, inputs);
    std::pmr::vector<unsigned char> isCorrelated(program.variables.size(), memory);
    for (const InputCorrelation& correlation : bySlot)
        isCorrelated[correlation.first] = isCorrelated[correlation.second] = 1;
    AddOwn(isCorrelated);
    if (!bySlot.empty()) AddCorrelated(bySlot, isCorrelated);
}

void UncertaintySources::Refuse(std::size_t slot, const char* reason) const {
    const auto isItsStep = [&](const FormulaStep& step) {
        return step.operation == FormulaOperation::kVariable && step.index == slot;
    };
    const auto step = std::ranges::find_if(m_program.steps, isItsStep);
    if (step == m_program.steps.end()) throw FormulaError{Kind::kUncertainty, 0, 0, reason, {}, {}};
    throw FormulaError{Kind::kUncertainty, step->position, step->length, reason, {}, {}};
}

// Those other than 0 between uncertain inputs that the program names.
std::vector<InputCorrelation> UncertaintySources::OfSlots(std::span<const InputCorrelation> correlations,
                                                          std::span<const UncertainInput> inputs) const {
    std::vector<InputCorrelation> ofSlots;
    if (correlations.empty()) return ofSlots;
    std::unordered_map<std::size_t, std::size_t> slots;  // by position in the scope
    for (std::size_t slot = 0; slot < m_program.variables.size(); ++slot) slots[m_program.variables[slot]] = slot;
    for (const InputCorrelation& correlation : correlations) {
        const auto& [first, second, r] = correlation;
        if (first >= inputs.size() || second >= inputs.size() || first == second)
            throw FormulaError{
                Kind::kUncertainty, 0, 0, "a correlation of inputs that are not there or the same", {}, {}};
        if (!(std::abs(r) <= 1.0))
            throw FormulaError{
                Kind::kUncertainty, 0, 0, "a correlation coefficient that is not within -1 and 1", {}, {}};
        const auto one = slots.find(first), other = slots.find(second);
        for (const auto& [position, found] : {std::pair(first, one), std::pair(second, other)})
            if (inputs[position].components.empty())
                Refuse(found != slots.end() ? found->second : kNowhere,
                       "a correlation coefficient of an input that has no uncertainty");
        if (r == 0.0 || one == slots.end() || other == slots.end()) continue;
        if (m_isUncertain[one->second] == 0 || m_isUncertain[other->second] == 0) continue;
        ofSlots.push_back({std::min(one->second, other->second), std::max(one->second, other->second), r});
    }
    return ofSlots;
}

std::uint32_t UncertaintySources::AddSource(const Source& source) {
    m_sources.push_back(source);
    return static_cast<std::uint32_t>(m_sources.size() - 1);
}

// For each component the first one with the same source: itself where the source has no name. Empty where no two
// sources have names.
std::pmr::vector<std::uint32_t> UncertaintySources::Representatives(std::span<const unsigned char> isCorrelated) const {
    const std::pmr::polymorphic_allocator<> allocator = m_components.get_allocator();
    std::pmr::vector<std::uint32_t> first(allocator), named(allocator);
    for (std::uint32_t i = 0; i < m_components.size(); ++i)
        if (!m_components[i].component->source.empty()) named.push_back(i);
    if (named.size() < 2) return first;
    first.resize(m_components.size());
    std::iota(first.begin(), first.end(), 0U);
    std::ranges::sort(named, [&](std::uint32_t a, std::uint32_t b) {
        const int order = m_components[a].component->source.compare(m_components[b].component->source);
        return order != 0 ? order < 0 : a < b;
    });
    for (std::size_t i = 1; i < named.size(); ++i) {
        const Component& before = m_components[named[i - 1]];
        const Component& here = m_components[named[i]];
        if (before.component->source != here.component->source) continue;
        if (!AreAlike(*before.component, *here.component))
            Refuse(here.slot, "a source with two distributions or degrees of freedom");
        if (isCorrelated[before.slot] != 0 || isCorrelated[here.slot] != 0)
            Refuse(here.slot, "a common source of an input that has a correlation coefficient");
        first[named[i]] = first[named[i - 1]];
    }
    return first;
}

void UncertaintySources::AddOwn(std::span<const unsigned char> isCorrelated) {
    const std::pmr::vector<std::uint32_t> first = Representatives(isCorrelated);
    m_sources.reserve(m_components.size());
    m_shares.reserve(m_components.size());
    for (std::uint32_t i = 0; i < m_components.size(); ++i) {
        auto& [component, slot, share] = m_components[i];
        if (isCorrelated[slot] != 0) continue;
        const std::uint32_t source = first.empty() || first[i] == i
                                         ? AddSource({component->distribution, component->degreesOfFreedom})
                                         : m_shares[m_components[first[i]].share].source;
        share = static_cast<std::uint32_t>(m_shares.size());
        m_shares.push_back({source, slot, component->uncertainty});
    }
}

void UncertaintySources::AddCorrelated(std::span<const InputCorrelation> correlations,
                                       std::span<const unsigned char> isCorrelated) {
    m_isCorrelated = true;
    std::vector<std::uint32_t> slots, rows(isCorrelated.size());
    for (std::uint32_t slot = 0; slot < isCorrelated.size(); ++slot) {
        if (isCorrelated[slot] == 0) continue;
        rows[slot] = static_cast<std::uint32_t>(slots.size());
        slots.push_back(slot);
    }
    if (slots.size() > CorrelationMatrix::kLargest) Refuse(slots.front(), "too many correlated inputs");
    std::vector<double> uncertainties(slots.size());
    for (const Component& each : m_components) {
        if (each.share != kCorrelated) continue;
        double& uncertainty = uncertainties[rows[each.slot]];
        uncertainty = std::hypot(uncertainty, each.component->uncertainty);
    }
    CorrelationMatrix matrix(slots.size());
    for (const auto& [one, other, r] : correlations) {
        if (!matrix.Set(rows[one], rows[other], r)) Refuse(one, "two correlation coefficients of the same inputs");
    }
    if (!matrix.TakeApart()) Refuse(slots.front(), "correlation coefficients that contradict each other");
    const std::size_t firstSource = m_sources.size();
    for (std::size_t row = 0; row < slots.size(); ++row) {
        AddSource({UncertaintyComponent::Distribution::kNormal, UncertaintyComponent::kInfinite});
        for (std::size_t column = 0; column <= row; ++column) {
            const double factor = matrix.Factor(row, column);
            if (factor == 0.0) continue;
            m_shares.push_back(
                {static_cast<std::uint32_t>(firstSource + column), slots[row], factor * uncertainties[row]});
        }
    }
}

}  // namespace qel
