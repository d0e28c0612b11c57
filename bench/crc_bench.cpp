// Promises: the CRC in memory is faster than ISA-L's, in whatever form runs here. With 128-bit multiplication only, it
// is as fast as ISA-L's form of that width, far faster than with slicing tables, and these than the byte table. The
// byte sum is faster than libdeflate's adler32. CRC and sum in one pass are faster than ISA-L's CRC followed by a
// vector sum, above all if ISA-L has no 512-bit form.
//   Crc/65536 >= 1.1 CrcPeer/65536
//   Crc/67108864 >= 1 CrcPeer/67108864
//   CrcFolding/65536 >= 0.95 CrcPeer128/65536
//   CrcFolding/65536 >= 4 CrcSlices/65536
//   CrcSlices/65536 >= 4 CrcBytes/65536
//   Sum/65536 >= 1.5 SumPeer/65536
//   Both/* >= 1.3 BothPeer/*
//   Both/* >= 1.8 BothPeer128/*
//   CrcWideFolding/* beside CrcPeer/*
//   CrcSlices/* beside CrcPeer/*

#include <cstdlib>
#include <memory>
#include <span>

#include <benchmark/benchmark.h>
#include <isa-l.h>
#include <libdeflate.h>

#include "qellib10/file/check_sums.h"
#include "qellib10/file/check_sums_vector.h"
#include "qellib10/file/crc32_bzip2.h"

// ISA-L's form with 128-bit multiplication, which its header does not declare: crc32_ieee chooses a form by the
// processor.
extern "C" std::uint32_t crc32_ieee_01(std::uint32_t start, const unsigned char* bytes, std::uint64_t size);

namespace {

using Bytes = std::span<const unsigned char>;
constexpr std::size_t kAlignment = 64;

template <typename Work> void Run(benchmark::State& state, Work work) {
    const auto size = static_cast<std::size_t>(state.range(0));
    struct Free {
        void operator()(void* block) const { std::free(block); }
    };
    const std::unique_ptr<unsigned char, Free> block(static_cast<unsigned char*>(aligned_alloc(kAlignment, size)));
    for (std::size_t i = 0; i < size; ++i) block.get()[i] = static_cast<unsigned char>(i * 131 + (i >> 7));
    const Bytes bytes(block.get(), size);
    qel::CheckSums ours(qel::CheckSums::kCrc);
    ours.Add(bytes);
    if (qel::FinishedCrc(qel::CrcByByte(qel::kCrcStart, bytes)) != ours.Crc()) {
        state.SkipWithError("the forms differ");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(work(bytes));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

template <qel::CheckSums::Wanted wanted> std::uint32_t Ours(Bytes bytes) {
    qel::CheckSums sums(wanted);
    sums.Add(bytes);
    return sums.Crc() + sums.Sum();
}

void Crc(benchmark::State& state) { Run(state, Ours<qel::CheckSums::kCrc>); }
void CrcPeer(benchmark::State& state) {
    Run(state, [](Bytes bytes) { return crc32_ieee(0, bytes.data(), bytes.size()); });
}
void CrcPeer128(benchmark::State& state) {
    Run(state, [](Bytes bytes) { return crc32_ieee_01(0, bytes.data(), bytes.size()); });
}
template <void (*form)(qel::RunningSums&, Bytes)> void CrcForm(benchmark::State& state) {
    Run(state, [](Bytes bytes) {
        qel::RunningSums sums;
        form(sums, bytes);
        return sums.crc;
    });
}
void CrcSlices(benchmark::State& state) {
    Run(state, [](Bytes bytes) { return qel::CrcBySlices(qel::kCrcStart, bytes); });
}
void CrcBytes(benchmark::State& state) {
    Run(state, [](Bytes bytes) { return qel::CrcByByte(qel::kCrcStart, bytes); });
}
void Sum(benchmark::State& state) { Run(state, Ours<qel::CheckSums::kSum>); }
void SumPeer(benchmark::State& state) {
    Run(state, [](Bytes bytes) { return libdeflate_adler32(1, bytes.data(), bytes.size()); });
}
void Both(benchmark::State& state) { Run(state, Ours<qel::CheckSums::kBoth>); }
void BothPeer(benchmark::State& state) {
    Run(state,
        [](Bytes bytes) { return crc32_ieee(0, bytes.data(), bytes.size()) + Ours<qel::CheckSums::kSum>(bytes); });
}

void BothPeer128(benchmark::State& state) {
    Run(state,
        [](Bytes bytes) { return crc32_ieee_01(0, bytes.data(), bytes.size()) + Ours<qel::CheckSums::kSum>(bytes); });
}

constexpr std::int64_t kSmall = 64 << 10;
constexpr std::int64_t kLarge = 64 << 20;

BENCHMARK(Crc)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(CrcPeer)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(CrcPeer128)->Arg(kSmall);
BENCHMARK(CrcForm<qel::CrcByFolding>)->Name("CrcFolding")->Arg(kSmall);
BENCHMARK(CrcForm<qel::CrcByWideFolding>)->Name("CrcWideFolding")->Arg(kSmall)->Arg(kLarge);
BENCHMARK(CrcSlices)->Arg(kSmall);
BENCHMARK(CrcBytes)->Arg(kSmall);
BENCHMARK(Sum)->Arg(kSmall);
BENCHMARK(SumPeer)->Arg(kSmall);
BENCHMARK(Both)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(BothPeer)->Arg(kSmall)->Arg(kLarge);
BENCHMARK(BothPeer128)->Arg(kSmall)->Arg(kLarge);

}  // namespace

BENCHMARK_MAIN();
