#include "qellib10/calc/calc_variable_list.h"

#include <climits>
#include <memory>
#include <random>

#include "qellib10/base/q_variant.h"
#include "qellib10/calc/qw_calc.h"
#include "qellib10/platform/text/multibyte.h"

#include "../support/archive_bytes.h"
#include "../support/test.h"

namespace {

constexpr int kCut = -CArchiveException::endOfFile;

CCalcVariable Variable(const CString& name, double value) {
    CCalcVariable variable;
    variable.m_szName = name;
    variable.m_dValue = value;
    return variable;
}

struct OldList : CCalcVariableList {
    void Serialize(CArchive& archive) override { LoadOldVariableList(archive); }
};

std::string Text(const std::string& text) { return static_cast<char>(text.size()) + text; }
std::string Int(int value) { return {reinterpret_cast<const char*>(&value), 4}; }

// A = 1.5 with flags 1, 0, 1, as every installation has written it.
std::string Golden(const std::string& tag = "QWCalc", const std::string& version = "1.00") {
    return Text(tag) + Text(version) + Text("A") + std::string("\0\0\0\0\0\0\xF8\x3F\0\0\0\0\1\0\1\0", 16);
}

std::string Names(const CCalcVariableList& list) {
    std::string names;
    CCalcVariable variable;
    for (int i = 0; list.GetVariableData(i, &variable) != 0; ++i) names += std::string(variable.m_szName.View()) + " ";
    return names;
}

}  // namespace

TEST(CalcVariableList, AnAddedVariableReplacesTheFirstOfItsName) {
    CCalcVariableList list;
    list.SetRoundUpFlag(1);
    list.SetRoundUpDigit(2);
    CCalcVariable out, given = Variable("A", 1.005);
    given.m_nState = given.m_nOption1 = given.m_nOption2 = given.m_nUse = 7;
    list.AddVariableData(given);
    list.AddVariableData(Variable("B", 2.0));
    EXPECT_EQ(list.SetVariableData(1, Variable("A", 3.0)), 1);  // a second A
    given.m_szText = "again";
    list.AddVariableData(given);  // replaces the first, but for its option flags
    EXPECT_EQ(Names(list), "A A ");
    given.m_dValue = CQVariant::fround(1.005, 2, 0);
    given.m_nState = 0, given.m_nOption1 = given.m_nOption2 = 1;
    EXPECT_EQ(list.GetVariableDataAtName("A", &out), 1);
    EXPECT_EQ(out, given);
    EXPECT_EQ(Line({list.SetVariableValue("a", 1), list.SetVariableValue("A", 2.449)}), "0 1");
    list.SetRoundUpDigit(1);
    ASSERT_EQ(list.GetUseVariableData(0, &out), 1);
    EXPECT_EQ(out.m_dValue, CQVariant::fround(CQVariant::fround(2.449, 2, 0), 1, 0));

    const CCalcVariableList copy = list;
    EXPECT_EQ(list != copy, 0);
    for (const int index : {-1, 2, INT_MAX, INT_MIN}) {
        EXPECT_EQ(Line({list.GetVariableData(index, &out), list.GetUseVariableData(index, &out)}), "0 0");
        EXPECT_EQ(list.SetVariableData(index, given), 0);
    }
    EXPECT_EQ(Line({list.GetUseVariableData(1, &out), list.GetVariableData(0, nullptr)}), "0 0");
    list.ClearViewFlag();
    EXPECT_EQ(list.GetUseVariableCount(), 0);
    EXPECT_NE(list, copy);
    list.InitParameter();
    EXPECT_EQ(Line({list.GetVariableCount(), list.GetRoundUpFlag(), list.GetRoundUpDigit()}), "0 0 0");
}

