#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/decimal/decimal.h"
#include "qellib10/platform/export.h"

namespace qel {

/// What was rounded, and to what. Both belong into the archive: a rounded value alone cannot be checked.
struct RoundedValue {
    Decimal unrounded;
    Decimal rounded;  ///< with exactly the digits of the rule: 2.50 where two places are wanted; NaN where none fit

    bool IsChanged() const noexcept { return unrounded != rounded; }
};

/// A rule of rounding that can be named in a report, so that another person comes to the same digits. It prevents the
/// two usual faults: a rule that nobody knows, and rounding twice, by which 2.4495 becomes 2.45 and then 2.5.
///
/// A value is rounded once, from all of its digits, by its magnitude: -2.5 becomes what 2.5 becomes, with a minus sign.
///
///     half away from zero   2.5 -> 3   USP, Ph. Eur., JP; JIS Z 8401 rule B
///     half even             2.5 -> 2   JIS Z 8401 rule A, ASTM E29, IEEE 754
///     truncation            2.9 -> 2
///     away from zero        2.1 -> 3
///
/// A rule is a value; it throws nothing.
class QELLIB10_API RoundingRule {
public:
    static constexpr int kMostPlaces = 6000;

    /// The places after the decimal point; below 0 before it, so that -2 gives whole hundreds. -6000 to 6000.
    static RoundingRule ToPlaces(DecimalRounding rounding, int places);
    /// Significant digits, 1 to 34. 0 stays 0.
    static RoundingRule ToDigits(DecimalRounding rounding, int digits);
    /// The multiples of @p step, above 0: 0.05 gives 1.25, 1.30, ...
    static RoundingRule ToMultiple(DecimalRounding rounding, const Decimal& step);
    /// The last place of the standard or expanded uncertainty once that is rounded to @p digits, 1 or 2 (GUM 7.2.6).
    static RoundingRule ToUncertainty(DecimalRounding rounding, int digits);

    /// Zero has no sign afterwards. @p uncertainty is needed by ToUncertainty alone.
    /// @return with NaN as rounded value where the value or the rule's argument is out of its range, is not finite, or
    /// the result needs more than 34 digits
    RoundedValue Round(const Decimal& value, const std::optional<Decimal>& uncertainty = {}) const;

    /// Of ToUncertainty, how many digits; else nothing.
    std::optional<int> UncertaintyDigits() const;
    /// The same rule with another way of rounding.
    RoundingRule With(DecimalRounding rounding) const;

    /// Whether its argument is in its range. Round gives NaN where it is not.
    bool IsValid() const;

    /// "half even, 2 decimal places". OfName reads it, for rules that are kept in a file; nothing where the name is
    /// unknown or its number is out of range.
    std::string Name() const;
    static std::optional<RoundingRule> OfName(std::string_view name);

    friend bool operator==(const RoundingRule&, const RoundingRule&) = default;

private:
    enum class To { kPlaces, kDigits, kMultiple, kUncertainty };

    RoundingRule(DecimalRounding rounding, To to, int count, const Decimal& step = Decimal(1))
        : m_rounding(rounding), m_to(to), m_count(count), m_step(step) {}
    Decimal ToDigits(const Decimal& value, int digits) const;
    Decimal ToMultiple(const Decimal& value) const;

    DecimalRounding m_rounding;
    To m_to;
    int m_count;
    Decimal m_step;
};

/// A comparison of a result with a limit, and what was compared: the two methods of ASTM E29 give different answers for
/// 10.04 and a limit of at most 10.0.
struct LimitComparison {
    std::partial_ordering order = std::partial_ordering::unordered;  ///< of the value to the limit
    Decimal compared;
    bool isRounded = false;
};

/// The rounding method: the rounded value is compared, as pharmacopoeias demand.
QELLIB10_API LimitComparison CompareRounded(const Decimal& value, const Decimal& limit, const RoundingRule& rule);
/// The absolute method: all digits are compared.
QELLIB10_API LimitComparison CompareUnrounded(const Decimal& value, const Decimal& limit);

}  // namespace qel
