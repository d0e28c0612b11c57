#include "qellib10/platform/registry/registry_store.h"

#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <new>
#include <vector>

#include "qellib10/platform/database/database_error.h"
#include "qellib10/platform/registry/registry_error.h"
#include "qellib10/platform/storage/private_file.h"

namespace qel {
namespace {

// How long to wait for others who use a tree, before an operation and again before its commit.
constexpr std::chrono::seconds kPatience(10);
constexpr std::chrono::microseconds kLongestSleep(300);

std::string FolderOf(const std::string& path) { return std::filesystem::path(path).parent_path(); }

}  // namespace

RegistryStore::RegistryStore(RegistryRoot root, void (*abandonInChild)())
    : m_lock(abandonInChild), m_root(root), m_keys(root), m_patience(kPatience, kLongestSleep) {}

template <RegistryRoot kRoot> RegistryStore& RegistryStore::One() {
    static RegistryStore& store = *new RegistryStore(kRoot, [] { One<kRoot>().AbandonInChild(); });
    return store;
}

RegistryStore& RegistryStore::Of(HKEY handle) {
    switch (RootOf(handle)) {
        case RegistryRoot::ClassesRoot:
            return One<RegistryRoot::ClassesRoot>();
        case RegistryRoot::CurrentUser:
            return One<RegistryRoot::CurrentUser>();
        default:
            return One<RegistryRoot::LocalMachine>();
    }
}

namespace {

// Created at load, so that no thread is creating one while another forks.
[[maybe_unused]] const RegistryStore* const theStores[] = {&RegistryStore::Of(HKEY_CLASSES_ROOT),
                                                           &RegistryStore::Of(HKEY_CURRENT_USER),
                                                           &RegistryStore::Of(HKEY_LOCAL_MACHINE)};

}  // namespace

RegistryKeyId RegistryStore::KeyOf(HKEY handle) {
    const std::lock_guard guard(m_keysLock);
    return m_keys.Find(handle);
}

HKEY RegistryStore::OpenKey(RegistryKeyId key) {
    const std::lock_guard guard(m_keysLock);
    return m_keys.Add(key);
}

void RegistryStore::CloseKey(HKEY handle) {
    const std::lock_guard guard(m_keysLock);
    m_keys.Remove(handle);
}

// In a forked child. The connection belongs to the parent: even closing it would undo what the parent is writing.
void RegistryStore::AbandonInChild() {
    static auto& left = *new std::vector<RegistryTree*>;
    if (m_tree) left.push_back(m_tree.release());
    m_turn.reset();  // closes a copy: the parent keeps its place in line
    // SQLite still believes that this process holds the parent's locks.
    if (m_writings > 0) m_isLost = true;
    m_writings = 0;
}

std::optional<RegistryStore::FileId> RegistryStore::IdOf(const std::string& path) {
    struct stat status = {};
    if (path.empty() || ::stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileId{status.st_dev, status.st_ino};
}

void RegistryStore::Open(const std::string& path, const std::optional<FileId>& id, bool create) {
    if (m_tree && m_path == path && id && m_id == id) return;
    m_tree.reset();
    m_path = path;
    m_tree = std::make_unique<RegistryTree>(path, create, [this] { return WaitForOthers(); });
    m_id = id ? id : IdOf(path);
    m_isMade = false;
}

// Writers join the line at once. Otherwise a process that writes without a pause would always be back before the others
// look again.
void RegistryStore::GetInLine(const std::string& path) { m_turn.emplace(FolderOf(path), static_cast<int>(m_root)); }

// Readers join the line when they meet a writer: so whoever comes later lets them pass. They need not wait for their
// turn, because several may read at once.
bool RegistryStore::WaitForOthers() {
    if (!m_turn) GetInLine(m_path);
    return m_patience.Again();
}

RegistryTree* RegistryStore::OpenForReading() {
    if (m_isLost) throw RegistryError(kRegistryBusy);
    if (m_writings > 0) return m_tree.get();
    m_patience = Backoff(kPatience, kLongestSleep);
    const std::string path = RegistryDatabase(m_root);
    const std::optional<FileId> id = IdOf(path);
    if (!id) return nullptr;
    Open(path, id, false);
    if (!m_isMade) m_isMade = m_tree->IsMade();
    return m_isMade ? m_tree.get() : nullptr;
}

void RegistryStore::BeginWriting(bool create) {
    if (m_isLost) throw RegistryError(kRegistryBusy);
    m_patience = Backoff(kPatience, kLongestSleep);
    const std::string path = RegistryDatabase(m_root);
    if (path.empty()) throw RegistryError(kRegistryAccessDenied);
    if (!IdOf(path)) {
        if (!create) throw RegistryError(kRegistryNotFound);
        std::error_code shownByOpen;
        std::filesystem::create_directories(FolderOf(path), shownByOpen);
        // For its mode, which the journal takes over; the database itself would make it readable for everybody.
        if (IsPrivate()) MakePrivateFile(path);
    }
    GetInLine(path);
    m_turn->Await(m_patience);
    Open(path, IdOf(path), create && !IsPrivate());
    m_tree->Begin();
    if (m_isMade || m_tree->IsMade()) return;
    if (!create) throw RegistryError(kRegistryNotFound);
    m_tree->Make();
}

void RegistryStore::RollBack() {
    if (m_writings > 0 || !m_tree) return;
    try {
        m_tree->RollBack();
    } catch (const DatabaseError&) {
        m_tree.reset();  // closing the connection rolls it back as well
    } catch (const std::bad_alloc&) {
        m_tree.reset();
    }
}

void RegistryStore::End() {
    if (m_writings == 0) m_turn.reset();
}

RegistryStore::Writing::Writing(RegistryStore& store) : m_store(store), m_guard(store.m_lock) { ++store.m_writings; }

// The delegated constructor has already constructed the object: if this one throws, the destructor runs as usual.
RegistryStore::Writing::Writing(RegistryStore& store, bool create) : Writing(store) {
    if (store.m_writings == 1) store.BeginWriting(create);
}

RegistryStore::Writing::~Writing() {
    if (m_store.m_writings == 0) return;  // in a child that was forked meanwhile
    --m_store.m_writings;
    if (!m_isCommitted) m_store.RollBack();
    m_store.End();
}

void RegistryStore::Writing::Commit() {
    if (m_store.m_writings == 1) {
        m_store.m_patience = Backoff(kPatience, kLongestSleep);
        m_store.m_tree->Commit();
        m_store.m_isMade = true;
    }
    m_isCommitted = true;
}

}  // namespace qel
