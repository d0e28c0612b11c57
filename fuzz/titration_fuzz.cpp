// Law: for any bytes of a curve's file and of the settings after it (separated by a zero byte), the demonstration finds
// an end point within the curve and a result that reads as a number, or says in one line why not. A method that was
// kept once is kept again without a change.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

#include "../tests/support/temp_folder.h"
#include "demo/curve/csv_table.h"
#include "demo/method/method_file.h"
#include "demo/method/method_ini.h"
#include "demo/method/settings.h"
#include "demo/result/calculation.h"
#include "demo/result/titration.h"
#include "demo/support/failure.h"
#include "demo/support/number.h"
#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;

titration::Method Kept(const TempFolder& folder, const titration::Method& method) {
    titration::MethodFile(folder.Name("method.xml")).Keep(method);
    return titration::MethodFile(folder.Name("method.xml")).Kept();
}

void RequireOneLine(std::string_view text) { Require(text.find('\n') == std::string_view::npos); }

void Evaluate(std::string_view data, std::string_view text) {
    static const TempFolder folder;
    folder.Write("settings.ini", std::string(text));
    const titration::Method method = titration::ReadMethodIni(folder.Name("settings.ini"));
    const titration::Settings settings = titration::ParseSettings(method);
    const titration::Method kept = Kept(folder, method);
    Require(titration::Differences(kept, Kept(folder, kept)).GetCount() == 0);
    const titration::Curve curve = titration::ReadCurve(data, settings.volumeColumn, settings.signalColumn);
    const qel::CurveEndPoint found = titration::EndPointOf(curve);
    const qel::EndPoint& endPoint = *found.steepest;
    const auto [lowest, highest] = std::ranges::minmax(curve.volume);
    Require(endPoint.volume >= lowest && endPoint.volume <= highest);
    Require(std::isfinite(endPoint.slope) && std::isfinite(endPoint.signal) && endPoint.slope != 0);
    Require(qel::ReadNumber(titration::Calculate(settings, found).text).has_value());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\0'), size);
    try {
        Evaluate(input.substr(0, end), input.substr(std::min(end + 1, size)));
    } catch (const titration::Failure& failure) {
        RequireOneLine(failure.what());
    } catch (const qel::DataError& refusal) {
        RequireOneLine(refusal.what());
    }
    return 0;
}
