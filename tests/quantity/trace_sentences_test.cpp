#include "qellib10/quantity/trace_sentences.h"

#include <regex>

#include "../support/test.h"
#include "qellib10/quantity/trace.h"

namespace {

using qel::Calculation;
using qel::UncertaintyComponent;

// What a Japanese trace says of the calculation, without names and units in quotes.
std::vector<std::string> SentencesOf(const Calculation& calculation) {
    std::vector<std::string> sentences;
    const qel::Trace trace = qel::Trace::Of(calculation);
    for (const qel::TraceTable& table : trace.Tables(qel::TraceLanguage::kJapanese))
        for (const auto& row : table.rows)
            if (row.size() == 2 && (row[0] == "備考" || row[0] == "結果なし")) sentences.push_back(row[1]);
    return sentences;
}

Calculation WithFormula(const std::string& formula, const std::string& unit = "") {
    Calculation calculation;
    calculation.result = {"X", formula, unit};
    calculation.inputs = {*qel::CalculationInput::Of("V", "5 mL", {*UncertaintyComponent::Standard(1.5)}),
                          *qel::CalculationInput::Of("M", "2 g", {*UncertaintyComponent::Standard(0.1)}),
                          *qel::CalculationInput::Of("T", "20 °C"), *qel::CalculationInput::Of("L", "< 3 mg/L")};
    return calculation;
}

void ExpectJapanese(const Calculation& calculation, const std::string& about) {
    static const std::regex quoted("\"[^\"]*\""), english("[a-z]{2,} [a-z]{2,}|^[a-z ]+$");
    const std::vector<std::string> sentences = SentencesOf(calculation);
    EXPECT_FALSE(sentences.empty()) << about;
    for (const std::string& sentence : sentences)
        EXPECT_FALSE(std::regex_search(std::regex_replace(sentence, quoted, ""), english)) << about << ": " << sentence;
}

}  // namespace

TEST(TraceSentences, FaultsAndRemarksAreJapanese) {
    for (const char* formula : {"1 +",
                                "1 1",
                                "V V",
                                "(V",
                                "min(V",
                                "sqrt(4, 5)",
                                "foo",
                                "const.Q",
                                "sqr(4)",
                                "log(4)",
                                "1..2",
                                "1 /* x",
                                "[",
                                "[]",
                                "5 % 3",
                                "V > 1 mL",
                                "if(1, 2, 3)",
                                "if(1 = 1",
                                "if(1 = 1,2",
                                "1 = 1 + 1",
                                "round(2.5)",
                                "round(2,x)",
                                "round(2,1,up)",
                                "round(2,1,away,sides)",
                                "round(2,-1,away,multiple)",
                                "round(2,99)",
                                "1 / 0",
                                "ln(-1)",
                                "exp(99999)",
                                "V + M",
                                "T * 2",
                                "V = M",
                                "max(V, M)",
                                "if(1 = 1, V, M)",
                                "ln(V)",
                                "V ^ 0.3",
                                "sqrt(V)",
                                "X + 1",
                                "1\xff",
                                "-T",
                                "T + T",
                                "V × M",
                                "not V",
                                "3V",
                                "abs(round(1E33 + 0.1, 9))",
                                "mean(L, M)",
                                "L / M",
                                "V AND M"})
        ExpectJapanese(WithFormula(formula, "kg"), formula);
    for (const char* unit : {"foo", "%", "ucum:foo", "mg/", "mg as N", "5 e3", "°C*m", "°C^2", "1 500 g", "m^1.5",
                             "0 m", "m^999", "K @ 1 @ 2"})
        ExpectJapanese(WithFormula("V", unit), unit);
}

TEST(TraceSentences, KeepNamesAndPlaces) {
    for (const auto& [english, japanese] : Cases<const char*, const char*>{
             {"a division by zero at character 3: \"/\"", "0 による除算。3 文字目 \"/\""},
             {"the formula is not valid at its end: a closing bracket is expected",
              "計算式が正しくない。末尾: 閉じ括弧が必要"},
             {"a variable that nobody knows at character 1: \"VQ\"; did you mean \"VP\"?",
              "変数が見つからない。1 文字目 \"VQ\"、\"VP\" の間違いか"},
             {"the units do not go together at character 2: \"+\": mL and g cannot be added",
              "単位が合わない。2 文字目 \"+\": mLとgは加算できない"},
             {"no decision: the result is no number and no limit", "判定なし: 結果が数値でも限界値でもない"},
             {"rounding decides: the unrounded value, which a guard band is for, has not passed",
              "丸めが判定を決める。丸めていない値（ガードバンドの対象）は不適合"},
             {"the formula needs its own result at character 1: \"B\": A needs B needs A",
              "計算式が自身の結果を必要とする。1 文字目 \"B\": A → B → A"},
             {"a division by zero at character 1: \"[x is needed at y]\"",
              "0 による除算。1 文字目 \"[x is needed at y]\""},
             {"something else", "something else"},
         })
        EXPECT_EQ(qel::JapaneseSentence(english), japanese);
}
