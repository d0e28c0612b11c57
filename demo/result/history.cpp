#include "demo/result/history.h"

#include "demo/result/renewals.h"
#include "demo/support/file_step.h"
#include "demo/support/number.h"

namespace titration {
namespace {

constexpr const char* kCabinet = "results.hcf";
constexpr const char* kRecords = "renewals.qel";
constexpr DWORD kMaxListed = 10;

// What the library refuses becomes the one line that the user sees.
template <class Step> auto OnHistory(Step step) {
    try {
        return OnFile(kRecords, step);
    } catch (const qel::DataError& error) {
        throw Failure(error.what());
    }
}

qel::RenewalHistory Opened(const CString& folder) {
    return OnHistory([&] {
        return qel::RenewalHistory(CQFile::BuildFilePath(folder, kCabinet).View(),
                                   CQFile::BuildFilePath(folder, kRecords).View());
    });
}

}  // namespace

History::History(const CString& folder) : m_kept(Opened(folder)) {}

const CHistoryRenewInfo& History::Register(const std::string& path, const std::string& operatorName,
                                           const std::string& comment) {
    return *OnHistory([&] { return &m_kept.Register(path, operatorName, comment); });
}

const CHistoryRenewInfo& History::TakeOut(DWORD version, const std::string& path) {
    if (version == 0 || version > Latest())
        throw Failure("there is no version " + std::to_string(version) + ", the latest is " + std::to_string(Latest()));
    const CString folder = CQFile::GetFolderFromPath(path.c_str());
    if (CQFile::CreateDirectories(folder) == 0) throw Failure(std::string(folder) + ": " + Why("cannot be made"));
    OnHistory([&] { m_kept.TakeOut(version, path); });
    return Record(version);
}

std::string History::Listed(const std::string& indent) const {
    const DWORD first = Latest() > kMaxListed ? Latest() - kMaxListed + 1 : 1;
    std::string text = std::string(m_kept.Guid().GetString()) + ", " + Counted(Latest(), "version") + "\n";
    if (first > 1) text += indent + "... the latest of them:\n";
    for (DWORD version = first; version <= Latest(); ++version) {
        text += indent + std::to_string(version) + "  " + Described(Record(version)) + "\n";
    }
    return text;
}

}  // namespace titration
