#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/platform/export.h"

namespace qel {

/// What is wrong with a formula, and where: for the person who wrote it, and for the program that marks the place.
struct QELLIB10_API FormulaError {
    enum class Kind {
        kSyntax,     ///< something else is expected at the place
        kName,       ///< a variable, constant or function that nobody knows
        kArguments,  ///< a function with too many or too few arguments
        kType,       ///< a number where yes or no is needed, or the other way round
        kTooLong,    ///< the text has more than Formula::kLongest bytes
        kTooDeep,    ///< brackets, signs and powers are nested too deeply
        kText,       ///< the text is not UTF-8
        kDividedByZero,
        kUndefined,    ///< such as the logarithm of a negative number
        kTooLarge,     ///< past the range of the numbers, or of too many digits
        kReading,      ///< a reading is missing, invalid or a limit where a value is needed
        kCycle,        ///< a formula needs its own result
        kUnit,         ///< units that do not go together
        kUncertainty,  ///< an uncertainty, a correlation or an option is not valid; expected says which
    };

    Kind kind = Kind::kSyntax;
    std::size_t position = 0;  ///< in bytes of the text, from 0
    std::size_t length = 0;    ///< in bytes; 0 at the end of the text
    std::string expected;      ///< what was expected there: "a closing bracket"; of kReading the reading
    std::string nearest;  ///< the known name that is most like an unknown one, as a formula has it; empty if none is

    /// One sentence without a full stop, in English: a division by zero at character 3: "/"
    std::string Text(std::string_view formula) const;

    std::optional<std::size_t> cause;  ///< of kReading the position in the scope of the variable, if it is one

    friend bool operator==(const FormulaError&, const FormulaError&) = default;
};

}  // namespace qel
