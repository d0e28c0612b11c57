#include "result_checks.h"

#include "../method_file.h"
#include "../report.h"
#include "../result_file.h"
#include "../result_table.h"
#include "../text_file.h"
#include "checks.h"
#include "temporary_file.h"

namespace titration {

std::string CheckMethod(const MadeFiles& made) {
    const Method method = MethodFile::Read(made.Path("method.xml"));
    ParseSettings(method);
    made.RequireAsMade("method.xml");
    return "deciphered, " + std::to_string(method.size()) + " values";
}

std::string CheckVariables(const MadeFiles& made) {
    const std::string path = made.Path("variables.qel");
    const CCalcVariableList variables = LoadVariables(path);
    made.RequireAsMade("variables.qel");
    return std::to_string(variables.GetVariableCount()) + " variables, sealed with " + Shown(SealedSums(path));
}

Recomputed Recompute(const MadeFiles& made) {
    Recomputed recomputed;
    recomputed.settings = ParseSettings(MethodFile::Read(made.Path("method.xml")));
    const CCalcVariableList kept = LoadVariables(made.Path("variables.qel"));
    recomputed.result = Recalculate(recomputed.settings, kept);
    Require(!(recomputed.result.variables != kept), "variables.qel is not of a result by method.xml");
    return recomputed;
}

std::string CheckTable(const MadeFiles& made, const Recomputed& recomputed) {
    const TemporaryFile again;
    const int lines = WriteResultTable(recomputed.result, again.Path());
    Require(CQFile::CompareFile(again.Path().c_str(), made.Path("result.csv").c_str()) != 0,
            "is not the table of that result");
    made.RequireAsMade("result.csv");
    return std::to_string(lines) + " lines, the table of that result";
}

// Its other lines may be worded otherwise by the program that wrote them.
std::string CheckReport(const MadeFiles& made, const Recomputed& recomputed) {
    const std::string text = ReadTextFile(made.Path("report.txt"));
    const auto& [settings, result] = recomputed;
    const std::string limits = LimitText(settings, result.value);
    for (const std::string& line : {"Formula    " + settings.formula, "Result     " + Shown(result),
                                    limits.empty() ? limits : "Limits     " + limits}) {
        Require(text.find("\n" + line + "\n") != std::string::npos || line.empty(), "has no line \"" + line + "\"");
    }
    made.RequireAsMade("report.txt");
    return "has that result";
}

}  // namespace titration
