// Promise: 1,000,000 short fields in lines of ten, to a file, faster than stdio with the same quoting.
//   Csv >= 1.5 CsvPeer
// Promise: the same table, quoted or bare, read field by field is not slower than by getline and a plain loop, which
// finds neither line breaks in fields nor damage.
//   CsvReadQuoted >= 1.0 CsvReadPeerQuoted
//   CsvReadBare >= 1.0 CsvReadPeerBare
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "qellib10/file/csv_reader.h"
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

void WriteBare(const std::vector<std::string>& fields, const std::string& name) {
    std::ofstream file(name, std::ios::binary);
    for (std::size_t i = 0; i < fields.size(); ++i)
        file << fields[i].substr(0, fields[i].find(' ')) << (i % kInLine == kInLine - 1 ? "\r\n" : ",");
}

// Something of each field, so that two readers can be compared.
struct Seen {
    std::size_t fields = 0, bytes = 0, last = 0;

    void Add(std::string_view field) {
        ++fields;
        bytes += field.size();
        last += static_cast<unsigned char>(field.back());
    }
    bool operator==(const Seen&) const = default;
};

Seen ReadOurs(const std::string& name) {
    CFile file(name.c_str(), CFile::modeRead | CFile::shareDenyWrite);
    qel::CsvReader table(file);
    Seen seen;
    while (table.Next()) {
        for (const std::string_view field : table.Fields()) seen.Add(field);
    }
    return seen;
}

// @return the field at @p at, which moves past the separator
std::string_view NextField(const std::string& line, std::size_t& at, std::string& plain) {
    plain.clear();
    bool isQuoted = false;
    for (; at < line.size(); ++at) {
        if (line[at] == '"' && isQuoted && at + 1 < line.size() && line[at + 1] == '"') {
            plain += line[++at];
        } else if (line[at] == '"') {
            isQuoted = !isQuoted;
        } else if (line[at] == ',' && !isQuoted) {
            break;
        } else {
            plain += line[at];
        }
    }
    ++at;
    return plain;
}

Seen ReadPeer(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    Seen seen;
    std::string plain;
    for (std::string line; std::getline(file, line);) {
        if (line.ends_with('\r')) line.pop_back();
        for (std::size_t at = 0; at <= line.size();) seen.Add(NextField(line, at, plain));
    }
    return seen;
}

template <class Writer, class Reader> void RunRead(benchmark::State& state, Writer write, Reader read) {
    const std::string name = Name("ours");
    write(Fields(), name);
    if (ReadOurs(name) != ReadPeer(name)) std::abort();
    for (auto _ : state) benchmark::DoNotOptimize(read(name));
    state.SetItemsProcessed(state.iterations() * std::int64_t{kFields});
}
void CsvReadQuoted(benchmark::State& state) { RunRead(state, WriteOurs, ReadOurs); }
void CsvReadPeerQuoted(benchmark::State& state) { RunRead(state, WriteOurs, ReadPeer); }
void CsvReadBare(benchmark::State& state) { RunRead(state, WriteBare, ReadOurs); }
void CsvReadPeerBare(benchmark::State& state) { RunRead(state, WriteBare, ReadPeer); }
BENCHMARK(CsvReadQuoted);
BENCHMARK(CsvReadPeerQuoted);
BENCHMARK(CsvReadBare);
BENCHMARK(CsvReadPeerBare);

}  // namespace

int main(int count, char** arguments) {
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    std::remove(Name("ours").c_str());
    std::remove(Name("peer").c_str());
}
