#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "qellib10/platform/fork_safe_lock.h"
#include "qellib10/platform/registry/open_keys.h"
#include "qellib10/platform/registry/registry_location.h"
#include "qellib10/platform/registry/registry_tree.h"
#include "qellib10/platform/storage/backoff.h"
#include "qellib10/platform/storage/turn.h"

namespace qel {

/// One of the three trees, shared by the threads of this process: its lock, its open keys, and its connection. The
/// connection is opened when needed, opened again if the database was replaced or the environment names another one,
/// and abandoned in a forked child. Failures throw RegistryError.
class RegistryStore {
public:
    /// The store that @p handle belongs to.
    static RegistryStore& Of(HKEY handle);

    RegistryKeyId KeyOf(HKEY handle);
    HKEY OpenKey(RegistryKeyId key);
    void CloseKey(HKEY handle);

    class Reading;
    class Writing;

private:
    RegistryStore(RegistryRoot root, void (*abandonInChild)());

    template <RegistryRoot kRoot> static RegistryStore& One();
    void AbandonInChild();

    // Identifies the file that a name refers to.
    struct FileId {
        std::uint64_t device, number;
        bool operator==(const FileId&) const = default;
    };
    static std::optional<FileId> IdOf(const std::string& path);

    // Whether the tree is the user's own: programs keep passwords of instruments in it.
    bool IsPrivate() const { return m_root == RegistryRoot::CurrentUser; }
    // @param id the file at @p path now, if any
    void Open(const std::string& path, const std::optional<FileId>& id, bool create);
    RegistryTree* OpenForReading();
    void BeginWriting(bool create);
    void RollBack();
    void End();
    void GetInLine(const std::string& path);
    bool WaitForOthers();

    ForkSafeLock m_lock;
    RegistryRoot m_root;
    ForkSafeLock m_keysLock;  // so that a request for a handle does not wait for a change to be written
    OpenKeys m_keys;
    std::unique_ptr<RegistryTree> m_tree;
    std::string m_path;          // of the database that is open,
    std::optional<FileId> m_id;  // and its file
    bool m_isMade = false;       // the database is known to contain a tree
    int m_writings = 0;          // active, nested
    bool m_isLost = false;       // this process was forked within one
    std::optional<Turn> m_turn;  // of this process, to write or when reading has to wait
    Backoff m_patience;          // when waiting for other processes
};

/// Holds the lock while a tree is read.
class RegistryStore::Reading {
public:
    explicit Reading(RegistryStore& store) : m_guard(store.m_lock), m_ending(store), m_tree(store.OpenForReading()) {}

    /// Null if there is no database.
    RegistryTree* Tree() const noexcept { return m_tree; }

private:
    struct Ending {
        explicit Ending(RegistryStore& of) : store(of) {}
        ~Ending() { store.End(); }
        Ending(const Ending&) = delete;
        Ending& operator=(const Ending&) = delete;
        RegistryStore& store;
    };

    std::unique_lock<ForkSafeLock> m_guard;
    Ending m_ending;
    RegistryTree* m_tree;
};

/// Holds the lock while a tree is changed. The outermost one of a thread is a transaction, rolled back unless
/// committed.
class RegistryStore::Writing {
public:
    /// @param create creates a missing database; otherwise throws RegistryError 2
    Writing(RegistryStore& store, bool create);
    ~Writing();
    Writing(const Writing&) = delete;
    Writing& operator=(const Writing&) = delete;

    RegistryTree& Tree() const noexcept { return *m_store.m_tree; }
    void Commit();

private:
    explicit Writing(RegistryStore& store);

    RegistryStore& m_store;
    std::unique_lock<ForkSafeLock> m_guard;
    bool m_isCommitted = false;
};

}  // namespace qel
