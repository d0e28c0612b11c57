// Promises: an operation that succeeds pays nothing that can be seen for the reason that it would give had it failed.
//   Success/* <= 1.05 SuccessPeerBody/*
#include <benchmark/benchmark.h>

#include <vector>

#include "qellib10/file/check_sums.h"
#include "qellib10/platform/archive/result.h"

namespace {

int Checked(const std::vector<unsigned char>& bytes) {
    qel::CheckSums sums;
    sums.Add(bytes);
    benchmark::DoNotOptimize(sums);
    return 1;
}

std::vector<unsigned char> Bytes(const benchmark::State& state) {
    return std::vector<unsigned char>(static_cast<std::size_t>(state.range(0)), 'q');
}

void Success(benchmark::State& state) {
    const auto bytes = Bytes(state);
    for (auto _ : state) benchmark::DoNotOptimize(qel::AsResult("Success", [&] { return Checked(bytes); }));
}

// The same body with nothing around it.
void SuccessPeerBody(benchmark::State& state) {
    const auto bytes = Bytes(state);
    for (auto _ : state) benchmark::DoNotOptimize(Checked(bytes));
}

// A kibibyte, as the smallest file that anybody seals.
BENCHMARK(Success)->Arg(1024);
BENCHMARK(SuccessPeerBody)->Arg(1024);

}  // namespace

BENCHMARK_MAIN();
