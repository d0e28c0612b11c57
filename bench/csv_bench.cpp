// Promise: 1,000,000 short fields in lines of ten, to a file, faster than stdio with the same quoting.
//   Csv >= 1.5 CsvPeer
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "qellib10/file/q_csv_file.h"

namespace {

constexpr std::size_t kFields = 1'000'000, kInLine = 10;

// Readings and names; one in ten has a quotation mark.
std::vector<std::string> Fields() {
    std::vector<std::string> fields;
    for (std::size_t i = 0; i < kFields; ++i) {
        fields.push_back(i % kInLine == 9 ? "buffer \"4.01\"" : std::to_string(static_cast<double>(i) / 1000));
    }
    return fields;
}

std::string Name(const char* file) {
    const char* below = std::getenv("TMPDIR");
    return std::string(below != nullptr ? below : "/tmp") + "/qellib10-bench-" + file;
}

void WriteOurs(const std::vector<std::string>& fields, const std::string& name) {
    CQCSVFile file;
    if (!file.Open(name.c_str(), CFile::modeWrite | CFile::modeCreate)) std::abort();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i % kInLine != 0) file.WriteDelimiter();
        file.WriteCSVString(fields[i].c_str());
        if (i % kInLine == kInLine - 1) file.WriteCRLF();
    }
    file.Close();
}

void WritePeer(const std::vector<std::string>& fields, const std::string& name) {
    std::FILE* const file = std::fopen(name.c_str(), "wb");
    if (file == nullptr) std::abort();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i % kInLine != 0) std::fputc(',', file);
        std::fputc('"', file);
        const char* rest = fields[i].c_str();
        while (const char* mark = std::strchr(rest, '"')) {
            std::fwrite(rest, 1, static_cast<std::size_t>(mark - rest) + 1, file);
            std::fputc('"', file);
            rest = mark + 1;
        }
        std::fputs(rest, file);
        std::fputc('"', file);
        if (i % kInLine == kInLine - 1) std::fputs("\r\n", file);
    }
    std::fclose(file);
}

template <class Writer> void Run(benchmark::State& state, const char* file, Writer writer) {
    const auto fields = Fields();
    for (auto _ : state) writer(fields, Name(file));
    state.SetItemsProcessed(state.iterations() * std::int64_t{kFields});
}
void Csv(benchmark::State& state) {
    WriteOurs(Fields(), Name("ours"));
    WritePeer(Fields(), Name("peer"));
    if (!CQFile::CompareFile(Name("ours").c_str(), Name("peer").c_str())) std::abort();
    Run(state, "ours", WriteOurs);
}
void CsvPeer(benchmark::State& state) { Run(state, "peer", WritePeer); }
BENCHMARK(Csv);
BENCHMARK(CsvPeer);

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    std::remove(Name("ours").c_str());
    std::remove(Name("peer").c_str());
}
