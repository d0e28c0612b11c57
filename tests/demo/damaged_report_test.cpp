#include "verified.h"

namespace {

// As the program writes them down.
std::string SumsOf(const CString& path) {
    DWORD size = 0, crc = 0, sum = 0;
    EXPECT_EQ(
        Line({CQFile::GetFileSize(path, &size), CQFile::GetFileCRC(path, &crc, 0), CQFile::GetFileSum(path, &sum, 0)}),
        "1 1 1");
    CString text;
    text.Format("%u bytes, CRC %08X, sum %08X", size, crc, sum);
    return std::string(text);
}

}  // namespace

TEST_F(Verified, DamageOfReportsAndPicturesIsFound) {
    ExpectFound({
        {"report-1.job", FlipIn("</commands>"), "FAILED: report-1.job: Start-end tags mismatch"},
        {"report-1.job", FlipIn("width=\"4"), "FAILED: report-1.job: "},
        {"report-1.job", FlipIn("49.6"), "FAILED: report-1.job: shows \"Titration: ACIDITY 59.6 g/L\""},
        {"trace-1-2.job", nullptr, "FAILED: trace-1-2.job: "},
        {"curve.png", Cut(1000), "FAILED: curve.png: has 1000 bytes"},
        {"page-1.png", Flip(1000), "FAILED: page-1.png: has "},
        {"page-1.png", nullptr, "FAILED: page-1.png: file not found"},
        {"Titration reports.pdf", nullptr, "FAILED: Titration reports.pdf: file not found"},
    });
}

TEST_F(Verified, DamageOfTheListOfWhatWasMadeIsFound) {
    const auto ofCurve = [](std::string& ini) { return ini.find("\ncurve.png", ini.find("[samples]")); };
    ExpectFound({
        {"made.ini", FlipIn("page-1.png="), "FAILED: page-1.png: has no line in made.ini"},
        {"made.ini", nullptr, "FAILED: made.ini: "},
        {"made.ini", [](std::string& ini) { ini.resize(ini.size() - 3); }, "FAILED: made.ini: its last line is cut"},
        {"made.ini", Append("junk\r\n"), "\"junk\": is not valid here"},
        {"made.ini", [](std::string& ini) { ini += "page-1.png=" + ini.substr(ini.rfind('=') + 1); }, ": occurs twice"},
        {"made.ini", [](std::string& ini) { ini.resize(ini.find("[samples]")); },
         "FAILED: report-1.job: has no layout fingerprint in made.ini"},
        {"made.ini", [&](std::string& ini) { ini.insert(ini.find('=', ofCurve(ini)) + 1, "01234567 "); },
         "FAILED: curve.png: its layout fingerprint in made.ini is not that of report-2.job"},
        {"made.ini", [](std::string& ini) { ini = Replaced(ini, "\npage-1.png=", "\nx="); },
         "FAILED: x: file not found"},
    });
    std::filesystem::remove(m_folder.Posix("results/version-1/variables.qel"));
    ExpectFound({
        {"made.ini", [](std::string& ini) { ini = Replaced(ini, "\nversion-1/variables.qel=", "\nx="); },
         "FAILED: version-1/variables.qel: file not found"},
    });
}

// Its report has nothing of a trace either; only the trail still names the files here.
TEST_F(Verified, AVersionOfAnEarlierReleaseHasNoTrace) {
    std::string made;
    for (std::istringstream lines(m_folder.Read("results/made.ini")); std::getline(lines, made, '\n');) {
        const std::string name = made.substr(0, made.find('='));
        if (name.starts_with("trace-")) std::filesystem::remove(Path("results/") + name);
    }
    std::string ini = m_folder.Read("results/made.ini"), report = m_folder.Read("results/report.txt");
    for (std::size_t at; (at = ini.find("\ntrace-")) != std::string::npos;) ini.erase(at, ini.find('\n', at + 1) - at);
    for (const char* line : {"Rule ", "           ± ", "           passed "}) {
        const std::size_t at = report.find(line);
        report.erase(at, report.find('\n', at) + 1 - at);
    }
    const std::string before = SumsOf(m_folder.Path("results/report.txt"));
    m_folder.Write("results/report.txt", report);
    m_folder.Write("results/made.ini", Replaced(ini, before, SumsOf(m_folder.Path("results/report.txt"))));
    const std::string found = Verify().out;
    EXPECT_NE(found.find("ok      report.txt: the same when it is made again"), std::string::npos) << found;
    EXPECT_NE(found.find("FAILED: files in the trail: trace-1-1.job is missing"), std::string::npos) << found;
    EXPECT_EQ(found.find("trace-1.json:"), std::string::npos) << found;
}

TEST_F(Verified, DamageWithSumsThatFitIsFoundByMakingItAgain) {
    const std::string sums = m_folder.Read("results/made.ini");
    const auto fit = [&](const std::string& name) {
        const std::size_t at = sums.find("\n" + name + "=") + name.size() + 2;
        const std::string old = sums.substr(at, sums.find('\r', at) - at);
        m_folder.Write("results/made.ini",
                       Replaced(sums, name + "=" + old, name + "=" + SumsOf(m_folder.Path("results/" + name))));
    };
    ExpectFound(
        {
            {"curve-1.csv", Cut(0), "FAILED: version 1 in results.hcf: curve-1.csv: the file is empty"},
            {"method-1.xml", Append("more"),
             "FAILED: method-1.xml: has other bytes than its "},  // after a padded block
            {"curve-1.csv", FlipIn("9.31"), "FAILED: version 1 in results.hcf: its values are not those that "},
            {"trace-1.json", FlipIn("49.6\""),
             "FAILED: trace-1.json: rounded: \"59.6\" was recorded, \"49.6\" is computed"},
            {"trace-1.json",
             [](std::string& trace) { trace = Replaced(trace, "\"stated\": 0.002", "\"stated\": 0.001"); },
             "FAILED: trace-1.json: "},
            {"trace-1.json", FlipIn("method"), "FAILED: trace-1.json: is another computation than method-1.xml and"},
            {"report.txt", FlipIn("49.6 g"), "FAILED: report.txt: differs from what is made again"},
            {"report-1.job", FlipIn("width=\"4"), "FAILED: report-1.job: differs from what is made again"},
            {"trace-1-2.job", FlipIn("burette"), "FAILED: trace-1-2.job: differs from what is made again"},
            {"curve.png", Flip(1000), "FAILED: curve.png: differs from what is made again"},
            {"page-1.png", Flip(1000), "FAILED: page-1.png: differs from what is made again"},
            {"Titration reports.pdf", Flip(1000), "FAILED: Titration reports.pdf: differs from what is made again"},
        },
        fit);
}

TEST_F(Verified, PicturesWithOtherFontsAreComparedBySumsAlone) {
    const std::string sums = m_folder.Read("results/made.ini"), sample = sums.substr(sums.rfind('=') + 1, 35);
    m_folder.Write("results/made.ini", Replaced(sums, sample, "01234567 " + sample));
    // And after a run that was killed.
    m_folder.Write("results/titration.log",
                   m_folder.Read("results/titration.log") + "[2222/01/03 09:05:07],logged on\r\n");
    const Outcome run = Verify();
    EXPECT_TRUE(run.out.ends_with("\n36 checks, all right; 13 files were compared by checksums alone\n")) << run.out;
}
