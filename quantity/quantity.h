#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/quantity_formula.h"
#include "qellib10/quantity/uncertainty.h"
#include "qellib10/quantity/unit.h"

namespace qel {

/// A value with its unit and the sources of its uncertainty, as they go together in a laboratory.
///
/// @code
/// std::string error;
/// const auto volume = qel::Quantity::Of("18.64 mL", {*qel::UncertaintyComponent::Triangular(0.03, "burette")}, error);
/// const auto litres = volume->In(*qel::Unit::Parse("L", error));  // 0.01864 L
/// @endcode
struct QELLIB10_API Quantity {
    Decimal value;
    Unit unit;
    std::vector<UncertaintyComponent> components;  ///< in @p unit

    /// @param text "18.64 mL": a number as Decimal::OfText reads it, then possibly a unit as Unit::Parse does
    /// @return nothing for any other text; @p error then says why
    static std::optional<Quantity> Of(std::string_view text, std::vector<UncertaintyComponent> components,
                                      std::string& error);

    /// Combined of all components: those of one source are added, independent ones by their squares.
    /// @return nothing where a component is not valid, or two of one source have other distributions
    std::optional<double> StandardUncertainty() const;
    /// Effective ones by Welch-Satterthwaite over the independent sources, cut to a whole number; or infinite.
    std::optional<double> DegreesOfFreedom() const;

    /// The same quantity in another unit; its uncertainties are converted by the factor alone.
    /// @param molarMass in g/mol, above 0: by it alone amounts become masses and masses amounts
    /// @return nothing where no factor converts the units, or an uncertainty becomes too large
    std::optional<Quantity> In(const Unit& other, const std::optional<Decimal>& molarMass = {}) const;

    std::string Text() const;  ///< "18.64 mL"; Of reads it
};

/// A formula of quantities.
struct QuantityResult {
    ExactResult exact;  ///< in @p unit
    Unit unit;
    std::optional<UncertaintyBudget> budget;  ///< in @p unit; nothing of a condition, and where nothing is uncertain
};

/// Evaluates a formula once. Where it is done often, bind it and keep the QuantityFormula.
/// @param quantities by position in the scope; one for each that the formula names
/// @param wanted unit of the result
/// @return nothing where dimensions differ or the formula cannot be evaluated; @p error has the place
QELLIB10_API std::optional<QuantityResult> EvaluateQuantities(const Formula& formula,
                                                              std::span<const Quantity> quantities,
                                                              const std::optional<Unit>& wanted,
                                                              const UncertaintyOptions& options, FormulaError& error);

}  // namespace qel
