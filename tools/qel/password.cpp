#include "password.h"

#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

namespace tool {
namespace {

constexpr char kInterrupt = 3, kEndOfText = 4, kBackspace = 8, kKillLine = 21, kDelete = 127;

// What is typed is not shown, and ^C arrives as a character: so the terminal is always put back. Signals that would end
// the program wait until then.
class SilentTerminal {
public:
    SilentTerminal() : m_terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        if (!m_terminal || ::tcgetattr(m_terminal.Get(), &m_before) != 0)
            throw Failure("there is no terminal to ask for a password; --password-fd reads it from elsewhere");
        sigset_t waiting;
        ::sigemptyset(&waiting);
        for (const int number : {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGTSTP}) ::sigaddset(&waiting, number);
        ::pthread_sigmask(SIG_BLOCK, &waiting, &m_signals);
        termios silent = m_before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | ISIG);
        silent.c_cc[VMIN] = 1;
        silent.c_cc[VTIME] = 0;
        ::tcsetattr(m_terminal.Get(), TCSAFLUSH, &silent);
    }
    ~SilentTerminal() {
        ::tcsetattr(m_terminal.Get(), TCSAFLUSH, &m_before);
        Write("\n");
        ::pthread_sigmask(SIG_SETMASK, &m_signals, nullptr);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

    int Number() const noexcept { return m_terminal.Get(); }
    // A terminal that takes no prompt may still give an answer.
    bool Write(std::string_view text) const noexcept {
        return ::write(m_terminal.Get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
    }

private:
    qel::Descriptor m_terminal;
    termios m_before = {};
    sigset_t m_signals = {};
};

// Byte by byte: the next line is another password. Nothing at the end.
std::optional<char> NextByte(int descriptor) {
    char byte = 0;
    for (;;) {
        const ssize_t size = ::read(descriptor, &byte, 1);
        if (size == 1) return byte;
        if (size == 0) return std::nullopt;
        if (errno != EINTR) throw Failure(std::string("the password cannot be read: ") + ::strerror(errno));
    }
}

void ReadLine(int descriptor, Password& password) {
    bool isThere = false;
    for (;;) {
        const std::optional<char> byte = NextByte(descriptor);
        if (!byte && !isThere) throw Failure("there is no password to read");
        if (!byte || *byte == '\n') return;
        isThere = true;
        password.Add(*byte);
    }
}

void ReadTyped(Password& password, const char* prompt) {
    const SilentTerminal terminal;
    terminal.Write(prompt);
    for (;;) {
        const std::optional<char> byte = NextByte(terminal.Number());
        if (!byte || *byte == kInterrupt || *byte == kEndOfText) throw Failure("cancelled");
        if (*byte == '\n' || *byte == '\r') return;
        if (*byte == kBackspace || *byte == kDelete) {
            password.RemoveLast();
        } else if (*byte == kKillLine) {
            password.Clear();
        } else {
            password.Add(*byte);
        }
    }
}

}  // namespace

Password::~Password() { Clear(); }

void Password::Add(char byte) {
    if (m_text.size() == kLongest) throw Failure("the password is longer than 1024 bytes");
    m_text += byte;
}

void Password::RemoveLast() {
    while (!m_text.empty()) {
        const bool isFirst = (static_cast<unsigned char>(m_text.back()) & 0xC0) != 0x80;
        m_text.pop_back();
        if (isFirst) return;
    }
}

void Password::Clear() {
    m_text.resize(m_text.capacity());
    ::explicit_bzero(m_text.data(), m_text.size());
    m_text.clear();
}

void PasswordSource::Read(Password& password, const char* prompt) const {
    descriptor >= 0 ? ReadLine(descriptor, password) : ReadTyped(password, prompt);
}

void PasswordSource::ReadNew(Password& password, const char* prompt) const {
    Read(password, prompt);
    if (password.View().empty()) throw Failure("a password cannot be empty");
    if (descriptor >= 0) return;
    Password again;
    Read(again, "The same again: ");
    if (again.View() != password.View()) throw Failure("the two passwords are not the same");
}

Failure PersonRefusal(const char* otherwise, Status ofData) {
    const qel::Failure failure = qel::LastFailure();
    if (failure.kind == qel::FailureKind::kRefused) return Failure(Shown(failure.text));
    return LastRefusal(otherwise, ofData);
}

void AddPasswordOption(CLI::App& command, PasswordSource& source) {
    command
        .add_option("--password-fd", source.descriptor,
                    "Read passwords, a line each, from this file descriptor instead of the terminal")
        ->transform(WholeNumber(0, 1023))
        ->type_name("N");
}

}  // namespace tool
