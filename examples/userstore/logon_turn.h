#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace userstore {

/// The turn of one logon among all that name the same user, in whatever program: while it is had no other is checked.
/// It is a file beside the store, for those who may write the store, held by a lock that goes with its process and
/// removed at the end; what a killed program leaves of it is used and removed by the next logon.
///
/// Waiting has no order: whoever asks first after a turn ends has the next one. So programs that guess without a pause
/// can delay the right password, by the time of a check each, and at worst until it is refused after half a minute.
class LogonTurn {
public:
    /// Waits up to half a minute.
    /// @param storePath of the store, POSIX; links to one store lead to one turn
    /// @param foldedName of a user, or of nobody: it makes no difference
    /// @throws StoreError when the others do not come to an end, or the file cannot be made
    LogonTurn(const std::string& storePath, const std::string& foldedName);
    ~LogonTurn();
    LogonTurn(const LogonTurn&) = delete;
    LogonTurn& operator=(const LogonTurn&) = delete;

private:
    bool Take();

    std::string m_store, m_path;
    qel::Descriptor m_file;
};

}  // namespace userstore
