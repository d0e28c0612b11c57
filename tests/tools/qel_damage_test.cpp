#include <functional>
#include <map>

#include "../support/archive_bytes.h"
#include "../support/test.h"
#include "qel_folder.h"
#include "qellib10/qellib10.h"

// What `qel verify` finds in files that were damaged, and that it leaves all of them alone.

namespace {

std::string ListOf(int count) {
    CCalcVariableList list;
    for (int i = 0; i < count; ++i) {
        CCalcVariable variable;
        variable.m_szName.Format("V%d", i);
        variable.m_dValue = i + 0.5;
        list.AddVariableData(variable);
    }
    return Stored(list);
}

// Good files of each kind.
class Folder : public QelFolder {
public:
    Folder() {
        Write("data.dat", "measured values");
        Write("list.var", ListOf(3));
        Write("sealed.var", ListOf(3));
        CHistoryRenewInfo record;
        Write("renewals.dat", Stored(record) + Stored(record));
        Write("plain", "<Method><Unit>mL</Unit></Method>");
        CQelPrintJobQueueData job;
        job.AddMillimetreCommandLine({0, 0, 10, 10});
        job.SaveJobFile(Path("job.xml"));
        const std::string answer =
            Qel("seal data.dat sealed.var && for v in 1 2; do " QELLIB10_QEL
                " cabinet add method.hcf data.dat || exit; done; " QELLIB10_QEL " xml encipher plain method.xml");
        EXPECT_EQ(answer[0], '0') << answer;
        std::filesystem::remove(Posix("plain"));
    }

    // The status and the finding of one file.
    std::string Finding(const std::string& name) const {
        const std::string answer = Qel("verify " + name);
        const std::size_t status = answer.find(' '), at = answer.find(": ") + 2;
        return answer.substr(0, status + 1) + answer.substr(at, answer.find_first_of(",:", at) - at);
    }
};

using Damage = std::function<std::string(std::string)>;

Damage Flip(int at) {
    return [at](std::string bytes) {
        bytes[at < 0 ? bytes.size() + at : at] ^= 0x10;
        return bytes;
    };
}
Damage Cut(std::size_t count) {
    return [count](const std::string& bytes) { return bytes.substr(0, bytes.size() - count); };
}
Damage Append(const std::string& more) {
    return [more](const std::string& bytes) { return bytes + more; };
}
Damage Put(std::size_t at, const std::string& text) {
    return [at, text](std::string bytes) { return bytes.replace(at, text.size(), text); };
}

// Of a list: after the texts "QWCalc" and "1.01", flag and digit.
constexpr std::size_t kCountAt = 7 + 5 + 1 + 4;

}  // namespace

TEST(QelVerify, NamesTheKindOfDamage) {
    const std::string entity = "<!DOCTYPE printjob [<!ENTITY e SYSTEM \"data.dat\">]>";
    const auto withEntity = [&](std::string bytes) {
        return entity + bytes.insert(bytes.find("<commands>"), "<stylename>&e;</stylename>");
    };
    CHistoryRenewInfo info;
    const std::size_t record = Stored(info).size();
    const Folder folder;
    for (const auto& [file, damage, finding] : Cases<const char*, Damage, const char*>{
             {"data.dat", Flip(0), "6 changed"},
             {"data.dat", Cut(5), "7 cut"},
             {"data.dat", Append("more"), "6 changed"},
             {"sealed.var", Put(kCountAt, "\x04"), "6 changed"},
             {"sealed.var", Cut(4 + 11 + 32 - 1), "7 cut"},  // one byte of the seal is left
             {"sealed.var", Cut(4 + 11 + 32 - 14), "7 cut"},
             {"list.var", Put(kCountAt, "\x04"), "8 inconsistent"},
             {"list.var", Put(kCountAt, "\xFF\xFF\xFF\x7F"), "8 inconsistent"},
             {"list.var", Flip(kCountAt + 5), "8 inconsistent"},  // the tag of the first variable
             {"list.var", Cut(1), "7 cut"},
             {"list.var", Append("x"), "8 inconsistent"},
             {"renewals.dat", Cut(1), "7 cut"},
             {"renewals.dat", Cut(record - 5), "7 cut"},
             {"renewals.dat", Flip(static_cast<int>(record) + 3), "8 inconsistent"},
             {"renewals.dat", Append("x"), "8 inconsistent"},
             {"method.hcf", Flip(0), "10 bad header"},
             {"method.hcf", Flip(9), "10 bad header"},
             {"method.hcf", Flip(36), "8 inconsistent"},
             {"method.hcf", Put(40, "\x07"), "8 inconsistent"},
             {"method.hcf", Flip(36 + 20), "6 changed"},
             {"method.hcf", Flip(-1), "6 changed"},
             {"method.hcf", Cut(1), "7 cut"},
             {"method.hcf", Append("left over"), "8 inconsistent"},
             {"method.hcf", Put(36 + 8, "\xFF\xFF\xFF\xFF"), "7 cut"},
             {"job.xml", withEntity, "9 malformed"},
             {"job.xml", Cut(4), "9 malformed"},
             {"method.xml", Flip(9), "9 malformed"},
             {"method.xml", Cut(3), "7 cut"},
         }) {
        SCOPED_TRACE(std::string(file) + ", " + finding);
        const std::string good = folder.Read(file);
        EXPECT_EQ(folder.Finding(file), "0 intact");
        folder.Write(file, damage(good));
        EXPECT_EQ(folder.Finding(file), finding);
        EXPECT_EQ(folder.Qel("verify . >/dev/null").substr(0, 2), std::string(finding).substr(0, 2));
        folder.Write(file, good);
    }
    EXPECT_EQ(folder.Qel("verify ."), "0 7 files: 7 intact\n");
}

