// Promises: registering 1 MiB in a cabinet compared with inserting a flushed row with a blob of 1 MiB in SQLite; it
// takes the same time however much the cabinet contains. Taking versions of 1 MiB out of 200 compared with reading and
// writing 1 MiB.
//   Register/1MiB >= 0.7 RegisterPeer/*
//   Register/200MiB >= 0.7 RegisterPeer/*
//   Register/2GiB >= 0.7 RegisterPeer/*
//   Register/2GiB <= 1.2 Register/1MiB
//   TakeOut/* >= 0.85 TakeOutPeer/*
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sqlite3.h>
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

// A folder with a cabinet and the files that are registered in it.
class Workplace {
public:
    Workplace() {
        std::string pattern = fs::temp_directory_path() / "qellib10-bench-XXXXXX";
        Check(::mkdtemp(pattern.data()) != nullptr);
        m_folder = pattern;
        std::string data(kData, '\0');
        std::mt19937 random(1);
        for (char& byte : data) byte = static_cast<char>(random());
        Write(Path("source"), data);
        CHistoryCabinetFile first;
        Check(first.Create(Path("cabinet").c_str()) && first.RegistNewVersion(Path("source").c_str()));
    }
    ~Workplace() { fs::remove_all(m_folder); }
    Workplace(const Workplace&) = delete;
    Workplace& operator=(const Workplace&) = delete;

    fs::path Path(const char* name) const { return m_folder / name; }

    void FillWithVersions() const {
        const std::string one = Read(Path("cabinet"));
        std::string all = Header(one, kHeader + (kVersions - 1) * kVersion, kVersions);
        for (DWORD version = 1; version <= kVersions; ++version) {
            all += one.substr(kHeader);
            Put(all, all.size() - kVersion + 4, version);
        }
        Write(Path("cabinet"), all);
        ::sync();
    }
    // Makes the only version this large, most of it a hole: a registration does not read it.
    void StretchTo(std::uint64_t size) const {
        std::string bytes = Read(Path("cabinet")).substr(0, kHeader + kVersionHeader);
        Put(bytes, kHeader + 8, size - bytes.size());
        Write(Path("cabinet"), bytes);
        fs::resize_file(Path("cabinet"), size);
        ::sync();
    }

private:
    static std::string Header(const std::string& cabinet, std::size_t latestAt, DWORD versions) {
        std::string header = cabinet.substr(0, kHeader);
        Put(header, 4, latestAt);
        Put(header, 8, versions);
        qel::CheckSums sums;
        sums.Add({reinterpret_cast<const unsigned char*>(header.data()), 28});
        Put(header, 28, sums.Sum());
        Put(header, 32, sums.Crc());
        return header;
    }

    fs::path m_folder;
};

const Workplace& Usual() {
    static const Workplace place;
    static const bool isFilled = (place.FillWithVersions(), true);
    Check(isFilled);
    return place;
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

void Register(benchmark::State& state, std::uint64_t size) {
    const Workplace place;
    place.StretchTo(size);
    CHistoryCabinetFile cabinet;
    Check(cabinet.Open(place.Path("cabinet").c_str(), 0) != 0);
    const std::string source = place.Path("source");
    for (auto _ : state) Check(cabinet.RegistNewVersion(source.c_str()) != 0);
    Check(cabinet.GetLatestVersionFile(place.Path("latest").c_str()) != 0);
    Check(CQFile::CompareFile(place.Path("latest").c_str(), source.c_str()) != 0);
}
// Reads the file too.
void RegisterPeer(benchmark::State& state, const char* journal) {
    const Workplace place;
    sqlite3* database = nullptr;
    const auto run = [&](const std::string& sql) {
        Check(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
    };
    Check(sqlite3_open(place.Path("database").c_str(), &database) == SQLITE_OK);
    run(std::string("pragma journal_mode=") + journal + "; pragma synchronous=full");
    run("create table versions (number integer primary key, data blob)");
    sqlite3_stmt* insert = nullptr;
    Check(sqlite3_prepare_v2(database, "insert into versions (data) values (?)", -1, &insert, nullptr) == SQLITE_OK);
    for (auto _ : state) {
        const std::string data = Read(place.Path("source"));
        sqlite3_bind_blob(insert, 1, data.data(), static_cast<int>(data.size()), SQLITE_STATIC);
        Check(sqlite3_step(insert) == SQLITE_DONE && sqlite3_reset(insert) == SQLITE_OK);
    }
    sqlite3_finalize(insert);
    sqlite3_close(database);
}
constexpr int kRegistrations = 50;
BENCHMARK_CAPTURE(Register, 1MiB, 1 << 20)->UseRealTime()->Iterations(kRegistrations);
BENCHMARK_CAPTURE(Register, 200MiB, 200 << 20)->UseRealTime()->Iterations(kRegistrations);
BENCHMARK_CAPTURE(Register, 2GiB, std::uint64_t{2} << 30)->UseRealTime()->Iterations(kRegistrations);
BENCHMARK_CAPTURE(RegisterPeer, Delete, "delete")->UseRealTime()->Iterations(kRegistrations);
BENCHMARK_CAPTURE(RegisterPeer, Truncate, "truncate")->UseRealTime()->Iterations(kRegistrations);
BENCHMARK_CAPTURE(RegisterPeer, Wal, "wal")->UseRealTime()->Iterations(kRegistrations);

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
