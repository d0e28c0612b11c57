// Promises: a turn under the lock of a shared block (lock, map, unmap, unlock) costs little more than only mapping and
// unmapping the view, and waiting half a second for the lock costs no processor time except that of a process.
//   Turn<CAutoLockedMemoryMappedFile>/* <= 3 TurnPeerMmap/*
//   WaitForTheLock:busy_seconds <= 0.01
//   Turn<CMemoryMappedFile>/* beside TurnPeerMmap/*
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "qellib10/runtime/memory_mapped_file.h"

namespace {

constexpr DWORD kWrite = 2;

std::string BlockName(const char* name) { return "bench" + std::to_string(::getpid()) + name; }

// A turn of a process that shares a block: map it, change a byte, unmap.
void ChangeByte(void* view) {
    ++*static_cast<unsigned char*>(view);
    benchmark::ClobberMemory();
}

template <class Block> void ClassTurn(Block& block, DWORD size) {
    ChangeByte(block.GetDataPtr(kWrite, size));
    block.GetDataPtrUnmap();
}

void PeerTurn(int file, DWORD size) {
    void* view = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ChangeByte(view);
    ::munmap(view, size);
}

int PeerFile(DWORD size) {
    const int file = ::memfd_create("peer", MFD_CLOEXEC);
    return file >= 0 && ::posix_fallocate(file, 0, size) == 0 ? file : -1;
}

template <class Block> void Turn(benchmark::State& state) {
    const auto size = static_cast<DWORD>(state.range(0));
    Block block;
    if (block.Open(6, BlockName("turn").c_str(), size) == 0) return state.SkipWithError("no block");
    for (auto _ : state) ClassTurn(block, size);
}
BENCHMARK_TEMPLATE(Turn, CAutoLockedMemoryMappedFile)->Arg(4096)->Arg(1 << 20);
BENCHMARK_TEMPLATE(Turn, CMemoryMappedFile)->Arg(4096)->Arg(1 << 20);

void TurnPeerMmap(benchmark::State& state) {
    const auto size = static_cast<DWORD>(state.range(0));
    const int file = PeerFile(size);
    for (auto _ : state) PeerTurn(file, size);
    ::close(file);
}
BENCHMARK(TurnPeerMmap)->Arg(4096)->Arg(1 << 20);

double ProcessorSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// A process waits while another one has the block; the counter is the processor time that it used meanwhile.
void WaitForTheLock(benchmark::State& state) {
    const std::string name = BlockName("wait");
    CAutoLockedMemoryMappedFile block;
    if (block.Open(6, name.c_str(), 1) == 0) return state.SkipWithError("no block");
    const double before = ProcessorSeconds();
    for (auto _ : state) {
        block.GetDataPtr(kWrite, 1);
        const pid_t waiter = ::fork();
        if (waiter == 0) {
            CAutoLockedMemoryMappedFile other;
            ::_exit(other.Open(6, name.c_str(), 1) == 1 && other.GetDataPtr(kWrite, 1) != nullptr ? 0 : 1);
        }
        ::usleep(500'000);
        block.GetDataPtrUnmap();
        int status = 0;
        ::waitpid(waiter, &status, 0);
        if (status != 0) state.SkipWithError("the waiter failed");
    }
    state.counters["busy_seconds"] =
        benchmark::Counter(ProcessorSeconds() - before, benchmark::Counter::kAvgIterations);
}
BENCHMARK(WaitForTheLock)->Iterations(2)->Unit(benchmark::kMillisecond)->UseRealTime();

// After the same number of turns each view shows the same number of changes.
bool ResultsAgree() {
    constexpr DWORD kSize = 4096;
    constexpr unsigned char kTurns = 100;
    CAutoLockedMemoryMappedFile block;
    const int file = PeerFile(kSize);
    if (file < 0 || block.Open(6, BlockName("check").c_str(), kSize) == 0) return false;
    for (int i = 0; i < kTurns; ++i) {
        ClassTurn(block, kSize);
        PeerTurn(file, kSize);
    }
    unsigned char peer = 0;
    const bool isRead = ::pread(file, &peer, 1, 0) == 1;
    ::close(file);
    return isRead && peer == kTurns && *static_cast<unsigned char*>(block.GetDataPtr(kWrite, kSize)) == peer;
}

}  // namespace

int main(int argc, char** argv) {
    if (!ResultsAgree()) {
        std::fputs("sync_bench: results differ from those of the peer\n", stderr);
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
