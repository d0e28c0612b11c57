#include "job_words.h"

#include "../support/print_system.h"

namespace {

// As pdftotext gives them: it takes a minus sign at the end of a line for a hyphen.
std::vector<std::string> WithoutSigns(std::vector<std::string> words) {
    std::erase(words, "-");
    return words;
}

}  // namespace

// What a curve is drawn over is hidden in every cell that is not in the corner.
TEST_F(Titration, EveryTextOfAReportIsPrintedInItsCell) {
    for (int i = 0; i < 4; ++i) EXPECT_EQ(Run(kVinegar).status, 0);
    const Outcome run = Run("--print 4 --out results");
    EXPECT_NE(run.out.find("Preview    page-6.png\nPrinted    4 reports on printer PDF into Titration reports.pdf\n"),
              std::string::npos)
        << run.err;
    const std::string cell = "pdftotext -enc UTF-8 -x 0 -W 595 -H 257 ",
                      pdf = " '" + Path("results/Titration reports.pdf'");
    for (const auto& [job, place] : Cases<const char*, const char*>{
             {"results/report-1.job", "-f 1 -l 1 -y 42"},
             {"results/report-2.job", "-f 1 -l 1 -y 299"},
             {"results/report-3.job", "-f 1 -l 1 -y 556"},
             {"results/trace-1-1.job", "-f 3 -l 3 -y 42"},
             {"results/trace-1-2.job", "-f 3 -l 3 -y 299"},
             {"results/trace-2-1.job", "-f 4 -l 4 -y 42"},
             {"results/trace-4-2.job", "-f 6 -l 6 -y 299"},
         }) {
        const CodePageScope page(qel::kCodePageUtf8);
        const std::vector<std::string> words = WithoutSigns(WordsOfJob(m_folder.Path(job)));
        EXPECT_GT(words.size(), 60u);
        EXPECT_EQ(WithoutSigns(Sorted(Words(OutputOf(cell + place + pdf + " -")))), words) << job;
    }
    const std::string last = m_folder.Read("results/report-4.job");
    const std::string made = last.substr(last.find("version 4, ") + 11, sizeof "2026-11-25 18:48" - 1);
    EXPECT_NE(
        OutputOf("pdfinfo -rawdates" + pdf).find(" D:" + Replaced(Replaced(Replaced(made, "-", ""), " ", ""), ":", "")),
        std::string::npos)
        << made;
    EXPECT_EQ(m_folder.Read("results/curve.png").substr(16, 8), std::string("\0\0\x09\xC8\0\0\x05\x71", 8))
        << "600 dpi";
    EXPECT_TRUE(m_folder.Read("results/page-2.png").starts_with("\x89PNG"));
    m_folder.Write("results/report-4.job", Replaced(m_folder.Read("results/report-4.job"), " y=\"3\"", " y=\"0\""));
    EXPECT_NE(Run("--print 1 --out results").err.find("report-4.job: has no place on a page"), std::string::npos);
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
