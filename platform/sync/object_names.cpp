#include "qellib10/platform/sync/object_names.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/system_failure.h"

namespace qel {
namespace {

constexpr std::size_t kMaxParked = 8;

std::unique_ptr<NamedObject> MakeIn(const FolderLock& folder, const std::string& file, std::string_view name,
                                    ObjectKind kind, std::uint64_t size) {
    if (kind == ObjectKind::Memory && size == 0) throw SystemFailure{kBadParameter};
    try {
        return NamedObject::Make(folder.Create(file), name, kind, size);
    } catch (const SystemFailure&) {
        folder.Remove(file);
        throw;
    } catch (const std::bad_alloc&) {
        folder.Remove(file);
        throw;
    }
}

// A file in a folder that is no longer used has no name any more.
FileState LookIn(const FolderLock& folder, const NamedObject& object) {
    FileState state = Look(object.file, object.size);
    state.hasName = state.hasName && object.folder == folder.Number();
    return state;
}

void RemoveUnlessNeeded(const FolderLock& folder, const NamedObject& object) {
    const bool isNeeded = !LookIn(folder, object).hasName || IsHeld(object.file) || IsLeftOwned(object.file);
    if (!isNeeded) folder.Remove(ObjectFileName(object.name));
}

}  // namespace

ObjectNames::Found ObjectNames::Use(std::string_view name, ObjectKind kind, std::uint64_t size, Missing missing) {
    const auto own = std::ranges::find(m_objects, name, &NamedObject::name);
    if (own != m_objects.end()) {
        if ((*own)->kind != kind) throw SystemFailure{kBadHandle};
        return {own->get()};
    }
    m_objects.reserve(m_objects.size() + 1);  // before a file is made: then Keep does not fail
    const FolderLock folder;
    const std::string fileName = ObjectFileName(name);
    std::unique_ptr<NamedObject> object = kind == ObjectKind::Mutex ? TakeParked(folder, name) : nullptr;
    Descriptor file = object == nullptr ? folder.Open(fileName) : Descriptor();
    const Descriptor& found = object == nullptr ? file : object->file;

    if (found && IsHeld(found)) {
        if (object == nullptr) {
            object = NamedObject::Join(std::move(file), name, kind);
        } else if (!Hold(object->file)) {
            object = nullptr;
        }
        return {object == nullptr ? nullptr : &Keep(std::move(object), folder.Number())};
    }
    if (object != nullptr && missing == Missing::IsMade && object->mutex->TakeAgain() && Hold(object->file)) {
        return {&Keep(std::move(object), folder.Number()), false};
    }
    const bool isLeft = kind == ObjectKind::Mutex && found && IsLeftOwned(found);
    if (isLeft && missing == Missing::Fails) throw SystemFailure{kFileMissing};  // whoever makes it again is informed
    if (found) folder.Remove(fileName);  // left by a process that was killed, or did not wait to clean up
    if (missing == Missing::Fails) throw SystemFailure{kFileMissing};
    return {&Keep(MakeIn(folder, fileName, name, kind, size), folder.Number()), false, isLeft};
}

NamedObject& ObjectNames::UseNameless(ObjectKind kind, std::uint64_t size) {
    if (kind == ObjectKind::Memory && size == 0) throw SystemFailure{kBadParameter};
    return Keep(NamedObject::Make(CreateNamelessFile(), {}, kind, size));
}

void ObjectNames::Leave(NamedObject& object) {
    if (--object.users != 0) return;
    const auto place = std::ranges::find(m_objects, &object, &std::unique_ptr<NamedObject>::get);
    std::unique_ptr<NamedObject> left = std::move(*place);
    m_objects.erase(place);
    if (left->name.empty()) return;
    try {
        GiveUp(FolderLock(), std::move(left));
    } catch (const SystemFailure&) {  // its file stays, held by nobody, until the next process removes it
    } catch (const std::bad_alloc&) {
    }
}

void ObjectNames::Exit() {
    m_isExiting = true;
    if (m_parked.empty()) return;
    try {
        const FolderLock folder;
        for (const auto& object : m_parked) RemoveUnlessNeeded(folder, *object);
    } catch (const SystemFailure&) {  // like above
    }
    m_parked.clear();
}

void ObjectNames::Forget() {
    m_objects.clear();
    m_parked.clear();
    FolderLock::Forget();
}

NamedObject& ObjectNames::Keep(std::unique_ptr<NamedObject> object, unsigned folder) {
    object->folder = folder;
    m_objects.push_back(std::move(object));
    return *m_objects.back();
}

// Null if its file was removed or cut meanwhile.
std::unique_ptr<NamedObject> ObjectNames::TakeParked(const FolderLock& folder, std::string_view name) {
    const auto place = std::ranges::find(m_parked, name, &NamedObject::name);
    if (place == m_parked.end()) return nullptr;
    std::unique_ptr<NamedObject> object = std::move(*place);
    m_parked.erase(place);
    const FileState state = LookIn(folder, *object);
    return state.hasName && state.isWhole ? std::move(object) : nullptr;
}

void ObjectNames::GiveUp(const FolderLock& folder, std::unique_ptr<NamedObject> object) {
    const FileState state = LookIn(folder, *object);
    if (object->mutex != nullptr && !state.isWhole) object->mutex->LoseFile();
    if (!state.hasName) return;
    const bool isLast = HoldAlone(object->file);
    const bool mayServeAgain = object->mutex != nullptr && state.isWhole && object->mutex->Close(isLast);
    if (mayServeAgain && !m_isExiting) {
        Park(folder, std::move(object));
    } else if (isLast) {
        folder.Remove(ObjectFileName(object->name));
    }
}

void ObjectNames::Park(const FolderLock& folder, std::unique_ptr<NamedObject> object) {
    LetGo(object->file);
    m_parked.push_back(std::move(object));
    if (m_parked.size() <= kMaxParked) return;
    RemoveUnlessNeeded(folder, *m_parked.front());
    m_parked.erase(m_parked.begin());
}

}  // namespace qel
