// Promises: rounding a result costs no more than nearbyint(x * 100) / 100, and rounding and printing it far less than
// std::to_chars of the number that is already rounded.
//   Fround >= 1 FroundPeerNearbyint
//   DoubleToStr >= 3 DoubleToStrPeerToChars
#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/base/q_variant.h"

namespace {

constexpr int kDigits = 2;

// Results like those of instruments: both signs, five decades, no value halfway between two texts.
const std::vector<double>& Values() {
    static const std::vector<double> values = [] {
        std::mt19937_64 random(20260714);
        std::uniform_real_distribution<double> exponent(-1, 4);
        std::vector<double> made(4096);
        for (double& value : made) value = std::pow(10, exponent(random)) * (random() % 2 == 0 ? 1 : -1);
        return made;
    }();
    return values;
}

std::vector<double> RoundedValues() {
    std::vector<double> rounded = Values();
    for (double& value : rounded) value = CQVariant::fround(value, kDigits, 0);
    return rounded;
}

double PeerRounded(double value) { return std::nearbyint(value * 100) / 100; }

std::string PeerText(double rounded) {
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, rounded, std::chars_format::fixed, kDigits);
    return std::string(text, result.ptr);
}

// Rounds a column of results into another.
void Fround(benchmark::State& state) {
    std::vector<double> column(Values().size());
    for (auto _ : state) {
        std::ranges::transform(Values(), column.begin(), [](double x) { return CQVariant::fround(x, kDigits, 0); });
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * Values().size()));
}
BENCHMARK(Fround);

void FroundPeerNearbyint(benchmark::State& state) {
    std::vector<double> column(Values().size());
    for (auto _ : state) {
        std::ranges::transform(Values(), column.begin(), PeerRounded);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * Values().size()));
}
BENCHMARK(FroundPeerNearbyint);

void DoubleToStr(benchmark::State& state) {
    for (auto _ : state) {
        for (const double value : Values()) benchmark::DoNotOptimize(CQVariant::DoubleToStr(value, kDigits, 0));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * Values().size()));
}
BENCHMARK(DoubleToStr);

void DoubleToStrPeerToChars(benchmark::State& state) {
    const std::vector<double> rounded = RoundedValues();
    for (auto _ : state) {
        for (const double value : rounded) benchmark::DoNotOptimize(PeerText(value));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * rounded.size()));
}
BENCHMARK(DoubleToStrPeerToChars);

// Results may differ by the 0.01 of a unit after the last place: such a value is rounded up here, not by the peer.
bool ResultsAgree() {
    for (const double value : Values()) {
        const double rounded = CQVariant::fround(value, kDigits, 0);
        const double places = std::fabs(value) * 100;
        const bool nearHalf = std::fabs(places - std::floor(places) - 0.5) < 0.01;
        if (!nearHalf && std::fabs(rounded - PeerRounded(value)) > 1e-9) return false;
        if (CQVariant::DoubleToStr(value, kDigits, 0) != PeerText(rounded).c_str()) return false;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (!ResultsAgree()) {
        std::fputs("values_bench: results differ from those of the peers\n", stderr);
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
