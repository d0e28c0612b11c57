#include "qellib10/platform/registry/registry.h"

#include <concepts>
#include <utility>

#include "qellib10/platform/database/database_error.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/registry/registry_error.h"
#include "qellib10/platform/registry/registry_store.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

const char* TextOf(LONG code) {
    switch (code) {
        case kRegistryNotFound:
            return "no such key or value";
        case kRegistryAccessDenied:
            return "access denied";
        case kRegistryBadHandle:
            return "no open key";
        case kRegistryInvalidParameter:
            return "a name or data beyond the limits";
        case kRegistryDiskFull:
            return "disk full";
        case kRegistryBadPath:
            return "bad path of a key";
        case kRegistryBusy:
            return "in use by others";
        case kRegistryDamaged:
            return "damaged, or of a newer version";
        case kRegistryKeyDeleted:
            return "the key was deleted";
        default:
            return "input or output error";
    }
}

RegistryCode CodeOf(DatabaseFault fault) {
    switch (fault) {
        case DatabaseFault::kForeignKey:
            return kRegistryKeyDeleted;
        case DatabaseFault::kValue:
            return kRegistryInvalidParameter;
        case DatabaseFault::kAccess:
            return kRegistryAccessDenied;
        case DatabaseFault::kBusy:
            return kRegistryBusy;
        case DatabaseFault::kDiskFull:
            return kRegistryDiskFull;
        case DatabaseFault::kIo:
            return kRegistryIoFailed;
        case DatabaseFault::kDamaged:
            break;
    }
    return kRegistryDamaged;
}

std::string_view View(const char* text) { return text != nullptr ? text : ""; }

// The path and the value that an operation is about, as the caller gave them.
struct Subject {
    const char* path = nullptr;
    const char* value = nullptr;
};

LONG Failed(Operation& operation, const Subject& subject, LONG code) {
    const FailureKind kind = code == kRegistryNotFound ? FailureKind::kMissing : FailureKind::kRegistry;
    std::string item(View(subject.path));
    if (subject.value != nullptr)
        item += (item.empty() || item.ends_with('\\') ? "" : "\\") + std::string(subject.value);
    operation.Failed(kind, item, TextOf(code), code);
    return code;
}

// The one place where an operation's failure becomes its result.
template <std::invocable Body> LONG AsCode(const char* name, const Subject& subject, Body&& body) {
    Operation operation(name);
    try {
        std::forward<Body>(body)();
        operation.Ended(true);
        return kRegistrySuccess;
    } catch (const RegistryError& error) {
        return Failed(operation, subject, error.Code());
    } catch (const DatabaseError& error) {
        return Failed(operation, subject, CodeOf(error.Fault()));
    }
}

RegistryValue Kept(const RegistryValue& value) {
    if (value.data.size() > kMaxRegistryData) throw RegistryError(kRegistryInvalidParameter);
    return IsRegistryText(value.type) ? RegistryValue{value.type, ToUtf8(value.data)} : value;
}

RegistryValue Given(RegistryValue kept) {
    return IsRegistryText(kept.type) ? RegistryValue{kept.type, FromUtf8(kept.data)} : std::move(kept);
}

// For a path that leads nowhere: does the key itself still exist?
[[noreturn]] void ThrowMissing(RegistryTree* tree, RegistryKeyId from) {
    const bool isThere = from == kRegistryRootKey || (tree != nullptr && tree->Find(from, RegistryPath("")));
    throw RegistryError(isThere ? kRegistryNotFound : kRegistryKeyDeleted);
}

// Where an operation acts: the names of a path from a key that the caller has open. Handle and path are checked before
// the database is opened, so a wrong one has its own code also where there is no database or others use it.
struct Place {
    Place(HKEY parent, const char* path)
        : store(RegistryStore::Of(parent)), from(store.KeyOf(parent)), names(View(path)) {}

    RegistryKeyId FindIn(RegistryTree* tree) const {
        const std::optional<RegistryKeyId> key = tree != nullptr ? tree->Find(from, names) : std::nullopt;
        if (!key) ThrowMissing(tree, from);
        return *key;
    }

    RegistryStore& store;
    RegistryKeyId from;
    RegistryPath names;
};

template <std::invocable<const Place&> Body>
LONG AtPlace(const char* name, HKEY parent, const Subject& subject, Body&& body) {
    return AsCode(name, subject, [&] { std::forward<Body>(body)(Place(parent, subject.path)); });
}

}  // namespace

