#include "qellib10/calc/calc_variable_list.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "qellib10/base/q_variant.h"
#include "qellib10/calc/qw_calc.h"
#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/storage/mem_file.h"
#include "qellib10/platform/text/multibyte.h"

#include "../support/code_page_scope.h"

namespace {

using Bytes = std::string;

CCalcVariable Variable(const std::string& name, double value) {
    CCalcVariable variable;
    variable.m_szName = CString(name);
    variable.m_dValue = value;
    return variable;
}

Bytes Stored(CObject& object) {
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    object.Serialize(archive);
    archive.Close();
    const std::vector<BYTE> bytes = file.Detach();
    return {bytes.begin(), bytes.end()};
}

// The bytes left when nothing was thrown, else -1.
int Load(const Bytes& bytes, const std::function<void(CArchive&)>& read) {
    CMemFile file;
    file.Attach(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    try {
        CArchive archive(&file, CArchive::load);
        read(archive);
        archive.Close();
        return static_cast<int>(bytes.size() - file.GetPosition());
    } catch (const CArchiveException& exception) {
        EXPECT_EQ(exception.m_cause, CArchiveException::endOfFile);
        return -1;
    }
}

int Load(const Bytes& bytes, CObject& object) {
    return Load(bytes, [&](CArchive& archive) { object.Serialize(archive); });
}

Bytes Text(const std::string& text) { return static_cast<char>(text.size()) + text; }
Bytes Int(int value) { return {reinterpret_cast<const char*>(&value), 4}; }

// A = 1.5 with flags 1, 0, 1, as every installation has written it.
Bytes Golden(const std::string& tag = "QWCalc", const std::string& version = "1.00") {
    return Text(tag) + Text(version) + Text("A") + Bytes("\0\0\0\0\0\0\xF8\x3F\0\0\0\0\1\0\1\0", 16);
}

std::string Names(const CCalcVariableList& list) {
    std::string names;
    CCalcVariable variable;
    for (int i = 0; list.GetVariableData(i, &variable) != 0; ++i) names += std::string(variable.m_szName.View()) + " ";
    return names;
}

}  // namespace

TEST(CalcVariableList, ReplacesAppendsAndRounds) {
    CCalcVariableList list;
    list.SetRoundUpFlag(1);
    list.SetRoundUpDigit(2);
    CCalcVariable given = Variable("A", 1.005);
    given.m_nState = given.m_nOption1 = given.m_nOption2 = given.m_nUse = 7;
    list.AddVariableData(given);
    list.AddVariableData(Variable("B", 2.0));
    given.m_szText = "again";
    CCalcVariable out = Variable("A", 3.0);
    out.m_nOption1 = out.m_nOption2 = 9;
    EXPECT_EQ(list.SetVariableData(1, out), 1);  // a second A, option flags and all
    list.AddVariableData(given);                 // replaces the first
    EXPECT_EQ(Names(list), "A A ");
    ASSERT_EQ(list.GetVariableDataAtName("A", &out), 1);
    given.m_dValue = CQVariant::fround(1.005, 2, 0);
    given.m_nState = 0;
    given.m_nOption1 = given.m_nOption2 = 1;
    EXPECT_TRUE(out == given);
    EXPECT_EQ(list.SetVariableValue("a", 1), 0);
    EXPECT_EQ(list.SetVariableValue("A", 2.449), 1);
    list.SetRoundUpDigit(1);
    ASSERT_EQ(list.GetUseVariableData(0, &out), 1);
    EXPECT_EQ(out.m_dValue, CQVariant::fround(CQVariant::fround(2.449, 2, 0), 1, 0));

    const CCalcVariableList copy = list;
    list = *&list;
    EXPECT_EQ(list != copy, 0);
    for (const int index : {-1, 2, INT_MAX, INT_MIN}) {
        EXPECT_EQ(list.GetVariableData(index, &out), 0);
        EXPECT_EQ(list.SetVariableData(index, given), 0);
        EXPECT_EQ(list.GetUseVariableData(index, &out), 0);
    }
    EXPECT_EQ(list.GetUseVariableData(1, &out) + list.GetVariableData(0, nullptr), 0);
    list.ClearViewFlag();
    EXPECT_EQ(list.GetUseVariableCount(), 0);
    EXPECT_EQ(list != copy, 1);
    list.InitParameter();
    EXPECT_EQ(list.GetVariableCount() + list.GetRoundUpFlag() + list.GetRoundUpDigit(), 0);
}

// All look-ups against a walk over the list, while entries come, go and are renamed, and the code page changes.
TEST(CalcVariableList, LookUpsFindTheFirstMatch) {
    const std::vector<std::string> names = {"a",        "A",  "abcdefgh", "abcDEFGH", "abcdefghi",
                                            "ab",       "aB", "\x83\x41", "\x83\x61", "\x82\x60",
                                            "\x82\x81", "",   "b\x83",    "B\x83",    "abcdefgj"};
    std::mt19937 random(1);
    const auto any = [&](std::size_t count) { return static_cast<int>(random() % count); };
    CCalcVariableList list;
    CQWCalc calc;
    double serial = 0;
    for (int round = 0; round < 4000; ++round) {
        const CodePageScope page(round / 500 % 2 == 0 ? 932 : 1252);
        const int kind = any(5);
        const CCalcVariable variable = Variable(names[static_cast<std::size_t>(any(names.size()))], ++serial);
        if (kind < 2) list.AddVariableData(variable);
        if (kind == 2) list.DeleteVariableAtName(variable.m_szName);
        if (kind == 3 && list.GetVariableCount() > 0) list.SetVariableData(any(30) % list.GetVariableCount(), variable);
        if (kind == 4) list.SetVariableValue(variable.m_szName, serial);
        calc.SetCalcVarList(list);
        for (const std::string& name : names) {
            double exact = -1, folded = -1, found = -1;
            CCalcVariable out;
            for (int i = list.GetVariableCount() - 1; i >= 0; --i) {
                ASSERT_EQ(list.GetVariableData(i, &out), 1);
                if (out.m_szName.View() == name) exact = out.m_dValue;
                if (qel::SameName(out.m_szName.View(), name)) folded = out.m_dValue;
            }
            ASSERT_EQ(list.GetVariableDataAtName(CString(name), &out) != 0 ? out.m_dValue : -1, exact) << name;
            if (!name.empty() && calc.ConcCalculation(CString(name), &found) == 0) found = -1;
            ASSERT_EQ(found, name.empty() ? -1 : folded) << name;
        }
    }
}

TEST(CalcVariableList, ArchivesInTheKnownBytes) {
    CCalcVariableList list;
    list.AddVariableData(Variable("A", 1.5));
    CCalcVariable variable;
    EXPECT_EQ(Load(Golden(), variable), 0);
    EXPECT_EQ(Stored(variable), Golden());
    EXPECT_EQ(Stored(list), Text("QWCalc") + Text("1.01") + '\0' + Int(0) + Int(1) + Golden());

    // Flags keep their low byte, and are read unsigned.
    list.SetRoundUpFlag(0x1FE);
    list.SetRoundUpDigit(-3);
    CCalcVariableList read;
    EXPECT_EQ(Load(Stored(list), read), 0);
    EXPECT_EQ(read.GetRoundUpFlag(), 0xFE);
    read.SetRoundUpFlag(0x1FE);
    EXPECT_EQ(read != list, 0);
}

TEST(CalcVariableList, ReadsWhatOlderVersionsWroteAndStopsAtTheUnknown) {
    const Bytes head = Text("QWCalc");
    struct Case {
        Bytes bytes;
        int left;  // unread, -1 for an exception
        const char* names;
        int flag;
    };
    for (const Case& c : {
             Case{Text("QX-APP") + Text("1.01") + '\xFF' + Int(2) + Int(1) + Golden("QX-APP"), 0, "A ", 255},
             Case{head + Text("1.00") + Int(2) + Golden() + Golden(), 0, "A A ", 0},
             Case{Text("QWCALC") + Text("1.01") + "rest", 4, "old ", 1},
             Case{head + Text("1.02") + "rest", 4, "old ", 1},
             Case{head + Text("1.00") + Int(-1) + "rest", 4, "", 0},
             Case{head + Text("1.00") + Int(3) + Golden() + Golden("QWCalc", "2.00"), 18, "A ", 0},
             Case{head + Text("1.00") + Int(3) + Golden("other"), 18, "", 0},
             Case{head + Text("1.00") + Int(INT_MAX) + Golden(), -1, "A ", 0},
             Case{head + Text("1.01") + '\1' + Int(0), -1, "old ", 1},
         }) {
        SCOPED_TRACE(testing::PrintToString(c.bytes));
        CCalcVariableList list;
        list.AddVariableData(Variable("old", 1));
        list.SetRoundUpFlag(1);
        EXPECT_EQ(Load(c.bytes, list), c.left);
        EXPECT_EQ(Names(list), c.names);
        EXPECT_EQ(list.GetRoundUpFlag(), c.flag);
    }
    CCalcVariableList list;
    list.AddVariableData(Variable("old", 1));
    list.SetRoundUpDigit(4);
    EXPECT_EQ(Load(Int(1) + Golden() + "rest", [&](CArchive& archive) { list.LoadOldVariableList(archive); }), 4);
    EXPECT_EQ(Names(list) + std::to_string(list.GetRoundUpDigit()), "A 4");
}

TEST(CalcVariableList, SurvivesDamage) {
    CCalcVariableList list;
    for (const char* name : {"A", "B", "C"}) list.AddVariableData(Variable(name, 1));
    const Bytes whole = Stored(list);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        CCalcVariableList read;
        EXPECT_EQ(Load(whole.substr(0, at), read), -1) << at;
        EXPECT_LE(read.GetVariableCount(), 3);
        for (const int flip : {1, 0x80, 0xFF}) {
            Bytes damaged = whole;
            damaged[at] = static_cast<char>(damaged[at] ^ flip);
            Load(damaged, read);
            CCalcVariableList again;
            EXPECT_EQ(Load(Stored(read), again), 0);
            EXPECT_EQ(Stored(again), Stored(read));
        }
    }
}
