#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <span>
#include <vector>

#include "qellib10/quantity/formula_error.h"
#include "qellib10/quantity/formula_program.h"
#include "qellib10/quantity/uncertainty.h"

namespace qel {

/// What moves the inputs of a program: independent sources of mean 0 and standard uncertainty 1, and how far each moves
/// which input. Both first order and Monte Carlo start from it, so that they cannot differ in what is correlated.
class UncertaintySources {
public:
    static constexpr std::uint32_t kCorrelated = UINT32_MAX;

    struct Source {
        UncertaintyComponent::Distribution distribution;
        double degreesOfFreedom;
    };
    struct Share {  // of a source in an input
        std::uint32_t source;
        std::uint32_t slot;
        double uncertainty;
    };
    struct Component {
        const UncertaintyComponent* component;
        std::uint32_t slot;
        std::uint32_t share;  // kCorrelated where the input has a correlation coefficient
    };

    /// Inputs with correlation coefficients are joint normal variables, as JCGM 101 6.4.8 has them: their matrix is
    /// taken apart into independent sources (Cholesky).
    /// @param inputs by position in the scope, one for each that the program names; they must outlive the object
    /// @throws FormulaError where an input is missing, a component or a coefficient is not valid, or the coefficients
    /// contradict each other
    UncertaintySources(const FormulaProgram& program, std::span<const UncertainInput> inputs,
                       std::span<const InputCorrelation> correlations,
                       std::pmr::memory_resource* memory = std::pmr::get_default_resource());

    std::span<const Source> Sources() const { return m_sources; }
    std::span<const Share> Shares() const { return m_shares; }
    /// Of all inputs that the program names, in the order of its slots.
    std::span<const Component> Components() const { return m_components; }
    /// By slot: the value, and whether it is uncertain.
    std::span<const double> Values() const { return m_values; }
    std::span<const unsigned char> IsUncertain() const { return m_isUncertain; }
    /// Whether there is a coefficient between two uncertain inputs that the program names.
    bool IsCorrelated() const { return m_isCorrelated; }

private:
    std::vector<InputCorrelation> OfSlots(std::span<const InputCorrelation> correlations,
                                          std::span<const UncertainInput> inputs) const;
    void AddOwn(std::span<const unsigned char> isCorrelated);
    std::pmr::vector<std::uint32_t> Representatives(std::span<const unsigned char> isCorrelated) const;
    void AddCorrelated(std::span<const InputCorrelation> correlations, std::span<const unsigned char> isCorrelated);
    std::uint32_t AddSource(const Source& source);
    [[noreturn]] void Refuse(std::size_t slot, const char* reason) const;

    const FormulaProgram& m_program;
    std::pmr::vector<Source> m_sources;
    std::pmr::vector<Share> m_shares;
    std::pmr::vector<Component> m_components;
    std::pmr::vector<double> m_values;
    std::pmr::vector<unsigned char> m_isUncertain;
    bool m_isCorrelated = false;
};

}  // namespace qel