LONG CreateRegistryKey(HKEY parent, const char* path, const char* className, HKEY& key) {
    return AtPlace("qel::CreateRegistryKey", parent, {path}, [&](const Place& at) {
        RegistryStore::Writing writing(at.store, true);
        const RegistryKeyId made = writing.Tree().Create(at.from, at.names, ToUtf8(View(className)));
        writing.Commit();
        key = at.store.OpenKey(made);
    });
}

LONG OpenRegistryKey(HKEY parent, const char* path, HKEY& key) {
    return AtPlace("qel::OpenRegistryKey", parent, {path}, [&](const Place& at) {
        const RegistryStore::Reading reading(at.store);
        key = at.store.OpenKey(at.FindIn(reading.Tree()));
    });
}

LONG CloseRegistryKey(HKEY key) {
    return AsCode("qel::CloseRegistryKey", {}, [&] { RegistryStore::Of(key).CloseKey(key); });
}

LONG ReadRegistryValue(HKEY parent, const char* path, const char* name, RegistryValue& value) {
    return AtPlace("qel::ReadRegistryValue", parent, {path, name}, [&](const Place& at) {
        const RegistryName valueName = RegistryName::OfValue(View(name));
        const RegistryStore::Reading reading(at.store);
        std::optional<RegistryValue> found;
        if (reading.Tree() != nullptr) found = reading.Tree()->Read(at.from, at.names, valueName);
        if (!found) ThrowMissing(reading.Tree(), at.from);
        value = Given(*std::move(found));
    });
}

LONG WriteRegistryValue(HKEY parent, const char* path, const char* className, const char* name,
                        const RegistryValue& value) {
    return AtPlace("qel::WriteRegistryValue", parent, {path, name}, [&](const Place& at) {
        const RegistryName valueName = RegistryName::OfValue(View(name));
        const RegistryValue kept = Kept(value);
        RegistryStore::Writing writing(at.store, true);
        RegistryTree& tree = writing.Tree();
        tree.Write(tree.Create(at.from, at.names, ToUtf8(View(className))), valueName, kept);
        writing.Commit();
    });
}

LONG ListRegistryKey(HKEY parent, const char* path, RegistryContents& contents) {
    return AtPlace("qel::ListRegistryKey", parent, {path}, [&](const Place& at) {
        const RegistryStore::Reading reading(at.store);
        RegistryContents found;
        const bool isEmptyTree = reading.Tree() == nullptr && at.from == kRegistryRootKey && at.names.Size() == 0;
        if (!isEmptyTree) {
            const RegistryKeyId key = at.FindIn(reading.Tree());
            found = reading.Tree()->List(key);
        }
        for (std::string& key : found.keys) key = FromUtf8(key);
        for (auto& [name, value] : found.values) {
            name = FromUtf8(name);
            value = Given(std::move(value));
        }
        contents = std::move(found);
    });
}

LONG DeleteRegistryTree(HKEY parent, const char* path) {
    return AtPlace("qel::DeleteRegistryTree", parent, {path}, [&](const Place& at) {
        RegistryStore::Writing writing(at.store, false);
        const RegistryKeyId key = at.FindIn(&writing.Tree());
        if (key == kRegistryRootKey) throw RegistryError(kRegistryAccessDenied);
        writing.Tree().Delete(key);
        writing.Commit();
    });
}

LONG CopyRegistryTree(HKEY from, HKEY to) {
    return AsCode("qel::CopyRegistryTree", {}, [&] {
        if (&RegistryStore::Of(from) != &RegistryStore::Of(to)) throw RegistryError(kRegistryInvalidParameter);
        const Place source(from, "");
        const Place target(to, "");
        RegistryStore::Writing writing(source.store, false);
        RegistryTree& tree = writing.Tree();
        for (const Place* place : {&source, &target}) place->FindIn(&tree);
        if (tree.IsWithin(target.from, source.from)) throw RegistryError(kRegistryInvalidParameter);
        tree.Copy(source.from, target.from);
        writing.Commit();
    });
}

struct RegistryTransaction::State {
    explicit State(RegistryStore& store) : writing(store, false) {}
    RegistryStore::Writing writing;
};

RegistryTransaction::RegistryTransaction() = default;
RegistryTransaction::~RegistryTransaction() = default;

LONG RegistryTransaction::Begin(HKEY key) {
    return AsCode("qel::RegistryTransaction::Begin", {},
                  [&] { m_state = std::make_unique<State>(RegistryStore::Of(key)); });
}

LONG RegistryTransaction::Commit() {
    return AsCode("qel::RegistryTransaction::Commit", {}, [&] {
        if (!m_state) throw RegistryError(kRegistryBadHandle);
        m_state->writing.Commit();
        m_state.reset();
    });
}

}  // namespace qel
