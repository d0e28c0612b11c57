// Promises, for 64 MiB in the page cache (Find: 4 MiB): GetFileCRC compared with read in the best block size plus
// ISA-L, CompareFile with cmp, WriteFromFile and ReadToFile with cp, Find with a seek and a read for every first byte.
//   FileCrc >= 1 FileCrcPeer/*
//   Compare >= 1.8 ComparePeer
//   CopyIn >= 0.95 CopyPeer
//   CopyOut >= 0.95 CopyPeer
//   Find/* >= 10 FindPeer/*
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <isa-l.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include "qellib10/file/q_file.h"
#include "qellib10/platform/storage/block_io.h"

namespace {

constexpr std::size_t kSize = 64 << 20;
constexpr std::size_t kFindSize = 4 << 20;
const std::string kPattern = "titration";

void Check(bool holds) {
    if (!holds) std::abort();
}

// A folder with two equal files of random bytes, a smaller one, and a text that ends with the pattern.
class Files {
public:
    Files() {
        const char* below = std::getenv("TMPDIR");
        m_folder = std::string(below != nullptr ? below : "/tmp") + "/qellib10-bench-XXXXXX";
        Check(::mkdtemp(m_folder.data()) != nullptr);
        std::vector<std::uint64_t> words(kSize / sizeof(std::uint64_t));
        std::mt19937_64 random(1);
        for (std::uint64_t& word : words) word = random();
        Fill("a", words.data(), kSize);
        Fill("b", words.data(), kSize);
        Fill("random", words.data(), kFindSize);
        std::string text(kFindSize, ' ');
        for (char& c : text) c = static_cast<char>("etaoinshrdlu cmfwypvbgkjqxz"[random() % 27]);
        text += kPattern;
        Fill("text", text.data(), text.size());
    }
    ~Files() {
        for (const char* name : {"a", "b", "random", "text", "copy"}) ::unlink(Posix(name).c_str());
        ::rmdir(m_folder.c_str());
    }
    std::string Posix(const char* name) const { return m_folder + '/' + name; }
    void Remove(const char* name) const { ::unlink(Posix(name).c_str()); }

private:
    void Fill(const char* name, const void* bytes, std::size_t size) const {
        CFile file(Posix(name).c_str(), CFile::modeWrite | CFile::modeCreate);
        file.Write(bytes, static_cast<UINT>(size));
    }
    std::string m_folder;
};
const Files& TheFiles() {
    static const Files files;
    return files;
}

int RunProgram(std::initializer_list<std::string> words) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    pid_t child = 0;
    int status = -1;
    Check(::posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) == 0);
    Check(::waitpid(child, &status, 0) == child);
    return status;
}

std::uint32_t CrcByPeer(const std::string& name, qel::IoBlock& block, std::size_t blockSize) {
    std::uint32_t crc = 0;
    const qel::Descriptor file(::open(name.c_str(), O_RDONLY));
    for (ssize_t got = 0; (got = ::read(file.Get(), block.bytes, blockSize)) > 0;) {
        crc = crc32_ieee(crc, reinterpret_cast<const unsigned char*>(block.bytes), static_cast<std::uint64_t>(got));
    }
    return crc;
}

void FileCrc(benchmark::State& state) {
    const std::string name = TheFiles().Posix("a");
    const auto block = qel::MakeIoBlock();
    DWORD crc = 0;
    Check(CQFile::GetFileCRC(name.c_str(), &crc, 0) && crc == CrcByPeer(name, *block, qel::IoBlock::kSize));
    for (auto _ : state) CQFile::GetFileCRC(name.c_str(), &crc, 0);
    state.SetBytesProcessed(state.iterations() * std::int64_t{kSize});
}
void FileCrcPeer(benchmark::State& state) {
    const std::string name = TheFiles().Posix("a");
    const auto block = qel::MakeIoBlock();
    for (auto _ : state) benchmark::DoNotOptimize(CrcByPeer(name, *block, static_cast<std::size_t>(state.range(0))));
    state.SetBytesProcessed(state.iterations() * std::int64_t{kSize});
}
BENCHMARK(FileCrc);
BENCHMARK(FileCrcPeer)->RangeMultiplier(2)->Range(16 << 10, 256 << 10);

