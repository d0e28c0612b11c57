#include "report.h"

#include <qellib10/qellib10.h>

#include "number.h"

namespace titration {
namespace {

std::string Fixed(double value, int digits) { return std::string(CQVariant::DoubleToStr(value, digits, 0)); }

std::string Joined(const std::vector<std::string>& names) {
    std::string joined;
    for (const std::string& name : names) joined += (joined.empty() ? "" : ", ") + name;
    return joined.empty() ? "no variable" : joined;
}

}  // namespace

std::string ColumnText(const std::string& column) { return ParseWholeNumber(column) ? "column " + column : column; }

std::string LimitText(const Settings& settings, double value) {
    if (!settings.low && !settings.high) return "";
    const auto shown = [&](double limit) { return Fixed(limit, settings.digits); };
    const std::string from = settings.low ? "from " + shown(*settings.low) : "";
    const std::string to = settings.high ? std::string(settings.low ? " to " : "to ") + shown(*settings.high) : "";
    const bool isBelow = settings.low && value < *settings.low;
    const bool isAbove = settings.high && value > *settings.high;
    return from + to + ": " + (isBelow ? "too low" : isAbove ? "too high" : "kept");
}

std::string Report(const Determination& determination) {
    const auto& [settingsFile, settings, dataFile, curve, endPoint, result] = determination;
    std::string text = "Settings   " + settingsFile + ", " + std::to_string(settings.variables.size()) + " variables\n";
    text += "Curve      " + dataFile + ", lines " + std::to_string(curve.firstLine) + " to " +
            std::to_string(curve.lastLine) + ": " + std::to_string(curve.volume.size()) + " points\n";
    if (curve.linesWithoutPoint > 0) {
        text += "           " + std::to_string(curve.linesWithoutPoint) + " lines lack a reading\n";
    }
    text += "End point  " + ColumnText(settings.volumeColumn) + " = " + Fixed(endPoint.volume, 4) + " at " +
            ColumnText(settings.signalColumn) + " = " + Fixed(endPoint.signal, 2) + ", slope " +
            Fixed(endPoint.slope, 2) + ", through " + std::to_string(endPoint.points) + " points, noise " +
            Fixed(endPoint.noise, 3) + "\n";
    text += "Formula    " + settings.formula + "\n";
    text += "           uses " + Joined(result.used) + "\n";
    text += "Result     " + result.name + " = " + result.text + " " + result.unit + "\n";
    const std::string limits = LimitText(settings, result.value);
    return limits.empty() ? text : text + "Limits     " + limits + "\n";
}

}  // namespace titration
