#include "demo/curve/csv_table.h"

#include <cmath>
#include <sstream>

#include "../support/test.h"
#include "demo/support/failure.h"

namespace {

// "1-3/2: 0 0.5": lines, how many of them have no point, and the volumes; or why there is no curve.
std::string Read(const std::string& text, const std::string& volume = "1", const std::string& signal = "2",
                 int table = 0) {
    try {
        const titration::Curve curve = titration::ReadCurve(text, volume, signal, table);
        std::ostringstream shown;
        shown << curve.firstLine << '-' << curve.lastLine << '/' << curve.linesWithoutPoint << ':';
        for (const double value : curve.volume) shown << ' ' << value;
        return shown.str();
    } catch (const titration::Failure& failure) {
        return failure.what();
    }
}

const std::string kFive = "1,7\n2,7\n3,8\n4,9\n5,9\n";

}  // namespace

TEST(CurveTable, IsReadToItsEnd) {
    for (const auto& [text, expected] :
         Cases<std::string, const char*>{{"1,7\n\n2,7\n# refilled\n3,8\n", "1-5/0: 1 2 3"},
                                         {"1,7\nburette refilled\n2,7\n", "1-3/0: 1 2"},
                                         {"1,7\n#2,7\n3,8\n", "1-3/0: 1 3"},
                                         {"3,7\n1,7\n2,8\n", "1-3/0: 3 1 2"},
                                         {"1,7\n2,---\n3,8\n", "1-3/1: 1 3"},
                                         {"1,7\n2,8\nTemperature,25\n", "1-2/0: 1 2"},
                                         {"1,7\n2,8\n3,\n", "1-2/0: 1 2"},
                                         {"1,\u22127\n2,\u22128\n", "1-2/0: 1 2"},
                                         {"Column 1,Column 2\n" + kFive, "2-6/0: 1 2 3 4 5"},
                                         {"2026-01-05 12:30:00,5\n2026-01-05,12:30\n" + kFive, "3-7/0: 1 2 3 4 5"},
                                         {"1,---\n2,OVL\n3,8\n4,9\n", "3-4/2: 3 4"},
                                         {"7,Method\nV,U\n3,8\n4,9\n", "3-4/0: 3 4"},
                                         {"1 7\n2   8\n", "1-2/0: 1 2"},
                                         {"1,5 7,5\n2,5 8,5\n", "1-2/0: 1.5 2.5"},
                                         {"| mL | pH |\n|----|----|\n| 1.5 | 7 |\n| 2 | 8 |\n", "3-4/0: 1.5 2"},
                                         {"0,5 215\n1,0 230\n", "1-2/0: 0.5 1"},
                                         {"0,1 | 7,2\n0,2 | 7,3\n", "1-2/0: 0.1 0.2"},
                                         {"1 000,7.1\n1 010,8.1\n", "1-2/0: 1000 1010"},
                                         {"0,500;215\n1,000;216\n", "1-2/0: 0.5 1"},
                                         {"1,000;7,1\n2;7,2\n", "1-2/0: 1 2"},
                                         {"1.000;215\n1.125;216\n", "1-2/0: 1 1.125"},
                                         {"1 g;7\n2 g;8\n3 g;8\n4 g;9\n4 g;9\n5 g;9\n", "1-6/0: 1 2 3 4 4 5"},
                                         {"1.5 mL;7\n2.5 mL;8\n", "1-2/0: 1.5 2.5"},
                                         {"1\t7\n2\t8\n", "1-2/0: 1 2"},
                                         {"1,5;7,5\n2,5;8,5\n", "1-2/0: 1.5 2.5"},
                                         {"\"1,5\",\"7\"\n\"2,5\",\"8\"\n", "1-2/0: 1.5 2.5"},
                                         {"\xEF\xBB\xBF"
                                          "1,7\r\n2,8\r\n\r\n",
                                          "1-2/0: 1 2"}}) {
        EXPECT_EQ(Read(text), expected) << text;
    }
}

