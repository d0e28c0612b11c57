#include "qellib10/record/file_records.h"

#include <filesystem>
#include <functional>

#include "../support/cases.h"
#include "../support/output_of.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/record/cabinet_records.h"
#include "qellib10/record/signature_check.h"
#include "trail_folder.h"

namespace {

namespace fs = std::filesystem;

// An archive "t/.." of a sealed file, a report in a folder, and their trail.
class Archive : public TrailFolder {
public:
    Archive() {
        fs::create_directory(Posix("sub"));
        Write("sealed", "data");
        EXPECT_EQ(Run("$Q seal sealed >/dev/null"), "");
        Write("sub/report", "old");
        EXPECT_TRUE(Report("file sealed", "sealed") && Report("report printed", "sub/report"));
        Write("sub/report", "new");
        EXPECT_TRUE(Report("export", "sub/report") && Report("export", "../outside", "sealed"));
    }
    // Appends what the file is now.
    bool Report(const char* action, const std::string& object, const std::string& file = "") const {
        const std::string bytes = Read(file.empty() ? object : file);
        qel::TrailRecord record = Record(action, object);
        record.size = bytes.size();
        record.sha256 = HashOf(bytes);
        qel::Trail trail(Settings(), std::make_shared<ByteSigner>(1));
        return trail.Open() != 0 && trail.Append(record).has_value();
    }
    std::string Run(const std::string& commands) const {
        return OutputOf("cd '" + Posix().native() + "' && export Q=" QELLIB10_QEL " && { " + commands + "; } 2>&1");
    }
    std::string Compared() const {
        qel::FileRecords records;
        if (records.Read(Name("t")) == 0) return qel::LastFailure().text;
        std::string line;
        for (const qel::RecordedFile& file : records.Compare(Name(".")))
            line +=
                file.path + ' ' + std::to_string(file.entry) + ' ' + std::to_string(static_cast<int>(file.state)) + '|';
        return line;
    }
    qel::TrailReceipt Last() const {
        const qel::TrailReport report = Check();
        return {report.entries, report.head};
    }
};

}  // namespace

TEST(FileRecords, ChangedMissingAndUnrecordedFilesAreFound) {
    struct Change {
        const char* what;
        std::function<void(const Archive&)> make;
        const char* compared;
        const char* reported;
    };
    for (const auto& [what, make, compared, reported] :
         {Change{"nothing", [](const Archive&) {}, "sealed 2 0|sub/report 4 0|", "2 recorded files: 0 findings\n0"},
          Change{"sealed again", [](const Archive& in) { in.Run("echo x >>sealed; $Q seal sealed"); },
                 "sealed 2 1|sub/report 4 0|", "./sealed: is not what was recorded, entry 2 by mori\n"},
          Change{"an older report", [](const Archive& in) { in.Write("sub/report", "old"); },
                 "sealed 2 0|sub/report 4 1|",
                 "./sub/report: is an older state, which entry 3 has recorded, entry 4 by mori\n"},
          Change{"removed", [](const Archive& in) { fs::remove_all(in.Posix("sub")); }, "sealed 2 0|sub/report 4 2|",
                 "./sub/report: was recorded, and is not there, entry 4 by mori\n"},
          Change{"a folder in its place", [](const Archive& in) { in.Run("rm sealed; mkdir sealed"); },
                 "sealed 2 3|sub/report 4 0|", "./sealed: cannot be read, entry 2 by mori\n"},
          Change{"a link in its place", [](const Archive& in) { in.Run("mv sealed x; ln -s x sealed"); },
                 "sealed 2 1|sub/report 4 0|", "./sealed: is not what was recorded, entry 2 by mori\n"},
          Change{"a link to its folder", [](const Archive& in) { in.Run("mv sub x; ln -s x sub"); },
                 "sealed 2 0|sub/report 4 1|", "./sub/report: is not what was recorded, entry 4 by mori\n"},
          Change{"another one sealed", [](const Archive& in) { in.Run("echo x >y; $Q seal y"); },
                 "sealed 2 0|sub/report 4 0|", "./y: is sealed, and no entry names it\n"}}) {
        const Archive archive;
        make(archive);
        EXPECT_EQ(archive.Compared(), compared) << what;
        const std::string output = archive.Run("$Q trail verify t --head-file h --archive .; echo $?");
        EXPECT_NE((output.find("entries: consistent") != std::string::npos ? output : "")
                      .find(std::string(reported).substr(0, std::string(reported).rfind('\n'))),
                  std::string::npos)
            << what << ": " << output;
    }
}

TEST(FileRecords, ASealedFileThatIsOpenForWritingIsAFinding) {
    const Archive archive;
    archive.Run("echo x >y; $Q seal y; echo x >plain");
    const CFile sealed(archive.Name("y").c_str(), CFile::modeReadWrite | CFile::shareDenyNone);
    const CFile plain(archive.Name("plain").c_str(), CFile::modeReadWrite | CFile::shareDenyNone);
    const std::string output = archive.Run("$Q trail verify t --head-file h --archive . | grep -E '^./|finding'");
    EXPECT_EQ(output.substr(0, 5), "./y: ") << output;
    EXPECT_NE(output.find("2 recorded files: 1 finding\n"), std::string::npos) << output;
}

// Somebody may exchange the file after it was checked and before it is read once more.
TEST(FileRecords, ATrailThatWasExchangedAfterItsCheckIsNotBelieved) {
    const Archive archive;
    const qel::TrailReceipt last = archive.Last();
    const std::string trail = archive.Read("t");
    const std::vector<std::string> lines = LinesOf(trail);
    std::string changed = trail;
    changed.replace(trail.find("mori"), 4, "abet");
    ASSERT_TRUE(archive.Report("export", "sealed"));
    const std::string longer = archive.Read("t");
    for (const auto& [what, bytes, isBelieved] :
         Cases<const char*, std::string, int>{{"the same", trail, 1},
                                              {"appended since", longer, 1},
                                              {"changed", changed, 0},
                                              {"shorter", trail.substr(0, trail.size() - lines.back().size()), 0},
                                              {"without a line", lines[0] + lines[1] + lines[3] + lines[4], 0},
                                              {"empty", "", 0}}) {
        archive.Write("t", bytes);
        qel::FileRecords files;
        qel::CabinetRecords cabinets;
        qel::SignatureReport signatures;
        EXPECT_EQ(files.Read(archive.Name("t"), last), isBelieved) << what;
        EXPECT_EQ(cabinets.Read(archive.Name("t"), last), isBelieved) << what;
        EXPECT_EQ(qel::CheckSignatures(archive.Name("t"), {}, signatures, last), isBelieved) << what;
        EXPECT_EQ(isBelieved == 0 || signatures.entries == last.number, true) << what;
    }
}
