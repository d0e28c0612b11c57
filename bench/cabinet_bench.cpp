// Promises about a history cabinet of 200 versions of 1 MiB. Registering 1 MiB stands beside one copy of the cabinet in
// the kernel plus writing and flushing 1 MiB; where the file system shares blocks (XFS, left out where none can be
// mounted) beside writing and flushing 1 MiB; taking out a version beside reading and writing 1 MiB.
//   Register <= 1.3 RegisterPeer
//   RegisterWithReflinks <= 2 RegisterWithReflinksPeer
//   TakeOut/* >= 0.85 TakeOutPeer/*
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <span>
#include <string>

#include "qellib10/file/check_sums.h"
#include "qellib10/platform/endian.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/secure/history_cabinet_file.h"

namespace {

namespace fs = std::filesystem;

constexpr DWORD kVersions = 200;
constexpr std::size_t kHeader = 36, kVersionHeader = 20, kData = 1 << 20, kVersion = kVersionHeader + kData;

void Check(bool holds) {
    if (!holds) std::abort();
}

void Write(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

std::string Read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void Put(std::string& bytes, std::size_t offset, std::size_t number) {
    qel::PutNumber(std::as_writable_bytes(std::span(bytes)), offset, static_cast<DWORD>(number));
}

// As the caller has it: the benchmarks set TMPDIR, so that backups stand on the cabinet's file system.
const fs::path theFolder = fs::temp_directory_path();

// A folder that holds the cabinet, the source of further versions, and the backups.
class Workplace {
public:
    explicit Workplace(const fs::path& below) {
        std::string pattern = below / "qellib10-bench-XXXXXX";
        Check(::mkdtemp(pattern.data()) != nullptr);
        m_folder = pattern;
        ::setenv("TMPDIR", pattern.c_str(), 1);
        std::string data(kData, '\0');
        std::mt19937 random(1);
        for (char& byte : data) byte = static_cast<char>(random());
        Write(Path("source"), data);

        CHistoryCabinetFile first;
        Check(first.Create(Path("cabinet").c_str()) && first.RegistNewVersion(Path("source").c_str()));
        first.Close();
        const std::string one = Read(Path("cabinet"));
        m_header = one.substr(0, kHeader);
        Put(m_header, 4, kHeader + (kVersions - 1) * kVersion);
        Put(m_header, 8, kVersions);
        qel::CheckSums sums;
        sums.Add({reinterpret_cast<const unsigned char*>(m_header.data()), 28});
        Put(m_header, 28, sums.Sum());
        Put(m_header, 32, sums.Crc());
        std::string all = m_header;
        for (DWORD version = 1; version <= kVersions; ++version) {
            all += one.substr(kHeader);
            Put(all, all.size() - kVersion + 4, version);
        }
        Write(Path("cabinet"), all);
        ::sync();
    }
    ~Workplace() { fs::remove_all(m_folder); }
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    fs::path Path(const char* name) const { return m_folder / name; }
    // As it was before a version was appended.
    void Reset() const {
        const qel::Descriptor file(::open(Path("cabinet").c_str(), O_RDWR | O_CLOEXEC));
        Check(::ftruncate(file.Get(), kHeader + kVersions * kVersion) == 0);
        qel::WriteFullyAt(file, std::as_bytes(std::span(m_header)), 0, "cabinet");
        ::sync();
    }

private:
    fs::path m_folder;
    std::string m_header;
};

const Workplace& Usual() {
    static const Workplace place(theFolder);
    return place;
}

// A file system that shares blocks.
class Xfs {
public:
    Xfs() : m_image(theFolder / ("qellib10-bench-xfs-" + std::to_string(::getpid()))) {
        const std::string image = m_image.string() + ".img", folder = m_image.string();
        fs::create_directory(m_image);
        m_isMounted = Run("truncate -s 1G " + image) && Run("mkfs.xfs -q -m reflink=1 " + image) &&
                      Run("mount -o loop " + image + " " + folder);
        if (m_isMounted) m_place = std::make_unique<Workplace>(m_image);
    }
    ~Xfs() {
        m_place.reset();
        if (m_isMounted) Run("umount " + m_image.string());
        fs::remove(m_image);
        fs::remove(m_image.string() + ".img");
    }
    Xfs(const Xfs&) = delete;
    Xfs& operator=(const Xfs&) = delete;

    const Workplace* Place() const { return m_place.get(); }

private:
    static bool Run(const std::string& command) { return std::system((command + " 2>/dev/null").c_str()) == 0; }

    fs::path m_image;
    bool m_isMounted = false;
    std::unique_ptr<Workplace> m_place;
};

const Workplace* WithReflinks() {
    static const Xfs xfs;
    return xfs.Place();
}

qel::Descriptor Open(const fs::path& path, int flags) {
    qel::Descriptor file(::open(path.c_str(), flags | O_CLOEXEC, 0666));
    Check(static_cast<bool>(file));
    return file;
}

// Block by block.
void Copy1MiB(const qel::Descriptor& from, std::uint64_t offset, const qel::Descriptor& to) {
    const auto block = qel::MakeIoBlock();
    for (std::size_t done = 0; done < kData; done += qel::IoBlock::kSize) {
        Check(qel::ReadFullyAt(from, block->bytes, offset + done, "from") == qel::IoBlock::kSize);
        qel::WriteFully(to, block->bytes, "to");
    }
}

template <class Body> void RunOn(benchmark::State& state, const Workplace* place, Body&& body) {
    if (place == nullptr) {
        state.SkipWithError("no XFS can be mounted here");
        return;
    }
    ::setenv("TMPDIR", place->Path("").c_str(), 1);
    for (auto _ : state) {
        body(*place);
        state.PauseTiming();
        fs::remove(place->Path("copy"));
        place->Reset();
        state.ResumeTiming();
    }
}

void RegisterOne(const Workplace& place) {
    CHistoryCabinetFile cabinet;
    Check(cabinet.Open(place.Path("cabinet").c_str(), 0) && cabinet.RegistNewVersion(place.Path("source").c_str()));
}
void WriteAndFlush(const Workplace& place) {
    const qel::Descriptor cabinet = Open(place.Path("cabinet"), O_WRONLY | O_APPEND);
    Copy1MiB(Open(place.Path("source"), O_RDONLY), 0, cabinet);
    Check(::fdatasync(cabinet.Get()) == 0);
}
void CopyWriteAndFlush(const Workplace& place) {
    const qel::Descriptor cabinet = Open(place.Path("cabinet"), O_RDONLY);
    const qel::Descriptor copy = Open(place.Path("copy"), O_WRONLY | O_CREAT | O_EXCL);
    for (ssize_t copied = 1; copied > 0;) {
        copied = ::copy_file_range(cabinet.Get(), nullptr, copy.Get(), nullptr, 1 << 30, 0);
        Check(copied >= 0);
    }
    WriteAndFlush(place);
}
void Register(benchmark::State& state) { RunOn(state, &Usual(), RegisterOne); }
void RegisterPeer(benchmark::State& state) { RunOn(state, &Usual(), CopyWriteAndFlush); }
void RegisterWithReflinks(benchmark::State& state) { RunOn(state, WithReflinks(), RegisterOne); }
void RegisterWithReflinksPeer(benchmark::State& state) { RunOn(state, WithReflinks(), WriteAndFlush); }
BENCHMARK(Register)->UseRealTime()->Iterations(10);
BENCHMARK(RegisterPeer)->UseRealTime()->Iterations(10);
BENCHMARK(RegisterWithReflinks)->UseRealTime()->Iterations(50);
BENCHMARK(RegisterWithReflinksPeer)->UseRealTime()->Iterations(50);

void TakeOut(benchmark::State& state, DWORD version) {
    const Workplace& place = Usual();
    const std::string target = place.Path("target");
    CHistoryCabinetFile cabinet;
    Check(cabinet.Open(place.Path("cabinet").c_str(), 1) != 0);
    for (auto _ : state) {
        Check((version == kVersions ? cabinet.GetLatestVersionFile(target.c_str())
                                    : cabinet.GetVersionFile(version, target.c_str())) != 0);
    }
    Check(CQFile::CompareFile(target.c_str(), place.Path("source").c_str()) != 0);
}
void TakeOutPeer(benchmark::State& state, DWORD version) {
    const Workplace& place = Usual();
    const qel::Descriptor cabinet = Open(place.Path("cabinet"), O_RDONLY);
    for (auto _ : state) {
        Copy1MiB(cabinet, kHeader + (version - 1) * kVersion + kVersionHeader,
                 Open(place.Path("target"), O_WRONLY | O_CREAT | O_TRUNC));
    }
    Check(CQFile::CompareFile(place.Path("target").c_str(), place.Path("source").c_str()) != 0);
}
BENCHMARK_CAPTURE(TakeOut, Latest, kVersions)->UseRealTime();
BENCHMARK_CAPTURE(TakeOutPeer, Latest, kVersions)->UseRealTime();
BENCHMARK_CAPTURE(TakeOut, Middle, kVersions / 2)->UseRealTime();
BENCHMARK_CAPTURE(TakeOutPeer, Middle, kVersions / 2)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
