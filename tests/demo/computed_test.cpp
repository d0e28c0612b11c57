#include "titration.h"

TEST_F(Titration, TheAcidOfVinegarIsComputed) {
    const std::string arguments = kVinegar;
    const Outcome run = Run(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("* M = 60.05\n             DENSITY = 1.006\n           * EP = 16.5184\n"), std::string::npos)
        << run.out;
    const std::string report = m_folder.Read("results/report.txt");
    EXPECT_TRUE(
        report.ends_with("Result     ACIDITY = 49.6 g/L\n           ± 0.2 g/L (k = 2)\nLimits     from 45.0 to 55.0: "
                         "kept\n           passed by guarded acceptance, w = 1 U\n"))
        << report;
    EXPECT_NE(run.out.find(report), std::string::npos) << run.out;
    EXPECT_TRUE(m_folder.Read("results/result.csv").ends_with("\"ACIDITY\",\"49.6\",\"g/L\"\r\n"));
    EXPECT_TRUE(m_folder.Read("results/variables.qel").starts_with("\6QWCalc\0041.01"));
    EXPECT_NE(run.out.find("so the change is found\n"), std::string::npos) << run.out;
    EXPECT_NE(Run(arguments).out.find(", as version 2 of {"), std::string::npos);
    EXPECT_TRUE(m_folder.Read("results/titration.log").ends_with("],registered variables.qel as version 2\r\n"));
}

TEST_F(Titration, KeepsMethodAndEveryVersionWithItsOperator) {
    const std::string curve = Curve(100);
    EXPECT_EQ(Run(curve, Settings("EP*F")).status, 0);
    const std::string changed = Run(curve, Settings("EP*F*2", "[limits]\nhigh = 20\n")).out;
    EXPECT_NE(changed.find(": 2 changed\n           result/formula: EP*F -> EP*F*2\n"
                           "           limits/high: nothing -> 20\n"),
              std::string::npos)
        << changed;
    EXPECT_NE(changed.find("Limits     to 20.000: too high\n"), std::string::npos) << changed;
    const std::string method = m_folder.Read("results/first/method.xml");
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
             {"--out results/first --take-out 1 --password x", "nobody is logged on"},
             {asHelper + " --settings settings.ini", "helper may not change the method\n"}}) {
        const Outcome run = Run(arguments);
        EXPECT_NE((run.out + run.err).find(message), std::string::npos) << message << run.out << run.err;
        EXPECT_EQ(run.status, run.err.empty() ? 0 : 1);
    }
    EXPECT_NE(Run("--out results/first --take-out 1").out.find("R = 10."), std::string::npos);
}
