#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/record/trail.h"

namespace qel {

/// A file that a trail's entry names, and what has become of it.
struct QELLIB10_API RecordedFile {
    enum class State {
        kRecorded,   ///< as the entry says
        kChanged,    ///< other bytes, or a symbolic link, or in a folder that is one: what that leads to is not the
                     ///< archive's file, whatever it contains
        kMissing,    ///< not there
        kUnreadable  ///< there, and it cannot be read
    };

    std::string path = {};  ///< in the archive's folder, with slashes, UTF-8: the entry's object
    State state = State::kRecorded;
    std::string action = {};  ///< of the entry, as all that follows
    std::string user = {};
    std::uint64_t entry = 0;
    std::uint64_t size = 0;
    std::string sha256 = {};
};

/// What a trail says about files of its archive: sealed ones, printed reports and exports. To notice that one was
/// changed, also where it was sealed again, or removed. Entries of the kinds `file sealed`, `report printed` and
/// `export` count that have the file's path in the archive as their object, its size and its SHA-256; of several about
/// one file the last.
///
/// @code
/// qel::FileRecords records;
/// if (records.Read(R"(\srv\archive\trail.jsonl)") == 0) return;
/// for (const qel::RecordedFile& file : records.Compare(R"(\srv\archive)"))
///     if (file.state != qel::RecordedFile::State::kRecorded) std::printf("%s is another file\n", file.path.c_str());
/// @endcode
///
/// As CabinetRecords it takes the trail as it is. The memory is that of the files, not of the trail. One thread at a
/// time.
class QELLIB10_API FileRecords {
public:
    /// Goes through a trail once. @param last the last entry that CheckTrail has seen: the trail must have it, and
    /// later ones do not count; with number 0 the trail is taken as it is
    /// @return 0 when it cannot be read, or is not the one that was checked; qel::LastFailure has the reason
    int Read(std::string_view trailPath, const TrailReceipt& last = {});
    /// Reads one more trail, which continues the one that was read last.
    int ReadOn(std::string_view trailPath, const TrailReceipt& last);

    /// Reads the files that entries name, in the order of their paths. Those outside the folder are left out.
    /// @param folder the archive's, in the library's form
    std::vector<RecordedFile> Compare(std::string_view folder) const;
    /// The same without reading the files: each is kRecorded. StateIn reads one of them, in any thread.
    std::vector<RecordedFile> All() const;
    static RecordedFile::State StateIn(std::string_view folder, const RecordedFile& file);

    /// Whether an entry names the file. @param path as RecordedFile::path
    bool Names(std::string_view path) const { return m_files.contains(std::string(path)); }

private:
    std::map<std::string, RecordedFile> m_files;
};

}  // namespace qel
