// From a measured titration curve to a result: reads settings, finds the end point, computes the user's formula over
// named values, rounds and prints the result, writes it as a table, keeps the values in a sealed file, and logs.

#include <cstdio>
#include <string>

#include <qellib10/qellib10.h>

#include "calculation.h"
#include "csv_table.h"
#include "end_point.h"
#include "failure.h"
#include "file_step.h"
#include "report.h"
#include "result_file.h"
#include "result_table.h"
#include "settings.h"
#include "text_file.h"

namespace titration {
namespace {

constexpr const char* kUsage = "usage: titration --data FILE --settings FILE --out FOLDER";

struct Options {
    std::string data, settings, out;
};

Options ParseOptions(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; i += 2) {
        const std::string name = argv[i];
        std::string* const target = name == "--data"       ? &options.data
                                    : name == "--settings" ? &options.settings
                                    : name == "--out"      ? &options.out
                                                           : nullptr;
        if (target == nullptr || i + 1 == argc || !target->empty()) throw Failure(kUsage);
        *target = argv[i + 1];
    }
    if (options.data.empty() || options.settings.empty() || options.out.empty()) throw Failure(kUsage);
    return options;
}

// Lets @p step fail with the name of the file that it is about.
template <class Step> auto About(const std::string& file, Step step) {
    try {
        return step();
    } catch (const Failure& failure) {
        throw Failure(file + ": " + failure.what());
    }
}

void Log(const std::string& line) { CLog::LogOut(0, line.c_str()); }

// The folder for the results, made when missing, with a log in it that is told of failures too.
CString OpenOutput(const std::string& out) {
    const CString folder = OnFile(out, [&] { return qel::FullPath(out); });
    if (CQFile::CreateDirectories(folder) == 0) throw Failure(out + ": cannot be made");
    const CString log = CQFile::BuildFilePath(folder, "titration.log");
    // Said at once: each message would wait for the file for seconds.
    OnFile(out + "/titration.log",
           [&] { CFile(log, CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite | CFile::shareDenyNone); });
    CLog::SetLogFile(log);
    return folder;
}

struct Outcome {
    Result result;
    std::string report;
};

Outcome Titrate(const Options& options) {
    Log("settings " + options.settings);
    const Settings settings = About(options.settings, [&] { return ReadSettings(options.settings); });
    Log("curve " + options.data);
    const std::string data = ReadTextFile(options.data);
    const Curve curve =
        About(options.data, [&] { return ReadCurve(data, settings.volumeColumn, settings.signalColumn); });
    const EndPoint endPoint = About(options.data, [&] { return FindEndPoint(curve); });
    const Result result = About(options.settings, [&] { return Calculate(settings, endPoint.volume); });
    Log("result " + result.name + " = " + result.text + " " + result.unit);
    return {result, Report(options.settings, settings, options.data, curve, endPoint, result)};
}

// @return what was made, one file a line
std::string Keep(const Outcome& outcome, const CString& folder) {
    const auto path = [&](const char* name) { return std::string(CQFile::BuildFilePath(folder, name)); };
    WriteTextFile(outcome.report, path("report.txt"));
    const int lines = WriteResultTable(outcome.result, path("result.csv"));

    const CCalcVariableList& variables = outcome.result.variables;
    const std::string archive = path("variables.qel");
    const CCheckDatafile seal = StoreVariables(variables, archive);
    const std::string version = "version " + std::to_string(seal.GetVersion());
    Log("sealed variables.qel as " + version);
    if (LoadVariables(archive) != variables) throw Failure(archive + ": differs from what was written");
    constexpr int kChangedByte = 20;
    RequireChangeToBeFound(archive, kChangedByte);

    CString text;
    text.Format(
        "Made       report.txt\n"
        "           result.csv, %d lines\n"
        "           variables.qel, %d variables, sealed as %s of %s\n"
        "Checked    variables.qel: read back and equal, the seal fits\n"
        "           a copy with a bit of byte %d changed: the seal does not fit, so the change is found\n",
        lines, variables.GetVariableCount(), version.c_str(), std::string(seal.GetGUID().GetString()).c_str(),
        kChangedByte);
    return std::string(text);
}

void Run(const Options& options) {
    const CString folder = OpenOutput(options.out);
    try {
        const Outcome outcome = Titrate(options);
        const std::string made = Keep(outcome, folder);
        std::printf("%s%s", outcome.report.c_str(), made.c_str());
        std::printf("Logged     titration.log; all in %s\n", options.out.c_str());
    } catch (const Failure& failure) {
        Log(std::string("failed: ") + failure.what());
        throw;
    }
}

}  // namespace
}  // namespace titration

int main(int argc, char** argv) {
    qel::SetCodePage(qel::kCodePageUtf8);  // as terminals and files here are
    try {
        titration::Run(titration::ParseOptions(argc, argv));
        return 0;
    } catch (const titration::Failure& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
