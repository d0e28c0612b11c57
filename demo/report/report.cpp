#include "demo/report/report.h"

#include <algorithm>

#include <qellib10/qellib10.h>

#include "demo/result/result_trace.h"
#include "demo/support/number.h"

namespace titration {
namespace {

std::string Fixed(double value, int digits) { return std::string(CQVariant::DoubleToStr(value, digits, 0)); }

// All values except the result's own, which comes last.
std::string MarkedValues(const Result& result) {
    std::string text;
    CCalcVariable variable;
    for (int i = 0; i + 1 < result.variables.GetVariableCount(); ++i) {
        result.variables.GetVariableData(i, &variable);
        CString line;
        line.Format("%s%c %s = %.10g\n", kIndent, variable.m_nUse != 0 ? '*' : ' ',
                    static_cast<const char*>(variable.m_szName), variable.m_dValue);
        text += std::string(line);
    }
    return text;
}

std::string RoundUpText(const CCalcVariableList& variables) {
    if (variables.GetRoundUpFlag() == 0) return "round-up setting off";
    return "round-up setting " + Counted(variables.GetRoundUpDigit(), "decimal place") + " for every value";
}

constexpr std::size_t kMaxStraysShown = 6;

std::string StrayText(const Curve& curve, const qel::EndPoint& endPoint) {
    const std::size_t count = endPoint.strays.size();
    std::string text = Counted(static_cast<long long>(count), "stray reading") + " left out, at ";
    for (std::size_t i = 0; i < std::min(count, kMaxStraysShown); ++i) {
        text += (i > 0 ? ", " : "") + Fixed(curve.volume[endPoint.strays[i]], 4);
    }
    return count > kMaxStraysShown ? text + " ..." : text;
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

std::string ReadingText(const Titration& titration) {
    const auto& [settingsFile, settings, dataFile, curve, endPoint, result] = titration;
    const std::string table = curve.table > 0 ? ", table " + std::to_string(curve.table) : "";
    std::string text = "Settings   " + settingsFile + ", " +
                       Counted(static_cast<long long>(settings.variables.size()), "variable") + "\n";
    text += "Curve      " + dataFile + table + ", lines " + std::to_string(curve.firstLine) + " to " +
            std::to_string(curve.lastLine) + ": " + std::to_string(curve.volume.size()) + " points\n";
    if (curve.linesWithoutPoint > 0) {
        text += kIndent + std::to_string(curve.linesWithoutPoint) + " lines have no reading\n";
    }
    text += "End point  " + ColumnText(settings.volumeColumn) + " = " + Fixed(endPoint.volume, 4) + " at " +
            ColumnText(settings.signalColumn) + " = " + Fixed(endPoint.signal, 2) + ", slope " +
            Fixed(endPoint.slope, 2) + ", through " + std::to_string(endPoint.points) + " points, noise " +
            Fixed(endPoint.noise, 3) + "\n";
    if (!endPoint.strays.empty()) text += kIndent + StrayText(curve, endPoint) + "\n";
    if (endPoint.gap) {
        text += kIndent + std::string("it is in a gap: there is no reading between ") + Fixed(endPoint.gap->first, 4) +
                " and " + Fixed(endPoint.gap->second, 4) + "\n";
    }
    return text;
}

std::string ResultText(const Settings& settings, const Result& result) {
    std::string text = "Formula    " + settings.formula + "\n" + kIndent + "is valid and uses what is marked; " +
                       RoundUpText(result.variables) + "\n" + MarkedValues(result);
    CString computed;
    computed.Format("Computed   %.12g, rounded to %s\n", result.computed,
                    Counted(settings.digits, "decimal place").c_str());
    text += std::string(computed);
    if (const std::string rule = RuleText(result); !rule.empty()) text += "Rule       " + rule + "\n";
    text += "Result     " + Shown(result) + "\n";
    const std::string uncertainty = UncertaintyText(result), remark = RoundingRemark(result);
    if (!uncertainty.empty()) text += kIndent + uncertainty + "\n";
    if (!remark.empty()) text += kIndent + ("rounded " + remark) + "\n";
    const std::string limits = LimitText(settings, result.value);
    if (limits.empty()) return text;
    const std::string decision = DecisionText(result);
    return text + "Limits     " + limits + "\n" + (decision.empty() ? "" : kIndent + decision + "\n");
}

std::string Report(const Titration& titration) {
    return ReadingText(titration) + ResultText(titration.settings, titration.result);
}

}  // namespace titration
