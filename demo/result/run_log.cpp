#include "demo/result/run_log.h"

#include <algorithm>

#include "demo/support/file_step.h"
#include "demo/support/text_file.h"

namespace titration {

RunLog::RunLog(const CString& folder) : m_path(CQFile::BuildFilePath(folder, "titration.log")) {
    // Reported at once: each message would wait for the file for seconds.
    m_begin = OnFile(m_path, [&] {
        return CFile(m_path.c_str(),
                     CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite | CFile::shareDenyNone)
            .GetLength();
    });
    CLog::SetLogFile(m_path.c_str());
}

std::string RunLog::NewLines(const std::string& indent) const {
    const std::string all = ReadTextFile(m_path);
    std::string text;
    for (const std::string_view line : Lines(std::string_view(all).substr(std::min(all.size(), m_begin)))) {
        text += indent + std::string(line) + "\n";
    }
    return text;
}

void Log(const std::string& line) { CLog::LogOut(0, line.c_str()); }

}  // namespace titration
