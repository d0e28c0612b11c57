#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/platform/export.h"
#include "qellib10/quantity/rounding_rule.h"

namespace qel {

/// The number for a reading that is a limit where min, max or mean need one. Of a reading above the range it is always
/// the limit. Missing and invalid readings have no substitute, nor has a limit that was computed: the reading itself
/// must be the argument. Otherwise the result would depend on how a formula is written: mean(10 - L, 4) or
/// 10 - mean(L, 6).
enum class LimitSubstitution {
    kNone,   ///< min, max and mean refuse
    kZero,   ///< 0
    kHalf,   ///< half of the limit
    kLimit,  ///< the limit
};

/// "none", "zero", "half of the limit", "limit". LimitSubstitutionOf reads it.
QELLIB10_API std::string_view NameOf(LimitSubstitution substitution);
QELLIB10_API std::optional<LimitSubstitution> LimitSubstitutionOf(std::string_view name);

struct ExactOptions {
    LimitSubstitution substitution = LimitSubstitution::kNone;
};

/// A result in exact decimals. A number that limits went into is a limit itself where all that is known of it is one
/// side; where more or less is known it is not determinable.
struct QELLIB10_API ExactResult {
    enum class Kind {
        kValue,
        kBelow,            ///< below value
        kAbove,            ///< above value
        kNotDeterminable,  ///< because of the variable cause
        kYes,
        kNo,
        kUndecided,  ///< because of the variable cause
    };

    Kind kind = Kind::kNotDeterminable;
    Decimal value;                     ///< the number, or the limit; one that lost digits is the next number outwards
    bool isIncluded = false;           ///< the limit itself is possible, since it was rounded within the formula
    DecimalFlags flags;                ///< what happened in all steps
    bool isFromBinary = false;         ///< a double went into it
    std::optional<std::size_t> cause;  ///< position in the scope of a reading that is no value

    /// "12.50", "< 0.02", "> 14", "<= 0.02" where it is included, "yes", "no", "undecided" or "not determinable"
    std::string Text() const;
    /// The same with a number without an exponent, as a report shows it.
    std::string PlainText() const;

    /// A limit, of which only one side is possible.
    bool IsLimit() const noexcept { return kind == Kind::kBelow || kind == Kind::kAbove; }
    bool IsNumberOrLimit() const noexcept { return kind == Kind::kValue || IsLimit(); }

    /// By a rule. A limit is rounded away from what is possible, so that "< 2.44" becomes "< 2.5" and stays true. Of
    /// any other kind than a number or a limit there is nothing, nor where RoundingRule::Round gives NaN.
    std::optional<RoundedValue> Rounded(const RoundingRule& rule, const std::optional<Decimal>& uncertainty = {}) const;

private:
    std::string TextWith(const std::string& number) const;
};

/// One step of a computation, as a trace shows it.
struct ExactStep {
    std::size_t position = 0, length = 0;  ///< of its operator, name or number in the text, in bytes
    std::string operation;                 ///< "+", "sqrt", "round", "number", "constant", "variable", ...
    std::string result;                    ///< as ExactResult::Text
    DecimalFlags flags;                    ///< what happened in this step
};

}  // namespace qel