// What could be more of the curve is not left out in silence.
TEST(CurveTable, IsRefusedWhereMoreCouldBeOfIt) {
    const std::string two = "V,U\n" + kFive + "V,U\n6,9\n7,9\n", turned = "V,U\n1,7\n2,8\nU,V\n7,3\n";
    const std::string spoilt = kFive + "6,9.1*\n7,9.2*\n";
    for (const auto& [text, table, expected] : Cases<std::string, int, const char*>{
             {two, 0,
              "there are 2 tables with numbers in the columns \"v\" and \"u\": 1 in lines 2 to 6 with 5 points, 2 "
              "in lines 8 to 9 with 2 points; choose one with --table"},
             {two, 2, "8-9/0: 6 7"},
             {two, 3, "there is no table 3 with"},
             {turned, 2, "5-5/0: 3"},
             {"V,U\n" + kFive + "\n" + kFive, 0, "there are 2 tables"},
             {"V,U\n" + kFive + kFive, 2, "7-11/0: 1 2 3 4 5"},
             {"V,U\n1,1,1,1,7,1\n", 0,
              "line 2 has \"1\" \"1\" \"1\" \"1\" \"7\" \"1\", and line 1 names 2 fields; separate"},
             {"V,U\n" + spoilt, 0, "2 lines of the table cannot be read: line 7 has \"6\" \"9.1*\""},
             {"V,U\n" + kFive + "6,---\n7,OVL\n", 0, "2 lines of the table cannot be read: line 7 has"},
             {"V,U\n" + kFive + "V,U\n6,9*\n7,---\n", 0, "2 lines of the table cannot be read: line 8 has"},
             {"V,U\n1,<7\n2,7*\n" + kFive, 0, "2 lines of the table cannot be read: line 2 has"},
             {"V,U\n1,7\n2,7*\n3,8\n", 0, "1 line of the table cannot be read: line 3 has"},
             {"n,V,U\n1,1,7\n2,2,8\nmean,1.5,7.5\n", 0, "there are 2 tables"},
             {"V,U\n" + kFive + "1.05,7\n2,7\n", 0, "there are 2 tables"},
             {"V,U\n998 \u00B5L,7\n1.002 mL,8\n", 0, "line 3 has \"1.002 mL\" \"8\", and the table began with"},
             {"V,U,u\n1,7,8\n", 0, "line 1 has more than one column \"u\""},
             {"U;3\n1;2\n;V;U\n;mL;mV\n7;1,5;7\n7;2,5;8\n\nmean;-;-\n", 0, "5-6/0: 1.5 2.5"},
             {"V,U\n" + spoilt, 1, "2-6/2: 1 2 3 4 5"}}) {
        EXPECT_EQ(Read(text, "v", "u", table).substr(0, std::string(expected).size()), expected) << text;
    }
}

// With numbers for columns nothing says where the table begins: readings before it were left out.
TEST(CurveTable, IsRefusedWhereReadingsAreBeforeIt) {
    const std::string four = "1,7\n2,7\n3,8\n4,9\n", marked = "x;1;7\nx;2;7\nx;3;8\nx;4;9\n";
    const std::string rows = "1;0;7\n2;1;7\n3;2;8\n4;3;9\n5;4;9\n";
    for (const auto& [text, table, expected] : Cases<std::string, int, const char*>{
             {four + "burette refilled\n3.9,9\n5,9\n6,9\n7,9\n8,9\n", 0,
              "there are 2 tables with numbers in the columns \"1\" and \"2\": 1 in lines 1 to 4 with 4 points, 2 in "
              "lines 6 to 10 with 5 points; choose one with --table"},
             {"1 mL,7\n2 mL,7\n3,8\n4,9\n5,9\n6,9\n7,9\n", 2, "3-7/0: 3 4 5 6 7"},
             {"1 mL,7\n2 mL,7\n3,8\n4,9\n5,9\n6,9\n7,9\n", 0, "there are 2 tables"},
             {"8,9\n\n" + kFive, 0, "there are 2 tables"},
             {"1,<7\n2,7*\n\n3,7\n4,8\n", 0,
              "2 lines of the table cannot be read: line 1 has \"1\" \"<7\"; expected a number in field 1 and one in "
              "field 2; mend"},
             {"1,<7\n2,7*\n3,7\n4,8\n", 1, "3-4/2: 3 4"},
             {"1,<7\n\n2,7\n3,8\n", 1, "3-4/1: 2 3"},
             {kFive + "6,7*\nnote\n0,7*\n1,<7\n" + kFive, 1, "1-5/1: 1 2 3 4 5"},
             {kFive + "6,7*\nnote\n0,7*\n1,<7\n" + kFive, 2, "10-14/2: 1 2 3 4 5"},
             {"1,9.9E37\n" + kFive, 0, "1 line of the table cannot be read: line 1 has"},
             {"Start 0.0,3.1\n" + kFive, 0, "1 line of the table cannot be read: line 1 has"}}) {
        EXPECT_EQ(Read(text, "1", "2", table).substr(0, std::string(expected).size()), expected) << text;
    }
    for (const char* const number : {"0", "18446744073709551616"})
        EXPECT_TRUE(
            Read(kFive, "1", number).starts_with(std::string("there is no column ") + number + "; give its name"));
    for (const auto& [text, expected] : Cases<std::string, const char*>{
             {marked + "5;5;9\n6;6;9\n7;7;9\n8;8;9\n9;9;9\n", "there are 2 tables"},
             {marked + "note\n5;3.9;9\n6;6;9\n7;7;9\n8;8;9\n9;9;9\n", "there are 2 tables"},
             {"Sample;12;1\n" + rows, "there are 2 tables"},
             {"x;1;7\nDate;20260105;123000\n" + rows, "there are 2 tables"},
             {"7;20260105;123000\n\n" + rows, "there are 2 tables"},
             {"Date;20260105;123000\nSerial;4711;2\n" + rows, "3-7/0: 0 1 2 3 4"},
             {"Date;20260105;123000\n1;0;7*\n" + rows, "1 line of the table cannot be read: line 2 has"}}) {
        EXPECT_EQ(Read(text, "2", "3").substr(0, std::string(expected).size()), expected) << text;
    }
    EXPECT_EQ(Read("Date;20260105;123000\n1;0;7*\n" + rows, "2", "3", 1), "3-7/1: 0 1 2 3 4");
}

