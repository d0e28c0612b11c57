#pragma once

#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/quantity/quantity.h"

namespace qel {

/// Why a curve gives no value.
enum class CurveRefusal {
    kNone,
    kTooFewPoints,   ///< of the curve, or in a range or window
    kNotFinite,      ///< a reading that is NaN, infinite or beyond 1e30, or x values closer than 1e-30
    kConstant,       ///< all signals are the same: nothing was measured, and the noise is unknown
    kArgument,       ///< an option that has no meaning, such as a window below the degree
    kNoPlace,        ///< there is no step, peak or crossing that is clear of the noise
    kSeveralPlaces,  ///< there are several, and none is preferred
    kPause,          ///< the place is where nothing was measured
    kOverlap,        ///< peaks overlap so far that the value does not exist
    kNotStraight,    ///< a straight line does not follow the readings
    kNoFit,          ///< the model does not follow the readings, or the fit found no end
    kUncertain       ///< a titration's end point is open; see qel::FindEndPoint
};

/// A part of a curve, with both ends.
struct CurveRange {
    double first = -std::numeric_limits<double>::infinity();
    double last = std::numeric_limits<double>::infinity();
};

/// A value that was read off a curve, or why there is none. A number without its uncertainty looks as sure as any other
/// one; here neither comes without the other.
struct QELLIB10_API CurveResult {
    std::optional<double> value;
    double uncertainty = 0;  ///< standard uncertainty, in the unit of the value
    double degreesOfFreedom = std::numeric_limits<double>::infinity();  ///< of the uncertainty
    CurveRefusal refusal = CurveRefusal::kNone;
    std::string reason{};  ///< one sentence with the numbers for it, in English; empty where there is a value

    explicit operator bool() const { return value.has_value(); }

    /// The value as an input of a formula. @param source of its uncertainty, empty: of its own
    /// @return nothing where there is no value
    std::optional<Quantity> AsQuantity(const Unit& unit, std::string_view source = {}) const;
};

/// A point of a curve that was computed of several readings.
struct CurveValue {
    double x = 0, y = 0;
    double uncertainty = 0;  ///< standard uncertainty of y by the noise of the readings
};

/// Points that were computed, rising in x; or why there are none.
struct CurveValues {
    std::vector<CurveValue> values;
    CurveRefusal refusal = CurveRefusal::kNone;
    std::string reason{};
};

}  // namespace qel
