#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/platform/export.h"
#include "qellib10/quantity/exact_result.h"

class CCalcVariableList;

namespace qel {

/// What an instrument gave for one variable of a formula: a number, or a limit that was not reached, or nothing. It
/// prevents a "< 0.02" that becomes 0 or 0.02 somewhere on the way to a result.
struct QELLIB10_API Reading {
    enum class Kind {
        kValue,
        kBelow,    ///< below the limit of detection: any number below value
        kAbove,    ///< above the upper limit of the range: any number above value
        kMissing,  ///< nothing was measured: any number
        kInvalid,  ///< the instrument refused it: any number
    };

    Kind kind = Kind::kMissing;
    Decimal value;              ///< the number, or the limit
    bool isFromBinary = false;  ///< it was a double; value is its shortest text
    bool isInexact = false;     ///< it is the result of another formula that lost digits
    bool isIncluded = false;    ///< the limit itself is possible
    bool isComputed = false;    ///< it is the result of another formula; as a limit it has no substitute
    /// Position of the reading that this result of a formula is no number for; a trace does not keep it.
    std::optional<std::size_t> cause;
    std::optional<Decimal> beforeRounding;  ///< with @p places, where the list has more of them
    std::optional<int> places;              ///< decimal places to which its list rounded it, before the formula

    static Reading Of(const Decimal& value);  ///< invalid where @p value is not finite
    static Reading Below(const Decimal& limit);
    static Reading Above(const Decimal& limit);
    /// As its shortest text, and marked. Invalid where @p value is not finite.
    static Reading OfDouble(double value);
    /// Of another formula, as an input of the next. Invalid where the result is no number and no limit.
    static Reading OfResult(const ExactResult& result);
    /// A number as Decimal::OfText reads it, "< 0.02", "> 14", "<= 0.1", "missing" or "invalid"; blanks around it do
    /// not count.
    /// @return nothing for any other text
    static std::optional<Reading> OfText(std::string_view text);

    bool IsValue() const noexcept { return kind == Kind::kValue; }
    std::string Text() const;  ///< OfText reads it

    friend bool operator==(const Reading&, const Reading&) = default;
};

/// Whether a list whose round-up flag is set may enter a formula.
enum class RoundedList { kRefuse, kAccept };

/// The values of a list by position, as FormulaScope has its names. One that the list has rounded has at most as many
/// decimal places: 0.03, where the list's binary number is 0.030000000000000002.
/// @return nothing where the list rounds its values and @p rounded is kRefuse, since a result would be rounded twice
QELLIB10_API std::optional<std::vector<Reading>> ReadingsOf(const CCalcVariableList& list, RoundedList rounded);

}  // namespace qel