// A line of a summary seems to be a point of the table before it.
TEST(CurveTable, IsRefusedWhereALineMayBeNoReading) {
    const std::string three = "V,U,T\n1,7,25\n2,7,25\n3,8,25\n4,9,25\n";
    for (const auto& [text, table, expected] : Cases<std::string, int, const char*>{
             {"V,U\n" + kFive + "50.0,2.0\n", 0,
              "line 7 has \"50.0\" \"2.0\", which may not be a reading of the curve: its volume is further from 5 than "
              "5 "
              "times "
              "the widest interval before; remove the line, or take it as a reading with --table 1"},
             {"V,U\n" + kFive + "50.0,2.0\n", 1, "2-7/0: 1 2 3 4 5 50"},
             {"V,U\n" + kFive + "3.5,8\n4.5,8\n", 0,
              "line 7 has \"3.5\" \"8\", which may not be a reading of the curve: the volume goes back from 5; remove"},
             {"V,U\n" + kFive + "3.5,8\nV,U\n" + kFive, 1, "line 7 has \"3.5\" \"8\", which may not be"},
             {"V,U\n5,7\n4,7\n3,8\n2,8\n1,8\n2.5,8\n", 0, "line 7 has"},
             {"V,U\n" + kFive + "5,9\n10,9\n", 0, "2-8/0: 1 2 3 4 5 5 10"},
             {three + "5,9\n", 0,
              "line 6 has \"5\" \"9\", which may not be a reading of the curve: it has fewer fields"},
             {three + "5,9\n6,9\n7,9\n8,9\n9,9\n", 0, "2-10/0: 1 2 3 4 5 6 7 8 9"}}) {
        EXPECT_EQ(Read(text, "v", "u", table).substr(0, std::string(expected).size()), expected) << text;
    }
    EXPECT_EQ(Read("3.5,2\n" + kFive).substr(0, 10), "line 1 has");
}

// Never is a value 1000 times as large, or a thousandth.
TEST(CurveTable, IsRefusedWhereANumberHasTwoMeanings) {
    for (const auto& [text, field] : Cases<const char*, const char*>{
             {"1,000;7.1\n1,001;7.2\n", "line 1 has \"1,000\" \"7.1\", and \"1,000\""},
             {"999;215\n1,234;216\n", "line 2 has \"1,234\" \"216\", and \"1,234\""},
             {"1,000;215\n1,001;216\n", "line 1 has \"1,000\" \"215\", and \"1,000\""},
             {"1,5;999\n1,6;1.000\n", "line 2 has \"1,6\" \"1.000\", and \"1.000\""},
             {"0.5;998 mV\n0.6;1,000 mV\n", "line 2 has \"0.6\" \"1,000 mV\""},
             {"999;215\n1.000;216\n", "line 2 has \"1.000\" \"216\", and \"1.000\""},
             {"0,5 215\n1,5 230\n", "line 1 has \"0\" \"5 215\" when separated by commas, and \"5 215\" may be one"}}) {
        EXPECT_NE(Read(text).find(field), std::string::npos) << text << Read(text);
    }
}

TEST(CurveTable, SaysWhatWasFoundInstead) {
    for (const auto& [text, signal, expected] : Cases<std::string, const char*, const char*>{
             {"t;V;pH\n" + kFive, "mV",
              "separated by commas (semicolons, tabs, commas, bars and blanks were tried), line 2 has \"1\" \"7\""},
             {"t,V,pH\n0,1,x\n", "pH", "line 2 has \"0\" \"1\" \"x\"; expected a number in field 1 and one in field 3"},
             {"a;b;c\nMe\xDFwerte;V\n1;2\n", "\u00B5",
              "the file is not in UTF-8 as the settings are, save it as UTF-8, for example with iconv"},
             {"a;b;c\nU;\u03BCL\n", "\u00B5L",
              "which line 2 names: separated by semicolons (semicolons, tabs, commas, bars and blanks were tried), all "
              "lines after it are blank or comments"},
             {"a;b;c;d\nV;pH\n", "p", "line 1 has"},
             {"t,V\nV,1\u00A0000\xA0\n", "V", "the file is not in UTF-8"},
             {"V;pH\n1;7\n2;7\xB1\x31\n", "pH", "line 3 has \"2\" \"7?1\"; the file is not in UTF-8"},
             {"1,a\n", "2", "line 1 has \"1\" \"a\"; expected a number in field 1 and one in field 2"},
             {" \r\n", "2", "the file is empty"}}) {
        EXPECT_NE(Read(text, "1", signal).find(expected), std::string::npos) << Read(text, "1", signal);
    }
}
