#include "qellib10/quantity/trace_phrases.h"

#include <array>

#include "qellib10/quantity/phrase_table.h"

namespace qel {
namespace {

// Before the digits that a rule rounds to.
constexpr std::array kRoundings = {
    Phrase{"half away from zero, ", "四捨五入、"},
    Phrase{"half even, ", "偶数への丸め、"},
    Phrase{"truncation, ", "切捨て、"},
    Phrase{"away from zero, ", "切上げ、"},
};
constexpr std::array kPhrases = {
    Phrase{"{} decimal place", "小数点以下 {} 桁"},
    Phrase{"{} significant digit", "有効数字 {} 桁"},
    Phrase{"{} digit of the uncertainty", "不確かさの有効数字 {} 桁の位まで"},
    Phrase{"{} decimal places", "小数点以下 {} 桁"},
    Phrase{"{} significant digits", "有効数字 {} 桁"},
    Phrase{"multiples of {}", "{} の倍数"},
    Phrase{"{} digits of the uncertainty", "不確かさの有効数字 {} 桁の位まで"},
    Phrase{"simple acceptance (shared risk)", "単純受入れ (リスクの共有)"},
    Phrase{"guarded acceptance, w = {} U", "ガードバンド付き受入れ、w = {} U"},
    Phrase{"guarded rejection, w = {} U", "ガードバンド付き棄却、w = {} U"},
    Phrase{"Type A, {} readings, standard deviation {}", "タイプ A、測定回数 {}、標準偏差 {}"},
    Phrase{"Type B, standard uncertainty {}", "タイプ B、標準不確かさ {}"},
    Phrase{"Type B, rectangular, half-width {}", "タイプ B、一様分布、半幅 {}"},
    Phrase{"Type B, triangular, half-width {}", "タイプ B、三角分布、半幅 {}"},
    Phrase{"Type B, certificate, U = {}, k = {}", "タイプ B、証明書、拡張不確かさ U = {}、包含係数 k = {}"},
    Phrase{"zero", "0"},
    Phrase{"half of the limit", "限界値の 1/2"},
    Phrase{"limit", "限界値"},
    Phrase{"yes", "はい"},
    Phrase{"no", "いいえ"},
    Phrase{"undecided", "判定不能"},
    Phrase{"undecided: {}", "判定不能: {}"},
    Phrase{"not determinable", "決定できない"},
    Phrase{"not determinable: {}", "決定できない: {}"},
    Phrase{"number", "数値"},
    Phrase{"constant", "定数"},
    Phrase{"variable", "変数"},
    Phrase{"abs", "絶対値"},
    Phrase{"sqrt", "平方根"},
    Phrase{"exp", "指数関数"},
    Phrase{"ln", "自然対数"},
    Phrase{"log10", "常用対数"},
    Phrase{"log2", "2 を底とする対数"},
    Phrase{"round", "丸め"},
    Phrase{"not", "否定"},
    Phrase{"and", "論理積"},
    Phrase{"or", "論理和"},
    Phrase{"min", "最小値"},
    Phrase{"max", "最大値"},
    Phrase{"mean", "平均値"},
    Phrase{"sum", "合計"},
    Phrase{"if", "条件"},
};

}  // namespace

std::string JapaneseOf(std::string_view english) {
    for (const auto& [name, japanese] : kRoundings)
        if (english.starts_with(name)) return std::string(japanese) + JapaneseOf(english.substr(name.size()));
    return Translated(english, kPhrases, JapaneseOf).value_or(std::string(english));
}

}  // namespace qel
