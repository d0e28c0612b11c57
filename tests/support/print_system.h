#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "child_process.h"
#include "environment_scope.h"
#include "temp_folder.h"

/// A print server and a printer of the test's own, on sockets that nobody else sees: one queue "lab" whose printer
/// keeps what it was sent. It takes A4 (by itself), A3, A5, B5, Letter and Legal, with margins of 12, 15, 18 and 24
/// points (left, top, right, bottom) and 300 dots per inch, and turns no page. CUPS_SERVER and HOME are set as long as
/// the object exists; every program ends with it.
class PrintSystem {
public:
    /// Whether the programs are there, and which packages they come from.
    static bool IsInstalled();
    static constexpr const char* kNeeds = "needs cups-client, cups-daemon, cups-ipp-utils and dbus-daemon";

    PrintSystem();
    ~PrintSystem();
    PrintSystem(const PrintSystem&) = delete;
    PrintSystem& operator=(const PrintSystem&) = delete;

    /// Whether everything came up.
    explicit operator bool() const { return m_isUp; }
    /// Runs a program. @return whether it succeeded
    bool Run(const std::vector<std::string>& command) const;
    /// The path of document @p number that the printer was sent, once it is whole; empty after 10 seconds.
    std::string Printed(int number) const;
    /// What the printer has reported, its jobs' attributes among it.
    std::string PrinterLog() const { return m_folder.Read("printer.log"); }

private:
    void Start(const std::vector<std::string>& command, const char* log);

    TempFolder m_folder;
    EnvironmentScope m_home, m_server;
    std::vector<std::unique_ptr<ChildProcess>> m_programs;
    bool m_isUp = false;
};

/// Runs @p body in a thread of its own: libcups keeps the server's name for each thread.
void InOwnThread(const std::function<void()>& body);
