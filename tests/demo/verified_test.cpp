#include "verified.h"

TEST_F(Titration, VerifiesTheTableThatWasChosen) {
    const std::string table = "V;U\n" + Curve(100, 0, ';'), arguments = "--data two.csv --settings s.ini --out two";
    m_folder.Write("two.csv", table + "V;U\n" + Curve(-100, 2, ';'));
    m_folder.Write("s.ini", Settings("EP", "[curve]\nvolume = V\nsignal = U\n"));
    EXPECT_NE(Run(arguments).err.find("; choose one with --table\n"), std::string::npos);
    EXPECT_NE(Run(arguments + " --table 2").out.find("Curve      two.csv, table 2, lines "), std::string::npos);
    EXPECT_NE(Run("--verify --out two").out.find("checks, all right\n"), std::string::npos);
    m_folder.Write("two/titration.log", Replaced(m_folder.Read("two/titration.log"), "],table 2", "],table 1"));
    EXPECT_NE(Run("--verify --out two").out.find("FAILED: version 1 in results.hcf: "), std::string::npos);
}

// What is signed is found right afterwards, in whichever encoding the names were.
TEST_F(Titration, VerifiesWhatItReadInAnyEncoding) {
    const std::string curve = Curve(100, 0, ';'), both = "[curve]\nvolume = %s\nsignal = U\n";
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

TEST_F(Verified, EveryFileOfTheListIsChecked) {
    const Outcome good = Verify();
    EXPECT_TRUE(good.out.ends_with("\n36 checks, all right\n")) << good.out;
    EXPECT_EQ(good.status, 0);
    EXPECT_EQ(OutputOf(QELLIB10_QEL " verify '" + Path("results") + "' --head-file '" +
                       Path("results.installation/trail.head") + "' | grep -e '^1 cabinet' -e files"),
              "1 cabinet, 2 versions, 13 recorded files: 0 findings\n31 files: 16 intact, 15 unknown\n");
    std::istringstream list(Run("--list --out results").out);
    std::string line, listed;
    for (std::getline(list, line); std::getline(list, line);) {
        listed = line.substr(11, line.find("  ", 11) - 11);
        EXPECT_NE(good.out.find("ok      " + listed + ": "), std::string::npos) << listed << " is not checked";
    }
    EXPECT_EQ(listed, "titration.log");
}

TEST_F(Verified, WholeResultsStayAsTheyAreInAnyTimeZone) {
    const std::string users = m_folder.Read("results/users.db"), found = Verify().out;
    const EnvironmentScope zone("TZ", "JST-9"), date("SOURCE_DATE_EPOCH", "86400");
    EXPECT_EQ(Verify().out, found);
    EXPECT_EQ(m_folder.Read("results/users.db"), users);
}

TEST_F(Verified, FilesAreRightAfterAFailedLogon) {
    EXPECT_EQ(Run("--take-out 1 --out results --password wrong").status, 1);
    EXPECT_EQ(Run("--take-out 1 --out results").status, 0);
    EXPECT_EQ(Verify().status, 0);
}

TEST_F(Verified, FindingsThatCannotBeWrittenAreAFailure) {
    EXPECT_EQ(Run("--verify --out results >/dev/full 2>err #").err.find("standard output: "), 0u);
}
