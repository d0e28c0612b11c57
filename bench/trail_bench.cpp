// Promises: appending an entry compared with what it cannot do without: writing the line, its SHA-256 and its Ed25519
// signature by libcrypto, with a key that is ready. Flushed entries, with the flush of the head file, compared with a
// flush of the bare line. Eight programs that append to one trail compared with one of them. Verifying compared with
// libcrypto's verification of the same number of signatures; opening a trail of 20,000 entries with one of 20.
//   Append/caller >= 0.7 BareAppend/unflushed
//   AppendedFlushes:extra_us <= 120
//   Processes/8 >= 0.9 Processes/1
//   Check/20000 >= 0.9 BareVerify/20000
//   Open/20000 <= 1.2 Open/20
// Promise: comparing a cabinet of 256 MiB with the trail is nearly as fast as one SHA-256 of its bytes, and two threads
// compare two of them in 1/0.85 of the time.
//   Compare/256MiB >= 0.8 BareHash/256MiB
//   CompareTwo/256MiB >= 0.85 Compare/256MiB
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "qellib10/record/cabinet_records.h"
#include "qellib10/record/key_file_signer.h"
#include "qellib10/record/recorded_cabinet.h"
#include "qellib10/record/trail.h"
#include "qellib10/record/trail_check.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kInFlush = 50;
constexpr std::size_t kLineSize = 766;  // of the entry below

void Check(bool holds) {
    if (!holds) std::abort();
}

std::string MakeFolder() {
    std::string pattern = fs::temp_directory_path() / "qellib10-bench-XXXXXX";
    Check(::mkdtemp(pattern.data()) != nullptr);
    return pattern;
}

class Place {
public:
    Place() : m_folder(MakeFolder()) {
        Check(std::system(("ssh-keygen -q -t ed25519 -N '' -f " + m_folder + "/key").c_str()) == 0);
    }
    ~Place() { fs::remove_all(m_folder); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    std::string Path(const char* name) const { return m_folder + '/' + name; }
    qel::Trail Trail(qel::TrailFlush flush) const {
        const auto signer = std::make_shared<qel::KeyFileSigner>();
        Check(signer->Load(Path("key")) != 0);
        return {{.path = Path("t"),
                 .headPath = Path("h"),
                 .application = "Titrator",
                 .version = "2.1",
                 .flush = flush,
                 .patience = std::chrono::minutes(5)},
                signer};
    }

private:
    const std::string m_folder;
};

qel::TrailRecord Record() {
    qel::TrailRecord record;
    record.user = "mori";
    record.action = "method changed";
    record.before = "dose 0.05 mL";
    record.after = "dose 0.02 mL";
    record.reason = "end points were passed";
    return record;
}

// What an entry costs by the plain calls.
class Bare {
public:
    explicit Bare(const Place& place)
        : m_file(::open(place.Path("bare").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644)) {
        m_key = ::EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519");
        Check(m_file >= 0 && m_key != nullptr);
        m_signature = Sign();
    }
    ~Bare() {
        ::EVP_PKEY_free(m_key);
        ::close(m_file);
    }
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;

    void Append() {
        auto size = static_cast<unsigned>(m_hash.size());
        Check(::EVP_Digest(m_line.data(), m_line.size(), m_hash.data(), &size, ::EVP_sha256(), nullptr) == 1);
        m_signature = Sign();
        Write();
    }
    void Write() { Check(::write(m_file, m_line.data(), m_line.size()) == static_cast<ssize_t>(m_line.size())); }
    void Flush() { Check(::fdatasync(m_file) == 0); }
    void Verify() {
        EVP_MD_CTX* const context = ::EVP_MD_CTX_new();
        Check(::EVP_DigestVerifyInit(context, nullptr, nullptr, nullptr, m_key) == 1 &&
              ::EVP_DigestVerify(context, m_signature.data(), m_signature.size(), m_hash.data(), m_hash.size()) == 1);
        ::EVP_MD_CTX_free(context);
    }

private:
    std::array<unsigned char, 64> Sign() {
        std::array<unsigned char, 64> made;
        std::size_t size = made.size();
        EVP_MD_CTX* const context = ::EVP_MD_CTX_new();
        Check(::EVP_DigestSignInit(context, nullptr, nullptr, nullptr, m_key) == 1 &&
              ::EVP_DigestSign(context, made.data(), &size, m_hash.data(), m_hash.size()) == 1);
        ::EVP_MD_CTX_free(context);
        return made;
    }

