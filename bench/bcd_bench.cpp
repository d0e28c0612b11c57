// Promise: an operation of CBCD takes hardly longer than its call into decNumber; in both cases the result is a number
// and a context.
//   */6 <= 1.15 */6/Peer
//   */15 <= 1.15 */15/Peer
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "qellib10/calc/bcd.h"

namespace {

constexpr std::size_t kNumbers = 1024;  // a power of two

struct Bare {
    decNumber value;
    decContext context;
};
constexpr decContext kContext = {15, 384, -383, DEC_ROUND_HALF_UP, 0, 0, 1};

// Numbers of @p digits digits with up to four decimals.
std::vector<CBCD> Numbers(int digits) {
    std::mt19937_64 random(1);
    std::vector<CBCD> numbers;
    for (std::size_t i = 0; i < kNumbers; ++i) {
        std::string text(1, static_cast<char>('1' + random() % 9));
        for (int k = 1; k < digits; ++k) text += static_cast<char>('0' + random() % 10);
        numbers.emplace_back((text + "E-" + std::to_string(random() % 5)).c_str());
    }
    return numbers;
}

// Runs @p operation on neighbouring numbers of a ring.
template <typename Number, typename Operation>
void OverPairs(benchmark::State& state, std::vector<Number>& numbers, Operation operation) {
    for (std::size_t i = 0; auto _ : state) {
        const std::size_t next = (i + 1) % kNumbers;
        benchmark::DoNotOptimize(operation(numbers[i], numbers[next]));
        i = next;
    }
}

// Registers both forms of an operation; @p same returns whether two results are equal.
template <typename Class, typename Peer, typename Same>
void Register(const std::string& name, Class ofClass, Peer ofPeer, Same same) {
    for (const int digits : {6, 15}) {
        std::vector<CBCD> numbers = Numbers(digits);
        std::vector<Bare> bare;
        for (const CBCD& number : numbers) bare.push_back({number.GetBCDValue(), kContext});
        for (std::size_t i = 1; i < kNumbers; ++i) {
            if (same(ofClass(numbers[i - 1], numbers[i]), ofPeer(bare[i - 1], bare[i]))) continue;
            std::fprintf(stderr, "%s and its peer differ\n", name.c_str());
            std::exit(1);
        }
        const std::string row = name + "/" + std::to_string(digits);
        benchmark::RegisterBenchmark(row.c_str(), [=](auto& state) mutable { OverPairs(state, numbers, ofClass); });
        benchmark::RegisterBenchmark((row + "/Peer").c_str(),
                                     [=](auto& state) mutable { OverPairs(state, bare, ofPeer); });
    }
}

template <auto kCall> Bare Call(Bare& a, const Bare& b) {
    Bare result{{}, kContext};
    kCall(&result.value, &a.value, &b.value, &a.context);
    return result;
}

int CallCompare(const Bare& a, const Bare& b) {
    decContext context = kContext;
    decNumber order;
    decNumberCompare(&order, &a.value, &b.value, &context);
    return decNumberIsNegative(&order);
}

}  // namespace

int main(int argc, char** argv) {
    const auto sameNumber = [](const CBCD& a, const Bare& b) { return a == b.value; };
    Register(
        "Add", [](CBCD& a, const CBCD& b) { return a + b; }, Call<decNumberAdd>, sameNumber);
    Register(
        "Subtract", [](CBCD& a, const CBCD& b) { return a - b; }, Call<decNumberSubtract>, sameNumber);
    Register(
        "Multiply", [](CBCD& a, const CBCD& b) { return a * b; }, Call<decNumberMultiply>, sameNumber);
    Register(
        "Divide", [](CBCD& a, const CBCD& b) { return a / b; }, Call<decNumberDivide>, sameNumber);
    Register(
        "Less", [](CBCD& a, const CBCD& b) { return a < b; }, CallCompare, [](int a, int b) { return a == b; });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
