#include "disk_record.h"

#include <sys/stat.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace fs = std::filesystem;

DiskRecord* DiskRecord::theRecord = nullptr;

DiskRecord::DiskRecord(const TempFolder& folder) : m_folder(folder) {
    Note(m_steps.front());
    theRecord = this;
}

void DiskRecord::Note(Step& step) const {
    for (const auto& entry : fs::recursive_directory_iterator(m_folder.Posix())) {
        const std::string name = entry.path().lexically_relative(m_folder.Posix());
        struct stat status = {};
        if (::stat(entry.path().c_str(), &status) != 0) continue;
        const ino_t file = entry.is_directory() ? 0 : status.st_ino;
        step.names[name] = {file, entry.status().permissions()};
        if (file != 0) step.bytes[file] = m_folder.Read(name);
    }
}

void DiskRecord::Take(int flushed) {
    if (theRecord == nullptr) return;
    std::vector<Step>& steps = theRecord->m_steps;
    struct stat status = {};
    const bool isFlush = flushed >= 0 && ::fstat(flushed, &status) == 0;
    Step step{.bytes = steps.back().bytes, .hasFlushedNames = isFlush && S_ISDIR(status.st_mode)};
    if (isFlush) step.flushed = status.st_ino;
    theRecord->Note(step);
    steps.push_back(std::move(step));
}

std::string DiskRecord::BytesOf(ino_t file, std::size_t calls, std::minstd_rand& random) const {
    constexpr std::size_t kSector = 512;
    std::size_t first = calls;
    while (first > 0 && m_steps[first].flushed != file && m_steps[first - 1].bytes.contains(file)) --first;
    const auto any = [&]() -> const std::string& {
        return m_steps[first + random() % (calls - first + 1)].bytes.at(file);
    };
    std::string bytes(any().size(), '\0');
    for (std::size_t at = 0; at < bytes.size(); at += kSector) {
        const std::string_view from = any();
        if (at < from.size()) from.substr(at, std::min(kSector, bytes.size() - at)).copy(&bytes[at], kSector);
    }
    return bytes;
}

void DiskRecord::CutAfter(std::size_t calls, std::minstd_rand& random) const {
    for (const auto& entry : fs::directory_iterator(m_folder.Posix())) fs::remove_all(entry.path());
    std::size_t first = calls;
    while (!m_steps[first].hasFlushedNames) --first;
    for (const auto& [name, is] : m_steps[first + random() % (calls - first + 1)].names) {
        if (is.file == 0) {
            fs::create_directory(m_folder.Posix(name));
        } else {
            m_folder.Write(name, BytesOf(is.file, calls, random));
        }
        fs::permissions(m_folder.Posix(name), is.rights);
    }
}
