#include "qellib10/quantity/trace_words.h"

#include <algorithm>
#include <array>

namespace qel {
namespace {

struct Words {
    TraceWord word;
    std::string_view english, japanese;
};
constexpr std::array kWords = {
    Words{TraceWord::kResult, "Result", "結果"},
    Words{TraceWord::kFormula, "Formula", "計算式"},
    Words{TraceWord::kHelper, "Formula used", "使用した計算式"},
    Words{TraceWord::kInputs, "Values put in", "入力値"},
    Words{TraceWord::kSteps, "Steps", "計算の手順"},
    Words{TraceWord::kRounding, "Rounding", "数値の丸め"},
    Words{TraceWord::kBudget, "Uncertainty budget", "不確かさのバジェット"},
    Words{TraceWord::kFault, "No result", "結果なし"},
    Words{TraceWord::kName, "Name", "名称"},
    Words{TraceWord::kValue, "Value", "値"},
    Words{TraceWord::kUnit, "Unit", "単位"},
    Words{TraceWord::kOrigin, "From", "出所"},
    Words{TraceWord::kUncertaintyStated, "Uncertainty", "不確かさ"},
    Words{TraceWord::kStep, "Step", "手順"},
    Words{TraceWord::kOperation, "Operation", "演算"},
    Words{TraceWord::kRemark, "Remark", "備考"},
    Words{TraceWord::kInexact, "inexact", "丸め誤差あり"},
    Words{TraceWord::kFromBinary, "was a binary number", "二進数から変換"},
    Words{TraceWord::kRoundedByList, "rounded by the list, decimal places: ", "変数リストで丸め、小数点以下の桁数: "},
    Words{TraceWord::kRule, "Rule", "規則"},
    Words{TraceWord::kUnrounded, "Before", "丸め前"},
    Words{TraceWord::kRounded, "After", "丸め後"},
    Words{TraceWord::kNoRounding, "none", "なし"},
    Words{TraceWord::kSubstitution, "For limits in min, max and mean", "min、max、mean での限界値の代用"},
    Words{TraceWord::kSource, "Source", "要因"},
    Words{TraceWord::kStandardUncertainty, "u", "標準不確かさ u"},
    Words{TraceWord::kDegreesOfFreedom, "Degrees of freedom", "自由度"},
    Words{TraceWord::kSensitivity, "Sensitivity", "感度係数"},
    Words{TraceWord::kContribution, "Contribution", "寄与"},
    Words{TraceWord::kShare, "Share", "割合"},
    Words{TraceWord::kCombined, "Combined standard uncertainty", "合成標準不確かさ"},
    Words{TraceWord::kCoverage, "Coverage factor k", "包含係数 k"},
    Words{TraceWord::kExpanded, "Expanded uncertainty U", "拡張不確かさ U"},
    Words{TraceWord::kInfinite, "infinite", "無限大"},
    Words{TraceWord::kNotDefined, "not defined", "定義されない"},
    Words{TraceWord::kBecauseOf, "because of ", "原因: "},
    Words{TraceWord::kAtKink, "first order is not enough: within the uncertainty the formula bends, branches or steps",
          "不確かさの範囲内で式が折れ曲がる、分岐する、または段差があるため、一次近似は不十分"},
    Words{TraceWord::kEngine, "Computed by version", "計算したバージョン"},
    Words{TraceWord::kOlderGrammar, "older grammar", "旧文法"},
    Words{TraceWord::kMoreTrials, "more trials are needed to be sure", "確実な判断には試行の追加が必要"},
    Words{TraceWord::kLimits, "Limits", "規格限界"},
    Words{TraceWord::kLower, "Lower limit", "下限"},
    Words{TraceWord::kUpper, "Upper limit", "上限"},
    Words{TraceWord::kCompared, "Compared", "比較した値"},
    Words{TraceWord::kComparedRounded, "rounded value", "丸めた値"},
    Words{TraceWord::kComparedUnrounded, "unrounded value", "丸めていない値"},
    Words{TraceWord::kGuardBand, "Guard band w", "ガードバンド w"},
    Words{TraceWord::kConformity, "Probability of conformity", "適合確率"},
    Words{TraceWord::kPassed, "passed", "適合"},
    Words{TraceWord::kFailed, "not passed", "不適合"},
    Words{TraceWord::kOnBothSides, "its possible values are on both sides of a limit", "取りうる値が限界の両側にある"},
    Words{TraceWord::kLimitRounding, "; a limit is rounded away from what is possible",
          "。限界値は取りうる値から離れる側に丸める"},
    Words{TraceWord::kUndecided, "the uncertainty reaches over a limit", "不確かさの範囲が限界を含む"},
    Words{TraceWord::kTrials, "Monte Carlo check", "モンテカルロ法による確認"},
    Words{TraceWord::kNumberOfTrials, "Trials", "試行回数"},
    Words{TraceWord::kFailedTrials, "Trials without a result", "結果が得られなかった試行"},
    Words{TraceWord::kSeed, "Seed", "乱数の初期値"},
    Words{TraceWord::kShortest, "shortest interval", "最短区間"},
    Words{TraceWord::kCorrelations, "Correlation coefficients", "相関係数"},
    Words{TraceWord::kCoefficient, "r", "r"},
    Words{TraceWord::kTooSmall, "inexact, digits were lost near 0", "丸め誤差あり、0 の近くで桁落ち"},
    Words{TraceWord::kFirstOrder, "First order", "一次近似"},
    Words{TraceWord::kEnough, "is enough", "十分"},
    Words{TraceWord::kNotEnough, "is not enough: take the interval of the trials", "不十分: 試行による区間を使用"},
};

}  // namespace

std::string_view TextOf(TraceWord word, TraceLanguage language) {
    const auto found = std::ranges::find(kWords, word, &Words::word);
    return language == TraceLanguage::kJapanese ? found->japanese : found->english;
}

}  // namespace qel
