#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <qellib10/qellib10.h>
#include <qellib10/store.h>

#include "../support/cases.h"
#include "../support/code_page_scope.h"
#include "../support/line.h"
#include "../support/output_of.h"
#include "../support/print_system.h"
#include "../support/temp_folder.h"
#include "../support/words.h"

namespace {

std::string ReadText(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

struct Outcome {
    int status;
    std::string out, err;
};

// Runs the example program in a folder of its own, which is its current one.
class Titration : public testing::Test {
protected:
    Outcome Run(const std::string& arguments) {
        const std::string command = "cd " + Path("") + " && " QELLIB10_TITRATION " " + arguments + " >out 2>err";
        const int status = std::system(command.c_str());
        return {WEXITSTATUS(status), ReadText(Path("out")), ReadText(Path("err"))};
    }
    Outcome Run(const std::string& data, const std::string& settings) {
        m_folder.Write("data.csv", data);
        m_folder.Write("settings.ini", settings);
        return Run("--data data.csv --settings settings.ini --out results/first");
    }
    std::string Path(const char* name) const { return m_folder.Posix(name).string(); }

    const TempFolder m_folder;
};

std::string Settings(const std::string& formula, const std::string& more = "") {
    return "[variables]\nF = 1\nZERO = 0\n[result]\nend_point = EP\nname = R\nunit = mL\ndigits = 3\nformula = " +
           formula + "\n" + more;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

constexpr const char* kVinegar = "--data " QELLIB10_SOURCE_DIR "/demo/data/vinegar.csv --settings " QELLIB10_SOURCE_DIR
                                 "/demo/data/vinegar.ini --out results";

using Points = std::vector<std::pair<double, double>>;

// A curve with its end point at 10.2, rising for a positive height, with uneven steps and noise that repeats itself.
Points Curve(double height, double noise = 0, int repeats = 1) {
    Points points;
    unsigned random = 1;
    for (double volume = 0; volume < 20; volume += std::abs(volume - 10) < 1.5 ? 0.15 : 0.8) {
        for (int i = 0; i < repeats; ++i) {
            random = random * 1664525u + 1013904223u;
            const double error = noise * ((random >> 16) / 32768.0 - 1);
            points.emplace_back(volume, 150 + height * std::tanh((volume - 10.2) / 0.4) + 0.5 * volume + error);
        }
    }
    return points;
}

Points Reversed(Points points) {
    std::ranges::reverse(points);
    return points;
}

std::string Table(const Points& points, const std::string& separator = ",", const std::string& decimal = ".",
                  const std::string& before = "") {
    std::ostringstream text;
    for (const auto& [volume, signal] : points) {
        std::ostringstream numbers;
        numbers << volume << '|' << signal;
        text << before << Replaced(Replaced(numbers.str(), ".", decimal), "|", separator) << '\n';
    }
    return text.str();
}

std::vector<std::string> Sorted(std::vector<std::string> words) {
    std::ranges::sort(words);
    return words;
}

std::vector<std::string> WordsOfJob(const CString& path) {
    CQelPrintJobQueueData job;
    EXPECT_EQ(job.LoadJobFile(path), 1);
    std::string texts;
    for (CQelPrintJobCommand command; job.GetBlock().GetNextCommand(command) != 0;) {
        if (command.GetKind() == CQelPrintJobCommand::kText) texts += std::string(command.GetText()) + " ";
    }
    return Sorted(Words(texts));
}

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

double ResultIn(const std::string& report) {
    double result = NAN;
    std::istringstream(report.substr(std::min(report.find("R = "), report.size() - 4) + 4)) >> result;
    return result;
}

}  // namespace

TEST_F(Titration, ComputesTheVinegar) {
    const std::string arguments = kVinegar;
    const Outcome run = Run(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("* M = 60.05\n             DENSITY = 1.006\n           * EP = 16.5184\n"), std::string::npos)
        << run.out;
    const std::string report = ReadText(Path("results/report.txt"));
    EXPECT_TRUE(report.ends_with("Result     ACIDITY = 49.6 g/L\nLimits     from 45.0 to 55.0: kept\n")) << report;
    EXPECT_NE(run.out.find(report), std::string::npos) << run.out;
    EXPECT_TRUE(ReadText(Path("results/result.csv")).ends_with("\"ACIDITY\",\"49.6\",\"g/L\"\r\n"));
    EXPECT_TRUE(ReadText(Path("results/variables.qel")).starts_with("\6QWCalc\0041.01"));
    EXPECT_NE(run.out.find("so the change is found\n"), std::string::npos) << run.out;
    EXPECT_NE(Run(arguments).out.find(", as version 2 of {"), std::string::npos);
    EXPECT_TRUE(ReadText(Path("results/titration.log")).ends_with("],registered variables.qel as version 2\r\n"));
}

TEST_F(Titration, KeepsMethodAndEveryVersionWithItsOperator) {
    const std::string curve = Table(Curve(100));
    EXPECT_EQ(Run(curve, Settings("EP*F")).status, 0);
    const std::string changed = Run(curve, Settings("EP*F*2", "[limits]\nhigh = 20\n")).out;
    EXPECT_NE(changed.find(": 2 changed\n           result/formula: EP*F -> EP*F*2\n"
                           "           limits/high: nothing -> 20\n"),
              std::string::npos)
        << changed;
    EXPECT_NE(changed.find("Limits     to 20.000: too high\n"), std::string::npos) << changed;
    const std::string method = ReadText(Path("results/first/method.xml"));
    EXPECT_TRUE(method.starts_with('\0'));
    EXPECT_EQ(method.find("EP*F"), std::string::npos);

    // As if the program had been killed while it wrote the second record.
    std::filesystem::resize_file(Path("results/first/renewals.qel"),
                                 std::filesystem::file_size(Path("results/first/renewals.qel")) - 1);
    qel::UserStore store(m_folder.Path("results/first/users.db"));
    store.Connect();
    CUserInfo helper;
    helper.SetUsername("helper");
    helper.SetPassword("secret");
    ASSERT_EQ(store.AddUser(helper), 1);
    const std::string asHelper = "--out results/first --user helper --password secret --data data.csv";
    const Outcome third = Run(asHelper + " --comment why");
    EXPECT_NE(third.out.find("User       helper\nMethod     method.xml, as it was\n"), std::string::npos) << third.err;
    EXPECT_NE(third.out.find("by helper: why\n"), std::string::npos) << third.out;
    m_folder.Write("settings.ini", Settings("EP"));

    for (const auto& [arguments, message] : Cases<std::string, const char*>{
             {"--out results/first --take-out 1", "by demo: from data.csv\n"},
             {"--out results/first --take-out 2", "by an unknown operator\n"},
             {"--out results/first --take-out 3", "by helper: why\n"},
             {"--out results/first --take-out 4", "there is no version 4, the latest is 3\n"},
             {"--out results/first --take-out 0", "\"0\" is not a version"},
             {"--out results/first --take-out 1 --password x", "\"demo\" is not logged on"},
             {asHelper + " --settings settings.ini", "helper may not change the method\n"}}) {
        const Outcome run = Run(arguments);
        EXPECT_NE((run.out + run.err).find(message), std::string::npos) << message << run.out << run.err;
        EXPECT_EQ(run.status, run.err.empty() ? 0 : 1);
    }
    EXPECT_NEAR(ResultIn(Run("--out results/first --take-out 1").out), 10.2, 0.02);
}

// What is drawn behind a curve is hidden in every cell that does not stand in the corner.
TEST_F(Titration, EveryTextOfAReportIsPrintedInItsCell) {
    for (int i = 0; i < 4; ++i) EXPECT_EQ(Run(kVinegar).status, 0);
    const Outcome run = Run("--print 4 --out results");
    EXPECT_NE(run.out.find("Preview    page-2.png\nPrinted    4 reports on printer PDF into Titration reports.pdf\n"),
              std::string::npos)
        << run.err;
    const std::string cell = "pdftotext -l 1 -x 0 -W 595 -H 257 -y ",
                      pdf = " '" + Path("results/Titration reports.pdf'");
    for (const auto& [job, top] : Cases<const char*, const char*>{
             {"results/report-1.job", "42"},
             {"results/report-2.job", "299"},
             {"results/report-3.job", "556"},
         }) {
        const std::vector<std::string> words = WordsOfJob(m_folder.Path(job));
        EXPECT_GT(words.size(), 60u);
        EXPECT_EQ(Sorted(Words(OutputOf(cell + top + pdf + " -"))), words) << job;
    }
    const std::string last = ReadText(Path("results/report-4.job"));
    const std::string made = last.substr(last.find("version 4, ") + 11, sizeof "2026-11-25 18:48" - 1);
    EXPECT_NE(
        OutputOf("pdfinfo -rawdates" + pdf).find(" D:" + Replaced(Replaced(Replaced(made, "-", ""), " ", ""), ":", "")),
        std::string::npos)
        << made;
    EXPECT_EQ(ReadText(Path("results/curve.png")).substr(16, 8), std::string("\0\0\x09\xC8\0\0\x05\x71", 8))
        << "600 dpi";
    EXPECT_TRUE(ReadText(Path("results/page-2.png")).starts_with("\x89PNG"));
    m_folder.Write("results/report-4.job", Replaced(ReadText(Path("results/report-4.job")), " y=\"3\"", " y=\"0\""));
    EXPECT_NE(Run("--print 1 --out results").err.find("report-4.job: has no place on a page"), std::string::npos);
}

// Each damage is found, and named with its file.
TEST_F(Titration, VerifiesAllFilesAgain) {
    EXPECT_EQ(Run(kVinegar).status, 0);
    EXPECT_EQ(Run(kVinegar).status, 0);
    EXPECT_EQ(Run("--take-out 1 --out results").status, 0);
    EXPECT_EQ(Run("--print 2 --out results").status, 0);
    const Outcome good = Run("--verify --out results");
    EXPECT_TRUE(good.out.ends_with("\n21 checks, all right\n")) << good.out;
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(OutputOf(QELLIB10_QEL " verify '" + Path("results") + "'; echo $?"),
              "19 files: 9 intact, 10 unknown\n0\n");
    std::istringstream list(Run("--list --out results").out);
    std::string line, listed;
    for (std::getline(list, line); std::getline(list, line);) {
        listed = line.substr(11, line.find("  ", 11) - 11);
        EXPECT_NE(good.out.find("ok      " + listed + ": "), std::string::npos) << listed << " is not checked";
    }
    EXPECT_EQ(listed, "titration.log");
    const std::string users = m_folder.Read("results/users.db");

    const auto flip = [](std::size_t at) { return [at](std::string& bytes) { bytes.at(at) ^= 1; }; };
    const auto flipIn = [](const char* text) {
        return [text](std::string& bytes) { bytes.at(bytes.find(text)) ^= 1; };
    };
    const auto cut = [](std::size_t left) { return [left](std::string& bytes) { bytes.resize(left); }; };
    using Damage = std::function<void(std::string&)>;
    for (const auto& [name, damage, finding] : Cases<const char*, Damage, const char*>{
             {"method.xml", flip(20), "FAILED: method.xml: "},
             {"variables.qel", flip(40), "FAILED: variables.qel: not sealed, or changed since"},
             {"result.csv", flipIn("49.6"), "FAILED: result.csv: is not the table of that result"},
             {"report.txt", flipIn("37 points"), "FAILED: report.txt: has "},
             {"results.hcf", flip(30), "FAILED: results.hcf: is missing or in use, or its header is damaged"},
             {"results.hcf", [](std::string& cabinet) { cabinet += "x"; },
              "FAILED: results.hcf: has 1 byte after the last version"},
             {"results.hcf", flip(100), "FAILED: version 1 in results.hcf: its data do not fit its header"},
             {"renewals.qel", flip(130), "FAILED: renewals.qel: has "},
             {"renewals.qel", flipIn("demo"), "FAILED: users.db: has no user \"eemo\", who registered a version"},
             {"users.db", flip(20), "FAILED: users.db: "},
             {"users.db", flip(24), "FAILED: users.db: has 2"},  // the number of its changes
             {"users.db", nullptr, "FAILED: users.db: unable to open"},
             {"made.ini", flipIn("page-1.png="), "FAILED: page-1.png: has no line in made.ini"},
             {"made.ini", nullptr, "FAILED: made.ini: "},
             {"made.ini", [](std::string& ini) { ini.resize(ini.size() - 3); },
              "FAILED: made.ini: its last line is cut"},
             {"made.ini", [](std::string& ini) { ini += "junk\r\n"; }, "\"junk\": is not valid here"},
             {"made.ini", [](std::string& ini) { ini += "page-1.png=" + ini.substr(ini.rfind('=') + 1); },
              ": occurs twice"},
             {"made.ini", [](std::string& ini) { ini.resize(ini.find("[samples]")); },
              "FAILED: report-1.job: has no layout fingerprint in made.ini"},
             {"made.ini",
              [](std::string& ini) {
                  ini.insert(ini.find('=', ini.find("\ncurve.png", ini.find("[s"))) + 1, "01234567 ");
              },
              "FAILED: curve.png: its layout fingerprint in made.ini is not that of report-2.job"},
             {"method-1.xml", nullptr, "FAILED: version 1 in results.hcf: method-1.xml: file not found"},
             {"curve-1.csv", flip(300), "FAILED: curve-1.csv: has "},
             {"version-1/variables.qel", flip(100), "FAILED: version-1/variables.qel: has "},
             {"version-1/variables.qel", nullptr, "FAILED: version-1/variables.qel: is missing"},
             {"report-1.job", flipIn("</commands>"), "FAILED: report-1.job: is missing, or no job file"},
             {"report-1.job", flipIn("width=\"4"), "FAILED: report-1.job: "},
             {"report-1.job", flipIn("49.6"), "FAILED: report-1.job: shows \"Titration: ACIDITY 59.6 g/L\""},
             {"curve.png", cut(1000), "FAILED: curve.png: has 1000 bytes"},
             {"page-1.png", flip(1000), "FAILED: page-1.png: has "},
             {"page-1.png", nullptr, "FAILED: page-1.png: is missing"},
             {"Titration reports.pdf", nullptr, "FAILED: Titration reports.pdf: is missing"},
             {"titration.log", flipIn("49.6"),
              "FAILED: version 1 in results.hcf: has ACIDITY = 49.6 g/L, and titration.log ACIDITY = 59.6 g/L"},
             {"titration.log", cut(200), "FAILED: titration.log: its last line is cut"},
             {"titration.log", [](std::string& log) { log.resize(log.rfind('[', log.rfind("registered"))); },
              "FAILED: titration.log: mentions 1 version, and there are 2"},
             {"titration.log", flipIn("2"), "is earlier than the one before"},
             {"titration.log", [](std::string& log) { --log.at(1); }, "FAILED: titration.log: starts with "},
             {"titration.log", [](std::string& log) { log.erase(0, log.find('[', 1)); },
              "FAILED: titration.log: starts with "},
             {"titration.log", flipIn("previewed"), "FAILED: page-1.png: titration.log does not mention it"},
             {"titration.log", flipIn("printed"),
              "FAILED: Titration reports.pdf: titration.log does not mention it"}}) {
        const std::string file = std::string("results/") + name, before = m_folder.Read(file);
        std::string bytes = before;
        if (damage) damage(bytes);
        damage ? m_folder.Write(file, bytes) : static_cast<void>(std::filesystem::remove(m_folder.Posix(file)));
        const Outcome run = Run("--verify --out results");
        EXPECT_NE(run.out.find(finding), std::string::npos) << finding << "\n" << run.out;
        EXPECT_EQ(run.status, 1);
        m_folder.Write(file, before);
    }

    // With sums that fit, what is made again tells.
    const std::string sums = m_folder.Read("results/made.ini");
    for (const auto& [name, damage, finding] : Cases<std::string, Damage, std::string>{
             {"curve-1.csv", cut(0), "version 1 in results.hcf: curve-1.csv: the file is empty"},
             {"method-1.xml", [](std::string& method) { method += "more"; }, "method-1.xml: has other bytes than its "},
             {"curve-1.csv", flipIn("9.31"), "version 1 in results.hcf: its values are not those that "},
             {"report.txt", flipIn("49.6 g"), "report.txt: differs from what is made again"},
             {"report-1.job", flipIn("width=\"4"), "report-1.job: differs from what is made again"},
             {"curve.png", flip(1000), "curve.png: differs from what is made again"},
             {"page-1.png", flip(1000), "page-1.png: differs from what is made again"},
             {"Titration reports.pdf", flip(1000), "Titration reports.pdf: differs from what is made again"}}) {
        const std::string file = "results/" + name, before = m_folder.Read(file), old = SumsOf(m_folder.Path(file));
        std::string bytes = before;
        damage(bytes);
        m_folder.Write(file, bytes);
        m_folder.Write("results/made.ini", Replaced(sums, name + "=" + old, name + "=" + SumsOf(m_folder.Path(file))));
        const Outcome run = Run("--verify --out results");
        EXPECT_NE(run.out.find("FAILED: " + finding), std::string::npos) << finding << "\n" << run.out;
        m_folder.Write(file, before);
    }
    m_folder.Write("results/made.ini", Replaced(sums, "\npage-1.png=", "\nx="));
    EXPECT_NE(Run("--verify --out results").out.find("FAILED: x: is missing"), std::string::npos);
    m_folder.Write("results/made.ini", sums);
    {
        const EnvironmentScope zone("TZ", "JST-9"), date("SOURCE_DATE_EPOCH", "86400");
        EXPECT_EQ(Run("--verify --out results").out, good.out) << "it changes nothing, and depends on no time zone";
    }
    EXPECT_EQ(m_folder.Read("results/users.db"), users);
    std::filesystem::remove(m_folder.Posix("results/version-1/variables.qel"));
    m_folder.Write("results/made.ini", Replaced(sums, "\nversion-1/variables.qel=", "\nx="));
    EXPECT_NE(Run("--verify --out results").out.find("FAILED: version-1/variables.qel: is missing"), std::string::npos);
    m_folder.Write("results/made.ini", sums);
    EXPECT_EQ(Run("--take-out 1 --out results --password wrong").status, 1);
    EXPECT_EQ(Run("--take-out 1 --out results").status, 0);
    EXPECT_EQ(Run("--verify --out results").status, 0);
    EXPECT_EQ(Run("--verify --out results >/dev/full 2>err #").err.find("standard output: "), 0u);

    // On a machine with other fonts, and after a run that was killed.
    const std::string sample = sums.substr(sums.rfind('=') + 1, 35);
    m_folder.Write("results/made.ini", Replaced(m_folder.Read("results/made.ini"), sample, "01234567 " + sample));
    m_folder.Write("results/titration.log",
                   m_folder.Read("results/titration.log") + "[2222/01/03 09:05:07],logged on\r\n");
    const Outcome other = Run("--verify --out results");
    EXPECT_TRUE(other.out.ends_with("\n21 checks, all right; 5 files were compared by checksums alone\n")) << other.out;
}

TEST_F(Titration, PrintsOnTheNamedPrinter) {
    if (!PrintSystem::IsInstalled()) GTEST_SKIP() << PrintSystem::kNeeds;
    const PrintSystem system;
    ASSERT_TRUE(system);
    const std::string onPrinter = std::string(kVinegar) + " --printer ";
    EXPECT_EQ(Run(onPrinter + "lab").status, 0);
    EXPECT_EQ(Run("--print 1 --out results").err, "");
    EXPECT_NE(OutputOf("pdftotext '" + system.Printed(1) + "' -").find("Titration: ACIDITY 49.6 g/L"),
              std::string::npos);
    EXPECT_EQ(Run(onPrinter + "PDF").status, 0);
    for (const auto& [arguments, message] : Cases<std::string, const char*>{
             {onPrinter + "none", "the printer \"none\": no such printer"},
             {"--print 2 --out results", "report-2.job: is for another printer than the first one"},
             {"--print 3 --out results", "there are no 3 reports, but 2"},
             {"--print x --out results", "\"x\" is not a number of reports"},
             {"--print 1 --take-out 1 --out results", "usage: "}}) {
        const Outcome run = Run(arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find(message), std::string::npos) << run.err;
    }
}

TEST_F(Titration, ReadsWhatInstrumentsWrite) {
    const std::string rising = Table(Curve(100));
    struct Case {
        const char* name;
        std::string data;
        double tolerance = 0.02;
        const char* columns = "";
    };
    for (const Case& c : {
             Case{"rising", rising},
             Case{"falling", Table(Curve(-100))},
             Case{"noise", Table(Curve(100, 2)), 0.05},
             Case{"more noise", Table(Curve(-100, 1.5)), 0.075},
             Case{"repeated volumes", Table(Curve(100, 2, 5)), 0.05},
             Case{"last volume first", Table(Reversed(Curve(100)))},
             Case{"a stray reading", Replaced(rising, "\n3.2,", "\n3.2,9")},
             Case{"a missing reading", Replaced(rising, "\n3.2,", "\n3.2,---.-\n3.3,")},
             Case{"tabs", Table(Curve(100), "\t")},
             Case{"decimal comma", Table(Curve(100), ";", ",")},
             Case{"decimal comma in quotation marks", Table(Curve(100), "\",\"", ",", "\"\",\"") + "\"", 0.02,
                  "[curve]\nvolume = 2\nsignal = 3\n"},
             Case{"order mark, CR LF, blank lines", "\xEF\xBB\xBF" + Replaced(rising, "\n", "\r\n") + "\r\n\r\n"},
             Case{"a short table above", "1,2\n3,4\n\n" + rising},
             Case{"lines above and below",
                  "U;3\n1;2\n;V;U\n;mL;mV\n" + Table(Curve(100), ";", ",", "7;") + "\nmean;-;-\n", 0.02,
                  "[curve]\nvolume = v\nsignal = U\n"},
         }) {
        SCOPED_TRACE(c.name);
        const Outcome run = Run(c.data, Settings("EP*F", c.columns));
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NEAR(ResultIn(run.out), 10.2, c.tolerance) << run.out;
    }
}

TEST_F(Titration, VerifiesTheTableThatWasChosen) {
    const std::string table = "V;U\n" + Table(Curve(100), ";"), arguments = "--data two.csv --settings s.ini --out two";
    m_folder.Write("two.csv", table + "V;U\n" + Table(Curve(-100, 2), ";"));
    m_folder.Write("s.ini", Settings("EP", "[curve]\nvolume = V\nsignal = U\n"));
    EXPECT_NE(Run(arguments).err.find("; choose one with --table\n"), std::string::npos);
    EXPECT_NE(Run(arguments + " --table 2").out.find("Curve      two.csv, table 2, lines "), std::string::npos);
    EXPECT_NE(Run("--verify --out two").out.find("checks, all right\n"), std::string::npos);
    m_folder.Write("two/titration.log", Replaced(m_folder.Read("two/titration.log"), "],table 2", "],table 1"));
    EXPECT_NE(Run("--verify --out two").out.find("FAILED: version 1 in results.hcf: "), std::string::npos);
}

// What is signed is found right afterwards, in whichever encoding the names were.
TEST_F(Titration, VerifiesWhatItReadInAnyEncoding) {
    const std::string curve = Table(Curve(100), ";"), both = "[curve]\nvolume = %s\nsignal = U\n";
    const std::string ascii = "[curve]\nvolume = 1\nsignal = 2\n", utf8 = "\u4F53\u7A4D\u00B5";
    const auto utf16 = [](const std::string& text) {
        const CodePageScope page(qel::kCodePageUtf8);
        std::string bytes = "\xFF\xFE";
        for (const char16_t unit : qel::ToUtf16(text)) bytes += {static_cast<char>(unit), static_cast<char>(unit >> 8)};
        return bytes;
    };
    const std::string settings = Settings("EP", Replaced(both, "%s", utf8)), table = utf8 + ";U\n" + curve;
    const Cases<const char*, std::string, std::string, int> cases = {
        {"UTF-8", table, settings, 0},
        {"marked UTF-8", "\xEF\xBB\xBF" + table, "\xEF\xBB\xBF" + settings, 0},
        {"UTF-16", utf16(table), utf16(settings), 0},
        {"Latin-1", "\xB5;U\n" + curve, Settings("EP", Replaced(both, "%s", "\xB5")), 1},
        {"932", "\x91\xCC\x90\xCF;U\n" + curve, Settings("EP", Replaced(both, "%s", "\x91\xCC\x90\xCF")), 1},
        {"data in Latin-1", "\xB5;U\n" + curve, Settings("EP", ascii), 0},
        {"comments in 932", "\x91\xCC;U\n" + curve, "; \x91\xCC\n" + Settings("EP", ascii), 0},
    };
    for (const auto& [name, data, ini, status] : cases) {
        SCOPED_TRACE(name);
        std::filesystem::remove_all(m_folder.Posix("results"));
        const Outcome run = Run(data, ini);
        EXPECT_EQ(run.status, status) << run.err;
        if (status != 0) continue;
        EXPECT_NE(Run("--verify --out results/first").out.find(", all right\n"), std::string::npos);
    }
}

TEST_F(Titration, RefusesWrongInputInOneLine) {
    const std::string good = Table(Curve(100));
    const Cases<std::string, std::string, const char*> cases = {
        {"\n \n", Settings("EP"), "data.csv: the file is empty; expected a table"},
        {"volume,potential\nmL,mV\n", Settings("EP"), "data.csv: no numbers in the columns"},
        {"1,nan\n2,inf\n3,1e999\n", Settings("EP"), "data.csv: no numbers in the columns"},
        {"1,10\n2,90\n", Settings("EP"), "data.csv: an end point needs at least 5 points, there are 2"},
        {Table(Curve(-100, 10)), Settings("EP"), "is uncertain: noise of 5."},
        {"1,1\n2,2\n3,3\n4,4\n5,5\n6,6\n", Settings("EP"), "data.csv: no end point"},
        {std::string("\0001,7\n", 5), Settings("EP"), "data.csv: byte 1 is zero, so it is not text, or is UTF-16 in"},
        {good, Settings("EP", "[curve]\nsignal = pH\n"), "data.csv: no line has the columns \"1\" and \"pH\""},
        {good, Settings("EP", "[curve]\nsignal = 3\n"), "data.csv: no numbers in the columns \"1\" and \"3\""},
        {good, Settings("EP", "[curve]\nsignal = 1\n"), "data.csv: volume and signal are the same column"},
        {good, Settings("(EP - BLANK) * F"),
         "settings.ini: line 9, [result] formula: the formula names \"BLANK\", which has no value; add it"},
        {good, Settings("EP / ZERO"), "the formula divides by zero at byte 4: \"/ ZERO\"; see the values"},
        {good, Replaced(Settings("EP"), "ZERO", "ep"),
         "settings.ini: line 5, [result] end_point: there are two variables \"EP\"; rename"},
        {good, Replaced(Settings("EP"), "ZERO", "f"),
         "settings.ini: line 3, [variables] f: is in line 2 already; remove one of them"},
        {good, Replaced(Settings("EP"), "ZERO", "2F"), "settings.ini: line 3, [variables] 2F: \"2F\" cannot be a name"},
        {good, Settings("EP", "color = red\n"),
         "settings.ini: line 10, [result] color: has no meaning there; expected one of end_point, name,"},
        {good, Settings("EP", "\x1B[31m\xC2\x9B\xFF\u00B5 = red\n"),
         "settings.ini: line 10, [result] ?[31m???\u00B5: has no meaning there"},
        {good, Settings("\xC4"),
         "settings.ini: line 9, [result] formula = ?: is not in UTF-8; save the settings as UTF-8"},
        {good, Replaced(Settings("EP"), "ZERO", "\x97\xDA"),
         "settings.ini: line 3, [variables] ?? = 0: is not in UTF-8"},
        {good, Settings("EP", "[limit]\nlow = 1\n"),
         "settings.ini: line 10, [limit]: is in no known section; expected one of [curve], [result], [limits], "
         "[variables]"},
        {good, Settings("EP", "[variables]\n"),
         "settings.ini: line 10, [variables]: is in line 1 already; put all of it"},
        {good, Settings("EP", "color\n"), "settings.ini: line 10, [result] color: expected name = value; "},
        {good, Replaced(Settings("EP"), "= 1", "= one"),
         "settings.ini: line 2, [variables] F: \"one\" is not a number; expected one like 1.25"},
        {good, Replaced(Settings("EP"), "= 3", "= 99"),
         "settings.ini: line 8, [result] digits: \"99\" is not a whole number; expected one from 0 to 12"},
        {good, Replaced(Settings("EP"), "= mL", "= furlong"),
         "settings.ini: line 7, [result] unit: there is no unit \"furlong\"; expected"},
        {good, "[result]\n", "settings.ini: [result] end_point is missing; add a line \"end_point = ...\" to [result]"},
        {good, Settings("EP", "[limits]\nlow = 2\nhigh = 1\n"),
         "settings.ini: line 11, [limits] low = 2: is above the high limit, 1; exchange the two"},
    };
    for (const auto& [data, settings, message] : cases) {
        const Outcome run = Run(data, settings);
        EXPECT_EQ(run.status, 1) << message;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find(message), std::string::npos) << message << "\nis not in\n" << run.err;
        EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
        EXPECT_TRUE(ReadText(Path("results/first/titration.log")).ends_with(Replaced(run.err, "\n", "\r\n")));
    }
    const std::string withSettings = " --settings settings.ini --out x";
    for (const auto& [arguments, message] : Cases<std::string, const char*>{
             {"", "usage: "},
             {"--data", "usage: "},
             {"--data a --settings b", "usage: "},
             {"--data data.csv --table 0" + withSettings, "\"0\" is not a table: they count from 1"},
             {"--list --table 1 --out x", "usage: "},
             {"--data none --settings none --out x", "none: there is no such file"},
             {"--data none" + withSettings, "none: there is no such file"},
             {"--data ." + withSettings, ".: is a folder, name a file in it"},
             {"--data /dev/zero" + withSettings, "/dev/zero: is a pipe or device, not an ordinary file"},
             {"--data L\xE4" + withSettings,
              "L?: the file's name is not in UTF-8, as names are here; rename the file"}}) {
        const Outcome run = Run(arguments);
        EXPECT_EQ(run.status, 1) << arguments;
        EXPECT_EQ(run.err.substr(0, std::string(message).size()), message);
        EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
    }
}