void Compare(benchmark::State& state) {
    const std::string a = TheFiles().Posix("a"), b = TheFiles().Posix("b");
    for (auto _ : state) Check(CQFile::CompareFile(a.c_str(), b.c_str()) != 0);
    state.SetBytesProcessed(state.iterations() * std::int64_t{kSize});
}
void ComparePeer(benchmark::State& state) {
    const std::string a = TheFiles().Posix("a"), b = TheFiles().Posix("b");
    for (auto _ : state) Check(RunProgram({"cmp", a, b}) == 0);
    state.SetBytesProcessed(state.iterations() * std::int64_t{kSize});
}
BENCHMARK(Compare)->UseRealTime();
BENCHMARK(ComparePeer)->UseRealTime();

template <class Copy> void RunCopies(benchmark::State& state, Copy&& copy) {
    const std::string from = TheFiles().Posix("a"), to = TheFiles().Posix("copy");
    for (auto _ : state) {
        copy(from.c_str(), to.c_str());
        state.PauseTiming();
        Check(CQFile::CompareFile(from.c_str(), to.c_str()) != 0);
        TheFiles().Remove("copy");
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * std::int64_t{kSize});
}
void CopyIn(benchmark::State& state) {
    RunCopies(state, [](const char* from, const char* to) {
        CQFile file;
        Check(file.Open(to, CFile::modeWrite | CFile::modeCreate) != 0);
        file.WriteFromFile(from, 0, 0xFFFFFFFF);
    });
}
void CopyOut(benchmark::State& state) {
    RunCopies(state, [](const char* from, const char* to) {
        CQFile file;
        CFile(to, CFile::modeWrite | CFile::modeCreate).Close();
        Check(file.Open(from, CFile::modeRead) != 0);
        file.ReadToFile(to, kSize);
    });
}
void CopyPeer(benchmark::State& state) {
    RunCopies(state, [](const char* from, const char* to) { Check(RunProgram({"cp", from, to}) == 0); });
}
BENCHMARK(CopyIn)->UseRealTime();
BENCHMARK(CopyOut)->UseRealTime();
BENCHMARK(CopyPeer)->UseRealTime();

// Blocks of 1024 bytes; at every byte that equals the pattern's first one, a seek and a read.
ULONGLONG FindByPeer(CFile& file, const std::string& pattern) {
    std::array<char, 1024> block = {};
    std::string bytes(pattern.size(), '\0');
    LONGLONG start = 0;
    file.SeekToBegin();
    while (const UINT got = file.Read(block.data(), block.size())) {
        for (UINT i = 0; i < got; ++i) {
            if (block[i] != pattern[0]) continue;
            file.Seek(start + i, CFile::begin);
            file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
            if (bytes == pattern) return file.GetPosition();
        }
        start += got;
        file.Seek(start, CFile::begin);
    }
    return 0;
}

// Random bytes, in which the first byte is rare, and text, in which it is not.
void Find(benchmark::State& state, const char* name, const std::string& pattern) {
    CQFile file;
    Check(file.Open(TheFiles().Posix(name).c_str(), CFile::modeRead) != 0);
    const ULONGLONG expected = FindByPeer(file, pattern);
    const int found = expected != 0 ? 1 : 0;
    for (auto _ : state) Check(file.Find(pattern.data(), static_cast<DWORD>(pattern.size())) == found);
    Check(found == 0 || file.GetPosition() == expected);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.GetLength()));
}
void FindPeer(benchmark::State& state, const char* name, const std::string& pattern) {
    CFile file(TheFiles().Posix(name).c_str(), CFile::modeRead);
    for (auto _ : state) benchmark::DoNotOptimize(FindByPeer(file, pattern));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.GetLength()));
}
BENCHMARK_CAPTURE(Find, Text, "text", kPattern);
BENCHMARK_CAPTURE(FindPeer, Text, "text", kPattern);
BENCHMARK_CAPTURE(Find, Random, "random", kPattern);
BENCHMARK_CAPTURE(FindPeer, Random, "random", kPattern);

}  // namespace

BENCHMARK_MAIN();
