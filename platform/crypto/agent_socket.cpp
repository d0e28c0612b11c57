#include "qellib10/platform/crypto/agent_socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/descriptor.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/uninterrupted.h"

namespace qel {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::size_t kLongestAnswer = 256 * 1024;
constexpr std::chrono::hours kLongestLimit(24);  // so that the end is a time

// A connection whose steps all end at one time.
class Line {
public:
    Line(const std::string& path, Clock::time_point end)
        : m_path(path), m_end(end), m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        if (!m_socket) ThrowErrno(errno, path);
        if (path.size() >= sizeof address.sun_path) ThrowErrno(ENAMETOOLONG, path);
        std::ranges::copy(path, address.sun_path);
        const auto* const to = reinterpret_cast<const sockaddr*>(&address);
        // A full queue of the listener is EAGAIN: waiting for the socket would not end.
        if (Uninterrupted([&] { return ::connect(m_socket.Get(), to, sizeof address); }) != 0) ThrowErrno(errno, path);
    }

    void Send(std::string_view bytes) {
        while (!bytes.empty()) {
            Await(POLLOUT);
            const ssize_t sent = ::send(m_socket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent < 0 && errno != EAGAIN && errno != EINTR) ThrowErrno(errno, m_path);
            bytes.remove_prefix(sent > 0 ? static_cast<std::size_t>(sent) : 0);
        }
    }

    std::string Receive(std::size_t size) {
        std::string bytes(size, '\0');
        for (std::size_t done = 0; done < size;) {
            Await(POLLIN);
            const ssize_t got = ::recv(m_socket.Get(), bytes.data() + done, size - done, 0);
            if (got == 0) throw DataError("the agent ended the connection");
            if (got < 0 && errno != EAGAIN && errno != EINTR) ThrowErrno(errno, m_path);
            done += got > 0 ? static_cast<std::size_t>(got) : 0;
        }
        return bytes;
    }

private:
    // A signal that comes again and again does not make the time longer.
    void Await(short event) const {
        for (;;) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_end - Clock::now()).count();
            if (left <= 0) throw DataError("the agent does not respond in time");
            pollfd wanted = {m_socket.Get(), event, 0};
            const int wait = static_cast<int>(std::min<std::int64_t>(left, std::numeric_limits<int>::max()));
            const int ready = ::poll(&wanted, 1, wait);
            if (ready > 0) return;
            if (ready < 0 && errno != EINTR) ThrowErrno(errno, m_path);
        }
    }

    const std::string& m_path;
    Clock::time_point m_end;
    Descriptor m_socket;
};

}  // namespace

std::string AskAgent(const std::string& posixPath, std::string_view question, std::chrono::milliseconds limit) {
    Line line(posixPath, Clock::now() + std::min<std::chrono::milliseconds>(limit, kLongestLimit));
    std::string framed;
    for (const int shift : {24, 16, 8, 0}) framed += static_cast<char>(question.size() >> shift & 0xFF);
    framed += question;
    line.Send(framed);
    std::size_t size = 0;
    for (const char byte : line.Receive(4)) size = size << 8 | static_cast<unsigned char>(byte);
    if (size == 0 || size > kLongestAnswer) throw DataError("the agent's answer is empty or too long");
    return line.Receive(size);
}

}  // namespace qel
