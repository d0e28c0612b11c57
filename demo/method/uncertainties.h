#pragma once

#include <string>
#include <vector>

#include <qellib10/quantity.h>

namespace titration {

struct Uncertainties {
    std::vector<qel::UncertaintyComponent> components;
    bool hasThatOfCurve = false;  // of the end point, as the curve shows it
};

/// What a method says about the uncertainty of a value, in the unit of the value, in one of these forms:
///
///     standard 0.008           a standard uncertainty
///     rectangular 0.03         a half-width: all values within it are equally probable
///     triangular 0.01          a half-width: those in the middle are more probable
///     certificate 0.002 k 2    an expanded uncertainty and its coverage factor
///     readings 0.012 n 10      the standard deviation of single readings and their number
///     curve                    of the end point: the standard uncertainty by the noise of the curve
///
/// The source may follow after a comma and a blank: "rectangular 0.03, burette". Values with the same source vary
/// together. Semicolons separate several uncertainties of a value.
/// @throws Failure
Uncertainties ReadUncertainties(const std::string& text);

}  // namespace titration
