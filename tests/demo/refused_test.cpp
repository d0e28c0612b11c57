#include "titration.h"

TEST_F(Titration, WrongDataAndSettingsAreRefusedInOneLine) {
    const std::string good = Curve(100);
    const Cases<std::string, std::string, const char*> cases = {
        {"\n \n", Settings("EP"), "data.csv: the file is empty; expected a table"},
        {"PK\x03\x04\x14", Settings("EP"),
         "data.csv: is a spreadsheet or other compressed file, not text; save its table"},
        {"volume,potential\nmL,mV\n", Settings("EP"), "data.csv: no numbers in the columns"},
        {"1,nan\n2,inf\n3,1e999\n", Settings("EP"), "data.csv: no numbers in the columns"},
        {"1,10\n2,90\n", Settings("EP"), "data.csv: an end point needs at least 5 points, there are 2"},
        {Curve(-100, 10), Settings("EP"), "is uncertain: noise of 5."},
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
         "[variables], [units], [uncertainties]"},
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
        {good, Settings("EP", "[uncertainties]\nBLANK = standard 1\n"),
         "settings.ini: line 11, [uncertainties] BLANK: there is no value with this name; expected one of [variables], "
         "or that of the end point, EP"},
        {good, Settings("EP", "[uncertainties]\nF = standard 1\nf = standard 1\n"), "[uncertainties] f: is in line 11"},
        {good, Replaced(Settings("F + 1 - F"), "F = 1", "F = 1e16"),
         "settings.ini: line 9, [result] formula: binary numbers give 0.000, and decimal ones 1.000"},
        {good, Settings("EP * F", "[uncertainties]\nEP = standard 1, burette\nF = triangular 1, burette\n"),
         "settings.ini: line 9, [result] formula: the result has no uncertainty: "},
        {good, Settings("EP", "[limits]\nlow = 2\nhigh = 1\n"),
         "settings.ini: line 11, [limits] low = 2: is above the high limit, 1; exchange the two"},
    };
    for (const auto& [data, settings, message] : cases) {
        const Outcome run = Run(data, settings);
        EXPECT_EQ(run.status, 1) << message;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find(message), std::string::npos) << message << "\nis not in\n" << run.err;
        EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
        EXPECT_TRUE(m_folder.Read("results/first/titration.log").ends_with(Replaced(run.err, "\n", "\r\n")));
    }
}

TEST_F(Titration, WrongArgumentsAreRefusedInOneLine) {
    m_folder.Write("data.csv", "");
    m_folder.Write("settings.ini", "");
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
