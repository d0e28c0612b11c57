#pragma once

#include <sys/types.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "temp_folder.h"

/// What a body does to the files of a folder, call by call, and what of it a disk may hold when the power fails:
/// names as they were at some call since the last flush of a folder, in the order of the calls, as a file system's
/// journal keeps them; of a file each sector, and its length, as it was at any call since the last flush of the file.
class DiskRecord {
public:
    /// @param folder holds what is on the disk by now
    explicit DiskRecord(const TempFolder& folder);
    ~DiskRecord() { theRecord = nullptr; }
    DiskRecord(const DiskRecord&) = delete;
    DiskRecord& operator=(const DiskRecord&) = delete;

    /// Notes what a call has left in the folder of the record that there is. @param flushed descriptor, or -1
    static void Take(int flushed);
    std::size_t Calls() const { return m_steps.size() - 1; }
    /// Makes the folder what the disk may hold when the power fails after so many calls.
    void CutAfter(std::size_t calls, std::minstd_rand& random) const;

private:
    struct Name {
        ino_t file;  // 0: a folder
        std::filesystem::perms rights;
    };
    struct Step {
        std::map<std::string, Name> names = {};   // folders before what is in them
        std::map<ino_t, std::string> bytes = {};  // of files that have lost their name, too
        ino_t flushed = 0;
        bool hasFlushedNames = true;
    };
    void Note(Step& step) const;
    std::string BytesOf(ino_t file, std::size_t calls, std::minstd_rand& random) const;

    static DiskRecord* theRecord;
    const TempFolder& m_folder;
    std::vector<Step> m_steps{Step{}};
};
