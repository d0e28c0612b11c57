#include "log_check.h"

#include <cstring>
#include <string_view>

#include "../number.h"
#include "../run_log.h"
#include "../text_file.h"
#include "checks.h"

namespace titration {
namespace {

// [2012/01/03 09:05:07],message
constexpr std::size_t kTimeAt = 1, kTimeSize = 19, kMessageAt = 22;

constexpr std::string_view kStages[] = {stage::kMethod, stage::kCurve, stage::kResult, stage::kRegistered};
constexpr std::size_t kResultStage = 2, kRegisteredStage = 3;

bool HasTime(std::string_view line) {
    return line.size() >= kMessageAt && line.front() == '[' && line.substr(kTimeAt + kTimeSize, 2) == "],";
}

// Goes with the runs from stage to stage. Only one at a time has the method and the history; between its lines others
// log that they were refused.
class Runs {
public:
    void Take(std::string_view message) {
        for (std::size_t stage = 0; stage < std::size(kStages); ++stage) {
            if (message.starts_with(kStages[stage])) Reach(stage, message.substr(kStages[stage].size()));
        }
        const std::size_t into = message.find(stage::kInto);
        if (message.starts_with(stage::kPrinted) && into != std::string::npos)
            m_printed.emplace_back(message.substr(into + std::strlen(stage::kInto)));
    }
    DWORD Versions() const { return m_versions; }
    const std::string& Result() const { return m_result; }
    const std::vector<std::string>& Printed() const { return m_printed; }

private:
    void Reach(std::size_t stage, std::string_view text) {
        Require(stage == 0 || stage == m_next, "without what comes before it");
        if (stage == kResultStage) m_result = text;
        if (stage == kRegisteredStage) {
            const auto version = ParseWholeNumber(text);
            Require(version && static_cast<DWORD>(*version) == m_versions + 1,
                    "behind version " + std::to_string(m_versions));
            ++m_versions;
        }
        m_next = stage + 1;
    }

    std::size_t m_next = 0;
    DWORD m_versions = 0;
    std::string m_result;
    std::vector<std::string> m_printed;
};

}  // namespace

LogFacts CheckLog(const std::string& path, DWORD versions, const std::optional<std::string>& result) {
    const std::string text = ReadTextFile(path);
    Require(text.ends_with("\r\n"), "its last line is cut");
    Runs runs;
    std::string_view time;
    int count = 0;
    for (const std::string_view line : Lines(text)) {
        ++count;
        const std::string here = "line " + std::to_string(count) + ", \"" + std::string(line) + "\"";
        Require(HasTime(line), here + ": is none of the log");
        Require(time <= line.substr(kTimeAt, kTimeSize), here + ": is earlier than the one before");
        time = line.substr(kTimeAt, kTimeSize);
        About(here, [&] { runs.Take(line.substr(kMessageAt)); });
    }
    Require(runs.Versions() == versions,
            "tells of " + Counted(runs.Versions(), "version") + ", and there are " + std::to_string(versions));
    Require(!result || runs.Result() == *result, "the latest result is " + runs.Result());
    return {std::to_string(count) + " lines in order, " + Counted(versions, "version") + " registered", runs.Printed()};
}

}  // namespace titration