// All look-ups against a walk over the list, while entries come, go and are renamed, and the code page changes.
TEST(CalcVariableList, LookUpsFindTheFirstMatch) {
    std::vector<CString> names;
    for (const char* stem : {"", "a", "A", "abcdefgh", "abcDEFGH", "\x83\x41", "\x83\x61", "\x82\x60", "\x82\x81"})
        for (const char* end : {"", "B", "b", "cccccccc", "\x83"}) names.push_back(CString(stem) + end);
    std::mt19937 random(1);
    CCalcVariableList list;
    CQWCalc calc;
    for (int round = 1; round < 1000; ++round) {
        const CodePageScope page(round / 200 % 2 == 0 ? 932 : 1252);
        const CCalcVariable given = Variable(names[random() % names.size()], round);
        if (round % 3 == 0) list.AddVariableData(given);
        if (round % 5 == 0) list.DeleteVariableAtName(given.m_szName);
        if (round % 3 == 1) list.SetVariableData(static_cast<int>(random() % 60), given);
        calc.SetCalcVarList(list);
        for (const CString& name : names) {
            double exact = 0, folded = 0, found = 0;
            CCalcVariable out;
            for (int i = list.GetVariableCount(); list.GetVariableData(--i, &out) != 0;) {
                if (out.m_szName == name) exact = out.m_dValue;
                if (qel::SameName(out.m_szName.View(), name.View()) && !name.IsEmpty()) folded = out.m_dValue;
            }
            ASSERT_EQ(list.GetVariableDataAtName(name, &out) != 0 ? out.m_dValue : 0, exact) << name;
            ASSERT_EQ(calc.ConcCalculation(name, &found) != 0 ? found : 0, folded) << name;
        }
    }
}

TEST(CalcVariableList, ArchivesInTheKnownBytes) {
    CCalcVariableList list, read;
    list.AddVariableData(Variable("A", 1.5));
    const std::unique_ptr<CObject> variable(CRuntimeClass::FromName("CCalcVariable")->CreateObject());
    EXPECT_EQ(Load(*variable, Golden()), 0);
    EXPECT_EQ(Stored(*variable), Golden());
    EXPECT_EQ(CRuntimeClass::FromName("CCalcVariableList"), list.GetRuntimeClass());
    EXPECT_EQ(Stored(list), Text("QWCalc") + Text("1.01") + '\0' + Int(0) + Int(1) + Golden());
    list.SetRoundUpFlag(0x1FE);  // the low byte is stored, and read unsigned
    list.SetRoundUpDigit(-3);
    const std::string bytes = Stored(list);
    EXPECT_EQ(Load(read, bytes), 0);
    EXPECT_EQ(read.GetRoundUpFlag(), 0xFE);
    read.SetRoundUpFlag(0x1FE);
    EXPECT_EQ(read != list, 0);
    for (std::size_t n = 0; n < bytes.size(); ++n) EXPECT_EQ(Load(read, bytes.substr(0, n)), kCut) << n;
}

TEST(CalcVariableList, ReadsOlderVersionsAndStopsAtTheUnknown) {
    const std::string head = Text("QWCalc"), first = head + Text("1.00");
    for (const auto& [bytes, left, names, flag] : Cases<std::string, int, const char*, int>{
             {Text("QX-APP") + Text("1.01") + '\xFF' + Int(2) + Int(1) + Golden("QX-APP"), 0, "A ", 255},
             {first + Int(2) + Golden() + Golden(), 0, "A A ", 0},
             {head + Text("1.02") + "rest", 4, "old ", 1},
             {Text("QWCALC") + Text("1.01") + "rest", 4, "old ", 1},
             {first + Int(-1) + "rest", 4, "", 0},
             {first + Int(3) + Golden() + Golden("QWCalc", "2.00"), 18, "A ", 0},
             {first + Int(3) + Golden("other"), 18, "", 0},
             {first + Int(INT_MAX) + Golden(), kCut, "A ", 0},
             {head + Text("1.01") + '\1' + Int(0), kCut, "old ", 1},
         }) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        CCalcVariableList list;
        list.AddVariableData(Variable("old", 1));
        list.SetRoundUpFlag(1);
        EXPECT_EQ(Load(list, bytes), left);
        EXPECT_EQ(Names(list), names);
        EXPECT_EQ(list.GetRoundUpFlag(), flag);
    }
    OldList old;
    old.AddVariableData(Variable("old", 1));
    EXPECT_EQ(Load(old, Int(1) + Golden() + "rest"), 4);
    EXPECT_EQ(Names(old), "A ");
}