TEST(QelVerify, SeesEachByteOfASealedFile) {
    const Folder folder;
    const std::string good = folder.Read("data.dat");
    std::string names;
    for (std::size_t i = 0; i < good.size(); ++i) {
        const std::string place = "changed" + std::to_string(i);
        std::filesystem::create_directory(folder.Posix(place));
        folder.Write(place + "/data.dat", Flip(static_cast<int>(i))(good));
        names += " " + place;
    }
    const std::string count = std::to_string(good.size());
    const std::string answer = folder.Qel("verify -j 8" + names);
    EXPECT_TRUE(answer.ends_with("\n" + count + " files: " + count + " changed\n")) << answer;
    EXPECT_EQ(folder.Qel("verify -j 1" + names), answer);
}

TEST(QelVerify, RenamedUnknownAndUnreadableFilesAreReported) {
    const Folder folder;
    std::filesystem::rename(folder.Posix("data.dat"), folder.Posix("other.dat"));
    folder.Write("text", "neither sealed nor known");
    EXPECT_EQ(folder.Finding("other.dat"), "4 renamed");
    EXPECT_EQ(folder.Finding("missing"), "5 unreadable");
    EXPECT_EQ(folder.Finding("text"), "3 unknown");
    EXPECT_EQ(folder.Qel("verify . >/dev/null"), "4 ");
    std::filesystem::remove(folder.Posix("other.dat"));
    EXPECT_EQ(folder.Qel("verify ."), "0 7 files: 6 intact, 1 unknown\n");
    EXPECT_EQ(folder.Qel("verify --strict . >/dev/null"), "3 ");
    for (const char* start : {"<printjob", "\\0", R"(\20HistoryRenewInfo\0041.00)"})
        EXPECT_EQ(folder.Qel("--version >/dev/null; printf '" + std::string(start) +
                             "' >large.xml; truncate -s 70M large.xml; " QELLIB10_QEL " verify large.xml >/dev/null"),
                  "38 ");
    std::filesystem::remove(folder.Posix("large.xml"));
    const CFile written(folder.Path("list.var"), CFile::modeReadWrite | CFile::shareDenyNone);
    EXPECT_EQ(folder.Finding("list.var"), "5 unreadable");
    EXPECT_TRUE(folder.Qel("verify --json list.var").find("\"finding\": \"unreadable\"") != std::string::npos);
}

TEST(QelVerify, WritesNothingAndStaysInTheTree) {
    const Folder folder;
    const QelFolder outside;
    outside.Write("broken.hcf", "HCF1");
    namespace fs = std::filesystem;
    fs::create_symlink(outside.Posix("broken.hcf"), folder.Posix("link.hcf"));
    fs::create_directory_symlink(outside.Posix(), folder.Posix("linked"));
    fs::create_directory_symlink("..", folder.Posix("up"));
    folder.Write("half.hcf", folder.Read("method.hcf") + std::string(20, '\0') + "left over");
    ASSERT_EQ(folder.Qel("verify . >/dev/null; mkfifo pipe"), "0 ");
    const auto state = [&] {
        std::map<std::string, std::pair<fs::file_time_type, std::string>> files;
        for (const auto& entry : fs::directory_iterator(folder.Posix())) {
            const bool isFile = entry.symlink_status().type() == fs::file_type::regular;
            const std::string name = entry.path().filename();
            files[name] = {isFile ? entry.last_write_time() : fs::file_time_type(), isFile ? folder.Read(name) : ""};
        }
        files["."] = {fs::last_write_time(folder.Posix()), ""};
        return files;
    };
    const auto before = state();
    EXPECT_EQ(folder.Qel("verify ."), "0 8 files: 8 intact\n");
    EXPECT_TRUE(state() == before);
    EXPECT_EQ(folder.Finding("link.hcf"), "7 cut");  // named by the user
}
