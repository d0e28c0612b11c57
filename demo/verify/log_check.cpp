#include "demo/verify/log_check.h"

#include <cstring>
#include <string_view>

#include "demo/result/run_log.h"
#include "demo/support/file_names.h"
#include "demo/support/number.h"
#include "demo/support/text_file.h"
#include "demo/verify/checks.h"

namespace titration {
namespace {

// [2012/01/03 09:05:07],message
constexpr std::size_t kTimeAt = 1, kTimeSize = 19, kMessageAt = 22;

constexpr std::string_view kStages[] = {stage::kMethod, stage::kCurve, stage::kResult, stage::kRegistered};

bool HasTime(std::string_view line) {
    return line.size() >= kMessageAt && line.front() == '[' && line.substr(kTimeAt + kTimeSize, 2) == "],";
}

// Follows the runs from stage to stage. Only one at a time has the method and the history; between its lines others log
// that they were refused.
class Runs {
public:
    explicit Runs(LogFacts& facts) : m_facts(facts) {}

    void Take(std::string_view message) {
        for (std::size_t stage = 0; stage < std::size(kStages); ++stage) {
            if (message.starts_with(kStages[stage])) Reach(stage, message.substr(kStages[stage].size()));
        }
        if (message.starts_with(stage::kTable)) TakeTable(message.substr(std::strlen(stage::kTable)));
        if (message.starts_with(stage::kTookOut))
            m_facts.takenOut.emplace(message.substr(std::strlen(stage::kTookOut)));
        if (message.starts_with(stage::kSignedReport)) TakeSigned(message.substr(std::strlen(stage::kSignedReport)));
        if (message.starts_with(stage::kPreviewed)) {
            m_facts.previewed = Reports(message, stage::kPreviewed);
            m_facts.printedLast.clear();
        }
        const std::size_t into = message.find(stage::kInto);
        if (message.starts_with(stage::kPrinted) && into != std::string_view::npos) {
            const std::string file(message.substr(into + std::strlen(stage::kInto)));
            m_facts.printed[file] = Reports(message, stage::kPrinted);
            m_facts.printedLast = file;
        }
    }

private:
    // Directly after the curve that it belongs to.
    void TakeTable(std::string_view number) {
        const int table = ParseWholeNumber(number).value_or(0);
        Require(m_next == 2 && table > 0, "without a curve before it");
        m_table = table;
    }

    void TakeSigned(std::string_view number) {
        const auto version = static_cast<DWORD>(ParseWholeNumber(number).value_or(0));
        Require(version > 0 && version <= m_facts.runs.size(), "there is no such version");
        m_facts.signedReports.insert(version);
    }

    void Reach(std::size_t stage, std::string_view text) {
        Require(stage == 0 || stage == m_next, "without what comes before it");
        m_next = stage + 1;
        if (stage == 0) m_table = 0;
        if (stage < std::size(m_texts)) {
            m_texts[stage] = text;
            return;
        }
        const std::size_t before = m_facts.runs.size();
        const auto version = ParseWholeNumber(text);
        Require(version && static_cast<std::size_t>(*version) == before + 1, "after version " + std::to_string(before));
        m_facts.runs.push_back({m_texts[0], m_texts[1], m_texts[2], m_table});
    }

    // "previewed 3 reports", "printed 3 reports on printer PDF into Titration reports.pdf"
    LoggedReports Reports(std::string_view message, std::string_view stage) const {
        const std::string_view text = message.substr(stage.size());
        const int count = ParseWholeNumber(text.substr(0, text.find(' '))).value_or(0);
        const auto last = static_cast<DWORD>(m_facts.runs.size());
        Require(count > 0 && static_cast<DWORD>(count) <= last, "there were " + Counted(last, "report"));
        return {last - static_cast<DWORD>(count) + 1, last};
    }

    LogFacts& m_facts;
    std::string m_texts[std::size(kStages) - 1];  // of the stages before the last one
    std::size_t m_next = 0;
    int m_table = 0;
};

}  // namespace

std::string LoggedReports::Described() const {
    return first == last ? JobName(first) : JobName(first) + " to " + JobName(last);
}

std::string CheckLog(const MadeFiles& made, DWORD versions, LogFacts& facts) {
    const std::string text = ReadTextFile(made.Path("titration.log"));
    Runs runs(facts);
    std::string_view time;
    const std::vector<std::string_view> lines = Lines(text);
    for (const std::string_view& line : lines) {
        Require(text.ends_with("\r\n") || &line != &lines.back(), "its last line is cut");
        const std::string here = "line " + std::to_string(++facts.lines) + ", \"" + std::string(line) + "\"";
        Require(HasTime(line), here + ": is not a line of the log");
        Require(time <= line.substr(kTimeAt, kTimeSize), here + ": is earlier than the one before");
        time = line.substr(kTimeAt, kTimeSize);
        About(here, [&] { runs.Take(line.substr(kMessageAt)); });
    }
    const auto logged = static_cast<DWORD>(facts.runs.size());
    Require(logged == versions,
            "mentions " + Counted(logged, "version") + ", and there are " + std::to_string(versions));
    made.RequireBeginsAsMade("titration.log");
    return std::to_string(facts.lines) + " lines in order, " + Counted(versions, "version") + " registered";
}

}  // namespace titration
