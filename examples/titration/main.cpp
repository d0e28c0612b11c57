// From a measured titration curve to a result: finds the end point, computes the user's formula over named values,
// rounds and prints the result, and keeps the values in a file.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <qellib10/qellib10.h>

#include "calculation.h"
#include "csv_table.h"
#include "end_point.h"
#include "failure.h"
#include "report.h"
#include "result_file.h"
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

void WriteReport(const std::string& text, const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw Failure(path + ": cannot be written");
}

void Run(const Options& options) {
    const std::string settingsText = ReadTextFile(options.settings);
    const Settings settings = About(options.settings, [&] { return ReadSettings(settingsText); });
    const std::string data = ReadTextFile(options.data);
    const Curve curve =
        About(options.data, [&] { return ReadCurve(data, settings.volumeColumn, settings.signalColumn); });
    const EndPoint endPoint = About(options.data, [&] { return FindEndPoint(curve); });
    const Result result = About(options.settings, [&] { return Calculate(settings, endPoint.volume); });

    std::error_code error;
    std::filesystem::create_directories(options.out, error);
    if (error) throw Failure(options.out + ": " + error.message());
    const std::string archive = options.out + "/variables.qel";
    StoreVariables(result.variables, archive);
    if (LoadVariables(archive) != result.variables) throw Failure(archive + ": differs from what was written");
    const std::string reportFile = options.out + "/report.txt";
    const std::string report = Report(options.data, settings, curve, endPoint, result);
    WriteReport(report, reportFile);

    std::printf("%s", report.c_str());
    std::printf("Made       %s, %d variables, read back and equal\n", archive.c_str(),
                result.variables.GetVariableCount());
    std::printf("           %s\n", reportFile.c_str());
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
