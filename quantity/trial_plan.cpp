#include "qellib10/quantity/trial_plan.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "qellib10/platform/statistics/deviates.h"

namespace qel {
namespace {

using Distribution = UncertaintyComponent::Distribution;

template <class Draw> void Fill(std::vector<double>& deviates, Draw draw) {
    for (double& deviate : deviates) deviate = draw();
}

void Fill(std::vector<double>& deviates, const UncertaintySources::Source& source, Philox stream) {
    if (source.distribution == Distribution::kRectangular)
        Fill(deviates, [&] { return RectangularDeviate(stream); });
    else if (source.distribution == Distribution::kTriangular)
        Fill(deviates, [&] { return TriangularDeviate(stream); });
    else if (std::isinf(source.degreesOfFreedom))
        Fill(deviates, [&] { return NormalDeviate(stream); });
    else
        Fill(deviates, [&] { return StudentDeviate(stream, source.degreesOfFreedom); });
}

FormulaProgram WithPositionsOfSlots(FormulaProgram program) {
    std::iota(program.variables.begin(), program.variables.end(), std::size_t{0});
    return program;
}

}  // namespace

TrialPlan::TrialPlan(const FormulaProgram& program, const UncertaintySources& sources, std::uint64_t seed)
    : m_program(program), m_sources(sources), m_seed(seed), m_bySlot(WithPositionsOfSlots(program)), m_fast(m_bySlot) {
    for (const UncertaintySources::Share& share : sources.Shares())
        if (share.uncertainty != 0.0) m_shares.push_back(share);
    std::ranges::stable_sort(m_shares, {}, &UncertaintySources::Share::source);
}

TrialPlan::Workspace::Workspace(const TrialPlan& plan)
    : m_plan(plan), m_row(plan.m_program.variables.size()), m_deviates(kRows) {
    if (ColumnFormula::Fits(plan.m_program))
        m_columns.emplace(plan.m_program);
    else
        m_inputs.resize(m_row.size() * kRows);
}

void TrialPlan::Workspace::Run(std::uint64_t block, double* results) {
    Draw(block);
    if (m_columns)
        m_columns->Evaluate(results);
    else
        EvaluateOneByOne(results);
}

void TrialPlan::Workspace::Draw(std::uint64_t block) {
    const std::span<const double> values = m_plan.m_sources.Values();
    for (std::size_t slot = 0; slot < values.size(); ++slot) std::fill_n(Input(slot), kRows, values[slot]);
    auto drawn = UINT32_MAX;
    for (const auto& [source, slot, uncertainty] : m_plan.m_shares) {
        if (source != drawn) Fill(m_deviates, m_plan.m_sources.Sources()[source], Philox(m_plan.m_seed, block, source));
        drawn = source;
        double* const column = Input(slot);
        for (std::size_t i = 0; i < kRows; ++i) column[i] += uncertainty * m_deviates[i];
    }
}

void TrialPlan::Workspace::EvaluateOneByOne(double* results) {
    for (std::size_t i = 0; i < kRows; ++i) {
        for (std::size_t slot = 0; slot < m_row.size(); ++slot) m_row[slot] = Input(slot)[i];
        results[i] = m_plan.m_fast.Evaluate(m_row.data());
        if (!std::isnan(results[i])) continue;
        FormulaError ignored;
        results[i] = EvaluatePlainly(m_plan.m_bySlot, m_row, ignored).value_or(NAN);
    }
}

}  // namespace qel
