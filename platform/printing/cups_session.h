#pragma once

#include <chrono>
#include <memory>
#include <span>

#include "qellib10/platform/text/string.h"

using http_t = struct _http_s;
using cups_dest_t = struct cups_dest_s;
using cups_dinfo_t = struct _cups_dinfo_s;

namespace qel {

struct CupsInfoDeleter {
    void operator()(cups_dinfo_t* info) const noexcept;
};
using CupsInfo = std::unique_ptr<cups_dinfo_t, CupsInfoDeleter>;

/// One operation's connection to the print server, and the server's queues. The shared connection of libcups would wait
/// two minutes for a server that does not respond. Creating the first session makes the process ignore SIGPIPE, because
/// libcups does that.
class CupsSession {
public:
    CupsSession();
    ~CupsSession();
    CupsSession(const CupsSession&) = delete;
    CupsSession& operator=(const CupsSession&) = delete;

    http_t* Http() const noexcept { return m_pHttp; }
    std::span<cups_dest_t> Queues() const noexcept { return m_queues; }
    /// The queue with this name in lists; null if there is none.
    cups_dest_t* Find(const CString& name) const;
    /// What the queue can do; null if the server does not say.
    CupsInfo InfoOf(cups_dest_t* queue) const;

    /// Records that the server refused, or does not have, the printer. @return false
    bool Refuse(const CString& printer) const;

    /// From now on the time limit counts from the last byte that was transferred.
    void BeginTransfer();

private:
    static int HasTimeLeft(http_t* http, void* session);

    std::chrono::steady_clock::time_point m_deadline;
    http_t* m_pHttp;
    std::span<cups_dest_t> m_queues;
};

/// A queue's name in lists, in the code page: NAME, NAME/INSTANCE, or PDF@cups for a queue called PDF.
CString NameOfQueue(const cups_dest_t& queue);

/// An option or attribute of the queue as text (UTF-8); empty if it has none.
const char* OptionOf(const cups_dest_t& queue, const char* name);

}  // namespace qel
