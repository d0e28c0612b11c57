#include "print_system.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <thread>

namespace {

namespace fs = std::filesystem;

constexpr const char* kCupsd = "/usr/sbin/cupsd";
constexpr const char* kPrinter = "/usr/sbin/ippeveprinter";
constexpr const char* kBus = "/usr/bin/dbus-daemon";
constexpr const char* kAdmin = "/usr/sbin/lpadmin";

bool WaitFor(const std::function<bool()>& condition) {
    for (int tries = 0; tries < 500; ++tries) {
        if (condition()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

// @p step is handed a socket and the loopback address with @p port.
template <class Step> auto OnLoopback(int port, Step step) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto result = step(socket, reinterpret_cast<sockaddr*>(&address), socklen_t{sizeof address});
    ::close(socket);
    return result;
}

int FreePort() {
    return OnLoopback(0, [](int socket, sockaddr* address, socklen_t length) {
        ::bind(socket, address, length);
        ::getsockname(socket, address, &length);
        return int{ntohs(reinterpret_cast<sockaddr_in*>(address)->sin_port)};
    });
}

bool Answers(int port) {
    return OnLoopback(port, [](int socket, const sockaddr* address, socklen_t length) {
        return ::connect(socket, address, length) == 0;
    });
}

int Execute(std::vector<std::string> command, const std::string& log) {
    std::vector<char*> arguments;
    for (std::string& argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    const int output = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    ::dup2(output, 1);
    ::dup2(output, 2);
    ::execv(arguments[0], arguments.data());
    return 127;
}

}  // namespace

bool PrintSystem::IsInstalled() {
    return std::ranges::all_of(std::initializer_list<const char*>{kCupsd, kPrinter, kBus, kAdmin},
                               [](const char* program) { return ::access(program, X_OK) == 0; });
}

PrintSystem::PrintSystem()
    : m_home("HOME", m_folder.Posix().c_str()), m_server("CUPS_SERVER", m_folder.Posix("cups.sock").c_str()) {
    const std::string root = m_folder.Posix();
    for (const char* const name : {"cache", "run", "spool/tmp", "log", "ssl", "out"})
        fs::create_directories(m_folder.Posix(name));
    fs::permissions(root, fs::perms(0755));  // the server's helpers run as another user
    for (const auto& entry : fs::directory_iterator(QELLIB10_TEST_DATA "/print_system")) {
        std::ifstream file(entry.path());
        std::string text(std::istreambuf_iterator<char>(file), {});
        for (std::size_t at = 0; (at = text.find('@', at)) != std::string::npos;) text.replace(at, 1, root);
        m_folder.Write(entry.path().filename(), text);
    }

    // Any bus will do for the printer's announcements; nobody listens on this one.
    Start({kBus, "--config-file=" + root + "/bus.conf", "--nofork", "--nopidfile"}, "bus.log");
    if (!WaitFor([&] { return m_folder.Has("bus"); })) return;
    const int port = FreePort();
    {
        const EnvironmentScope address("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + root + "/bus").c_str());
        Start({kPrinter, "-r", "off", "-n", "localhost", "-p", std::to_string(port), "-d", root + "/out", "-k", "-c",
               "/bin/true", "-a", root + "/attributes", "-vv", "Test printer"},
              "printer.log");
    }
    Start({kCupsd, "-f", "-c", root + "/cupsd.conf", "-s", root + "/cups-files.conf"}, "cupsd.log");
    const std::string printer = "ipp://localhost:" + std::to_string(port) + "/ipp/print";
    m_isUp = WaitFor([&] { return m_folder.Has("cups.sock") && Answers(port); }) &&
             Run({kAdmin, "-p", "lab", "-E", "-v", printer, "-m", "everywhere"}) &&
             // The server asks the printer what it can do only after the reply.
             WaitFor([&] {
                 return Run({"/bin/sh", "-c", "lpoptions -p lab | grep -q Everywhere"});
             });
}

PrintSystem::~PrintSystem() {
    for (; !m_programs.empty(); m_programs.pop_back()) {
        ::kill(m_programs.back()->Id(), SIGTERM);  // the server ends its helpers then
        m_programs.back()->Wait();
    }
}

void PrintSystem::Start(const std::vector<std::string>& command, const char* log) {
    const std::string path = m_folder.Posix(log);
    m_programs.push_back(std::make_unique<ChildProcess>([&] { return Execute(command, path); }));
}

bool PrintSystem::Run(const std::vector<std::string>& command) const {
    return InChild([&] { return Execute(command, m_folder.Posix("run.log")); }) == 0;
}

std::string PrintSystem::Printed(int number) const {
    std::string found;
    WaitFor([&] {
        for (const auto& entry : fs::directory_iterator(m_folder.Posix("out"))) {
            const std::string name = entry.path().filename();
            if (name.starts_with(std::to_string(number) + "-") && m_folder.Read("out/" + name).ends_with("%%EOF\n"))
                found = entry.path();
        }
        return !found.empty();
    });
    return found;
}

void InOwnThread(const std::function<void()>& body) { std::thread(body).join(); }
