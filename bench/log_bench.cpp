// Promises: a line of the log compared with the same bytes written by the plain calls needed for exclusive use of the
// file; eight processes at once on one file, without lost or mixed lines, compared with eight that make these calls.
// Append, which keeps nobody out, shows what exclusive use costs: the plain calls take 2.3 times as long. So 0.7 times
// an append is impossible for a file that is opened exclusively for each line. Both make seven system calls, and all
// are needed: without checking the name, a line could be lost in a file that was replaced meanwhile; without unlocking,
// a child of vfork would block the others.
//   Line<Ours> >= 0.85 Line<Alone>
//   Processes<Ours> >= 0.6 Processes<Alone>
//   Line<Ours> beside Line<Append>
//   Processes<Ours> beside Processes<Append>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "qellib10/file/log.h"

namespace {

constexpr int kProcesses = 8, kLines = 1000;
constexpr std::string_view kTime = "[2012/01/03 09:05:07],";

void Check(bool holds) {
    if (!holds) std::abort();
}

std::string FileName() {
    const char* below = std::getenv("TMPDIR");
    return std::string(below != nullptr ? below : "/tmp") + "/qellib10-bench-log-" + std::to_string(::getpid());
}

// The log file of one benchmark, initially empty.
class LogFile {
public:
    LogFile() { CLog::SetLogFile(m_name.c_str()); }
    ~LogFile() { Remove(); }
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    const std::string& Name() const { return m_name; }
    void Remove() const { ::unlink(m_name.c_str()); }
    std::string Bytes() const {
        std::ifstream file(m_name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    const std::string m_name = FileName();
};

struct Ours {
    static void Write(const std::string&, const std::string& message) { CLog::LogOut(0, message.c_str()); }
};

std::string LineOf(const std::string& message) { return std::string(kTime) + message + "\r\n"; }

void WriteAll(int file, const std::string& line) {
    Check(file >= 0 && ::write(file, line.data(), line.size()) == static_cast<ssize_t>(line.size()));
}

// The calls needed for exclusive use of the file with this name.
struct Alone {
    static void Write(const std::string& name, const std::string& message) {
        const std::string line = LineOf(message);
        const int file = ::open(name.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
        SetLock(file, F_WRLCK);
        struct stat opened = {}, named = {};
        Check(::fstat(file, &opened) == 0 && ::stat(name.c_str(), &named) == 0 && opened.st_ino == named.st_ino);
        WriteAll(file, line);
        SetLock(file, F_UNLCK);  // a child may hold a copy of the descriptor
        ::close(file);
    }
    static void SetLock(int file, short type) {
        struct flock lock = {};
        lock.l_type = type;
        Check(::fcntl(file, F_OFD_SETLKW, &lock) == 0);
    }
};

struct Append {
    static void Write(const std::string& name, const std::string& message) {
        const std::string line = LineOf(message);
        const int file = ::open(name.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
        WriteAll(file, line);
        ::close(file);
    }
};

std::string Message(int process, int line) {
    return "burette 1: dose " + std::to_string(line) + " of channel " + std::to_string(process) + " is done";
}

template <class Writer> void Line(benchmark::State& state) {
    const LogFile log;
    const std::string message = Message(0, 0);
    for (auto _ : state) Writer::Write(log.Name(), message);
    const std::size_t length = kTime.size() + message.size() + 2;
    Check(log.Bytes().size() % length == 0 && log.Bytes().ends_with(message + "\r\n"));
    state.SetItemsProcessed(state.iterations());
}

// All lines of every process are there, complete and in order.
void CheckLines(const std::string& bytes) {
    std::array<int, kProcesses> next{};
    std::string_view rest = bytes;
    while (!rest.empty()) {
        Check(rest.size() > kTime.size());
        rest.remove_prefix(kTime.size());
        int process = 0;
        const auto isNext = [&] { return rest.starts_with(Message(process, next[process]) + "\r\n"); };
        while (!isNext()) Check(++process < kProcesses);
        rest.remove_prefix(Message(process, next[process]++).size() + 2);
    }
    for (const int lines : next) Check(lines == kLines);
}

template <class Writer> void WriteLines(int process, const std::string& name) {
    for (int line = 0; line < kLines; ++line) Writer::Write(name, Message(process, line));
}

// Seconds from the moment when all processes may start to the end of the last one.
template <class Writer> double RunProcesses(const std::string& name) {
    int gate[2];  // opens when its writing end is closed everywhere
    Check(::pipe(gate) == 0);
    for (int process = 0; process < kProcesses; ++process) {
        if (::fork() != 0) continue;
        ::close(gate[1]);
        char none = 0;
        Check(::read(gate[0], &none, 1) == 0);
        WriteLines<Writer>(process, name);
        ::_exit(0);
    }
    ::usleep(20'000);  // until all are waiting at the gate
    const auto start = std::chrono::steady_clock::now();
    ::close(gate[1]);
    for (int process = 0; process < kProcesses; ++process) {
        int status = 0;
        Check(::wait(&status) > 0 && status == 0);
    }
    ::close(gate[0]);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <class Writer> void Processes(benchmark::State& state) {
    const LogFile log;
    for (auto _ : state) {
        state.SetIterationTime(RunProcesses<Writer>(log.Name()));
        CheckLines(log.Bytes());
        log.Remove();
    }
    state.SetItemsProcessed(state.iterations() * kProcesses * kLines);
}

BENCHMARK_TEMPLATE(Line, Ours);
BENCHMARK_TEMPLATE(Line, Alone);
BENCHMARK_TEMPLATE(Line, Append);
BENCHMARK_TEMPLATE(Processes, Ours)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Processes, Alone)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(Processes, Append)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
