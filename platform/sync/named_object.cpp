#include "qellib10/platform/sync/named_object.h"

#include <algorithm>
#include <utility>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/system_failure.h"

namespace qel {
namespace {

std::unique_ptr<NamedObject> Held(Descriptor file, std::string_view name, ObjectKind kind, std::uint64_t size) {
    auto object = std::make_unique<NamedObject>();
    object->name = name;
    object->kind = kind;
    object->size = size;
    object->file = std::move(file);
    if (kind == ObjectKind::Mutex) object->mutex = std::make_unique<MappedMutex>(object->file);
    return object;
}

}  // namespace

std::unique_ptr<NamedObject> NamedObject::Make(Descriptor file, std::string_view name, ObjectKind kind,
                                               std::uint64_t size) {
    ObjectHeader header;
    header.magic = ObjectHeader::kMagic;
    header.size = size;
    header.kind = kind;
    header.nameLength = static_cast<std::uint32_t>(name.size());
    std::ranges::copy(name, header.name);

    Hold(file);
    Extend(file, size);
    auto object = Held(std::move(file), name, kind, size);
    if (object->mutex != nullptr) object->mutex->Initialize();
    WriteHeader(object->file, header);
    return object;
}

std::unique_ptr<NamedObject> NamedObject::Join(Descriptor file, std::string_view name, ObjectKind kind) {
    const std::optional<ObjectHeader> header = ReadHeader(file, name);
    if (!header) return nullptr;
    if (header->kind != kind) throw SystemFailure{kBadHandle};
    if (!Hold(file)) return nullptr;
    return Held(std::move(file), name, kind, header->size);
}

void NamedObject::CheckIsWhole() const {
    if (!Look(file, size).isWhole) throw SystemFailure{kFileAltered};
}

}  // namespace qel