    int m_file;
    EVP_PKEY* m_key;
    std::array<unsigned char, 32> m_hash = {};
    std::array<unsigned char, 64> m_signature;
    std::string m_line = std::string(kLineSize - 1, 'x') + '\n';
};

void Append(benchmark::State& state) {
    const Place place;
    qel::Trail trail = place.Trail(qel::TrailFlush::kCaller);
    Check(trail.Open() != 0);
    for (auto _ : state) Check(trail.Append(Record()).has_value());
}

void BareAppend(benchmark::State& state) {
    const Place place;
    Bare bare(place);
    for (auto _ : state) bare.Append();
}

// Both in turn, so that the disk is the same for both; what is counted is the difference.
void AppendedFlushes(benchmark::State& state) {
    const Place place;
    Bare bare(place);
    qel::Trail trail = place.Trail(qel::TrailFlush::kEach);
    Check(trail.Open() != 0);
    Clock::duration ours = {}, plain = {};
    for (auto _ : state) {
        for (int i = 0; i < kInFlush; ++i) {
            const Clock::time_point start = Clock::now();
            Check(trail.Append(Record()).has_value());
            const Clock::time_point middle = Clock::now();
            bare.Write();
            bare.Flush();
            ours += middle - start;
            plain += Clock::now() - middle;
        }
    }
    const double count = static_cast<double>(state.iterations()) * kInFlush;
    state.counters["ours_us"] = std::chrono::duration<double, std::micro>(ours).count() / count;
    state.counters["bare_us"] = std::chrono::duration<double, std::micro>(plain).count() / count;
    state.counters["extra_us"] = std::chrono::duration<double, std::micro>(ours - plain).count() / count;
}

// The same number of entries by one program, or by several at once.
void Processes(benchmark::State& state) {
    constexpr int kEntries = 400;
    const auto programs = static_cast<int>(state.range(0));
    const Place place;
    Check(place.Trail(qel::TrailFlush::kEach).Open() != 0);
    for (auto _ : state) {
        for (int i = 0; i < programs; ++i) {
            if (::fork() != 0) continue;
            qel::Trail trail = place.Trail(qel::TrailFlush::kEach);
            bool isDone = trail.Open() != 0;
            for (int n = 0; n < kEntries / programs && isDone; ++n) isDone = trail.Append(Record()).has_value();
            ::_exit(isDone ? 0 : 1);
        }
        for (int i = 0; i < programs; ++i) {
            int status = 1;
            Check(::wait(&status) > 0 && status == 0);
        }
    }
}

// A trail with so many entries, made once.
const Place& Filled(std::int64_t entries) {
    static const Place small, large;
    const Place& place = entries > 1000 ? large : small;
    qel::Trail trail = place.Trail(qel::TrailFlush::kCaller);
    Check(trail.Open() != 0);
    for (auto left = entries - static_cast<std::int64_t>(trail.Last().number); left > 0; --left)
        Check(trail.Append(Record()).has_value());
    Check(trail.Flush() != 0);
    return place;
}

void CheckAll(benchmark::State& state) {
    const Place& place = Filled(state.range(0));
    for (auto _ : state) {
        qel::TrailReport report;
        Check(qel::CheckTrail(place.Path("t"), {.headFile = place.Path("h")}, report) != 0);
        Check(report.isAnchored && report.findingCount == 0 &&
              report.entries >= static_cast<std::uint64_t>(state.range(0)));
    }
}

void BareVerify(benchmark::State& state) {
    const Place place;
    Bare bare(place);
    for (auto _ : state) {
        for (std::int64_t i = 0; i < state.range(0); ++i) bare.Verify();
    }
}

void Open(benchmark::State& state) {
    const Place& place = Filled(state.range(0));
    for (auto _ : state) {
        qel::Trail trail = place.Trail(qel::TrailFlush::kCaller);
        Check(trail.Open() != 0);
    }
}

// Two cabinets of 16 versions of 16 MiB, made once.
const Place& Archive() {
    static const Place place;
    static const bool isMade = [] {
        std::ofstream(place.Path("source")) << std::string(16 << 20, 'x');
        qel::Trail trail = place.Trail(qel::TrailFlush::kCaller);
        Check(trail.Open() != 0);
        for (const std::string name : {"c", "d"}) {
            qel::RecordedCabinet cabinet(
                trail, {.cabinetPath = place.Path(name.c_str()), .recordPath = place.Path((name + "r").c_str())});
            Check(cabinet.Open() != 0);
            for (int i = 0; i < 16; ++i) Check(cabinet.Register(place.Path("source"), "mori", "why").has_value());
        }
        return true;
    }();
    Check(isMade);
    return place;
}

void CompareOne(const Place& place, const char* name) {
    qel::CabinetRecords records;
    qel::CabinetRecords::Cabinet cabinet;
    Check(records.Read(place.Path("t")) != 0 && records.Compare(place.Path(name), cabinet) != 0);
    for (const qel::RecordedVersion& version : cabinet.versions) Check(!version.IsFinding());
}

void Compare(benchmark::State& state) {
    const Place& place = Archive();
    for (auto _ : state) CompareOne(place, "c");
}

void CompareTwo(benchmark::State& state) {
    const Place& place = Archive();
    for (auto _ : state) {
        const std::jthread other([&] { CompareOne(place, "d"); });
        CompareOne(place, "c");
    }
}

void BareHash(benchmark::State& state) {
    const Place& place = Archive();
    const auto block = std::make_unique<std::array<char, 256 * 1024>>();
    for (auto _ : state) {
        std::ifstream file(place.Path("c"), std::ios::binary);
        EVP_MD_CTX* const context = ::EVP_MD_CTX_new();
        Check(::EVP_DigestInit_ex(context, ::EVP_sha256(), nullptr) == 1);
        while (file.read(block->data(), block->size()) || file.gcount() > 0)
            Check(::EVP_DigestUpdate(context, block->data(), static_cast<std::size_t>(file.gcount())) == 1);
        std::array<unsigned char, 32> hash;
        Check(::EVP_DigestFinal_ex(context, hash.data(), nullptr) == 1);
        benchmark::DoNotOptimize(hash);
        ::EVP_MD_CTX_free(context);
    }
}

BENCHMARK(Compare)->Name("Compare/256MiB")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(CompareTwo)->Name("CompareTwo/256MiB")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BareHash)->Name("BareHash/256MiB")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(Append)->Name("Append/caller");
BENCHMARK(BareAppend)->Name("BareAppend/unflushed");
BENCHMARK(AppendedFlushes)->UseRealTime();
BENCHMARK(Processes)->Arg(1)->Arg(8)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(CheckAll)->Name("Check")->Arg(20'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BareVerify)->Arg(20'000)->Unit(benchmark::kMillisecond);
BENCHMARK(Open)->Arg(20)->Arg(20'000)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
