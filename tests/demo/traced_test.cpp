#include "job_words.h"

TEST_F(Titration, UncertaintiesOfAMethodAreInTheTrace) {
    for (const auto& [text, expected] : Cases<std::string, const char*>{
             {"standard 0.3", "± 0.60 mL (k = 2)"},
             {"rectangular 0.3", "± 0.35 mL (k = 2)"},
             {"triangular 0,3, pipette", "± 0.24 mL (k = 2)"},
             {"certificate 0.3 k 3", "± 0.20 mL (k = 2)"},
             {"readings 0.3 n 4", "± 0.50 mL (k = 3.307)"},
             {"standard 0.3, burette ;  standard 0.4", "± 1.0 mL (k = 2)"},
             {"curve", "± 0.027 mL (k = 2.284)"},
             {"standard 0.3; curve", "± 0.60 mL (k = 2)"},
         }) {
        std::filesystem::remove_all(m_folder.Posix("results"));
        const Outcome run = Run(Curve(100), Settings("EP", "[uncertainties]\nep = " + text + "\n"));
        EXPECT_NE(run.out.find(expected), std::string::npos) << text << run.out << run.err;
        EXPECT_EQ(Run("--verify --out results/first").status, 0) << "the method is read again";
    }
    for (const char* text : {"", "0.3", "normal 0.3", "standard", "standard x", "standard -1", "standard 1 mL",
                             "certificate 0.3", "certificate 0.3 k 0", "readings 0.3 n 1", "readings 0.3 k 2",
                             "standard 0.3,burette", "curve; curve", "standard 1; "}) {
        const Outcome run = Run(Curve(100), Settings("EP", std::string("[uncertainties]\nEP = ") + text + "\n"));
        const bool isRight = std::string(text) == "standard 1; ";
        EXPECT_EQ(run.err.find("settings.ini: line 11, [uncertainties] EP: \"") == 0, !isRight) << text << run.err;
    }
}

// A binary 2.3494999 counts as 2.3495; nobody who rounds it by hand comes to 2.350.
TEST_F(Titration, AResultThatIsRoundedOtherwiseByHandSaysSo) {
    const Outcome run = Run(Curve(100), Replaced(Settings("F"), "F = 1", "F = 2.3494999"));
    EXPECT_NE(run.out.find("Result     R = 2.350 mL\n           rounded in binary numbers; in decimal ones it is "
                           "2.349\n"),
              std::string::npos)
        << run.out << run.err;
    EXPECT_NE(m_folder.Read("results/first/trace-1.json").find("\"rounded\": \"2.349\""), std::string::npos);
    EXPECT_EQ(Run("--verify --out results/first").status, 0);
}

TEST_F(Titration, ALongTraceIsPrintedInFull) {
    std::string uncertainties = "[uncertainties]\n", formula = "EP";
    for (const std::string name : {"EP", "F", "ZERO"}) {
        uncertainties += name + " = standard 0.1";
        for (int i = 1; i < 20; ++i) uncertainties += "; rectangular 0." + std::to_string(i) + ", a source of " + name;
        uncertainties += "\n";
        formula += " + F * ZERO * " + name;
    }
    EXPECT_EQ(Run(Curve(100), Settings(formula, uncertainties)).err, "");
    const std::string folder = Path("results/first");
    const std::vector<std::string> all =
        Sorted(Words(OutputOf(QELLIB10_QEL " calc --steps --trace '" + folder + "/trace-1.json'")));
    std::vector<std::string> printed, missing;
    const CodePageScope page(qel::kCodePageUtf8);
    int cells = 0;
    for (std::string job; std::filesystem::exists(folder + (job = "/trace-1-" + std::to_string(cells + 1) + ".job"));
         ++cells) {
        const std::vector<std::string> words = WordsOfJob(m_folder.Path("results/first" + job));
        printed.insert(printed.end(), words.begin(), words.end());
    }
    EXPECT_GT(cells, 4);
    std::ranges::set_difference(all, Sorted(printed), std::back_inserter(missing));
    EXPECT_EQ(Line({missing.size(), missing.at(0), missing.at(1)}), "2 Remark Unit") << "of columns without texts";
}

// A factor of 1000 that only the units show, and a decision that needs an uncertainty.
TEST_F(Titration, UnitsAndTheRuleOfAMethodAreInTheTrace) {
    const std::string units = "[units]\nEP = mL\nF = ", rule = "[uncertainties]\nEP = standard 0.1\n[limits]\nhigh = ";
    const std::string plain = Settings("EP * F"), trace = "results/first/trace-1.json";
    EXPECT_EQ(Run(Curve(100), plain + units + "mL/mL\n" + rule + "10.3\nrule = guarded acceptance, w = 1 U\n").err, "");
    EXPECT_NE(m_folder.Read(trace).find("\"guarded acceptance, w = 1 U\""), std::string::npos);
    EXPECT_NE(m_folder.Read("results/first/report.txt").find("not passed by guarded acceptance"), std::string::npos);
    for (const auto& [more, message] : Cases<std::string, const char*>{
             {units + "L/mL\n", "or it does not have a factor that [units] need"},
             {units + "g\n", "mL*g is not converted to mL"},
             {units + "mLL\n", "[units] F: \"mLL\" is not a unit that is known; expected one like mL"},
             {"[limits]\nhigh = 9\nrule = fair\n", "[limits] rule: \"fair\" is not a rule of decision"},
             {"[limits]\nhigh = 9\nrule = guarded acceptance, w = 1 U\n",
              "a guard band needs the uncertainty of the result"},
         }) {
        const Outcome run = Run(Curve(100), plain + more);
        EXPECT_NE(run.err.find(message), std::string::npos) << more << run.err;
    }
}
