// Objects in an archive: a tag that names an earlier object or class, or a new class.
#include <string>
#include <string_view>

#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/archive/object_tables.h"

namespace {

constexpr WORD kNewClassTag = 0xFFFF;
constexpr WORD kClassBit = 0x8000;
constexpr WORD kBigTag = 0x7FFF;
constexpr DWORD kBigClassBit = 0x80000000;
constexpr std::size_t kMaxNumber = 0x3FFFFFFE;
constexpr std::size_t kClassNameLimit = 64;  // a name is shorter than this

}  // namespace

struct CArchive::Tag {
    enum Kind { object, knownClass, newClass };

    Kind kind;
    DWORD number;  // of an object (0 for null) or of a class
};

// One level of nested objects.
class CArchive::Nesting {
public:
    explicit Nesting(CArchive& archive) : m_nDepth(archive.Tables().nesting) {
        if (m_nDepth == kMaxNesting) archive.Throw(CArchiveException::genericException);
        ++m_nDepth;
    }
    ~Nesting() { --m_nDepth; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

private:
    int& m_nDepth;
};

CArchive::ObjectTables& CArchive::Tables() {
    if (!m_pTables) m_pTables = std::make_unique<ObjectTables>();
    return *m_pTables;
}

void CArchive::WriteTag(const Tag& tag) {
    const bool isClass = tag.kind == Tag::knownClass;
    if (tag.kind == Tag::newClass) {
        *this << kNewClassTag;
    } else if (tag.number < kBigTag) {
        *this << static_cast<WORD>(isClass ? kClassBit | tag.number : tag.number);
    } else {
        *this << kBigTag << (isClass ? kBigClassBit | tag.number : tag.number);
    }
}

CArchive::Tag CArchive::ReadTag() {
    const WORD brief = Get<WORD>();
    if (brief == kNewClassTag) return {Tag::newClass, 0};
    if (brief == kBigTag) {
        const DWORD big = Get<DWORD>();
        return {(big & kBigClassBit) != 0 ? Tag::knownClass : Tag::object, big & ~kBigClassBit};
    }
    return {(brief & kClassBit) != 0 ? Tag::knownClass : Tag::object, DWORD{brief} & ~DWORD{kClassBit}};
}

void CArchive::WriteObject(const CObject* object) {
    RequireStoring();
    if (object == nullptr) return WriteTag({Tag::object, 0});
    auto& stored = Tables().stored;
    if (const auto known = stored.find(object); known != stored.end()) return WriteTag({Tag::object, known->second});
    const Nesting nesting(*this);
    WriteClass(object->GetRuntimeClass());
    if (stored.size() >= kMaxNumber) Throw(CArchiveException::badIndex);
    stored.emplace(object, static_cast<DWORD>(stored.size() + 1));
    // Serialize is one operation for both directions; storing does not change the object.
    const_cast<CObject*>(object)->Serialize(*this);
}

void CArchive::WriteClass(const CRuntimeClass* theClass) {
    auto& stored = Tables().stored;
    if (const auto known = stored.find(theClass); known != stored.end())
        return WriteTag({Tag::knownClass, known->second});
    const std::string_view name = theClass->m_lpszClassName;
    // Do not write what could not be read again.
    if (CRuntimeClass::FromName(name) != theClass || theClass->m_pfnCreateObject == nullptr ||
        name.size() >= kClassNameLimit)
        Throw(CArchiveException::badClass);
    if (stored.size() >= kMaxNumber) Throw(CArchiveException::badIndex);
    stored.emplace(theClass, static_cast<DWORD>(stored.size() + 1));
    WriteTag({Tag::newClass, 0});
    *this << static_cast<WORD>(theClass->m_wSchema) << static_cast<WORD>(name.size());
    Write(name.data(), static_cast<UINT>(name.size()));
}

CObject* CArchive::ReadObject(const CRuntimeClass* wanted) {
    RequireLoading();
    const Tag tag = ReadTag();
    const auto& loaded = Tables().loaded;
    if (tag.kind == Tag::object && tag.number == 0) return nullptr;
    ObjectTables::Entry entry;
    if (tag.kind == Tag::newClass) {
        entry.theClass = ReadNewClass();
    } else {
        if (tag.number >= loaded.size()) Throw(CArchiveException::badIndex);
        entry = loaded[tag.number];
        const bool fits = tag.kind == Tag::object ? entry.object != nullptr : entry.theClass && !entry.isObject;
        if (!fits) Throw(CArchiveException::badIndex);
    }
    if (wanted != nullptr && !entry.theClass->IsDerivedFrom(wanted)) Throw(CArchiveException::badClass);
    return entry.isObject ? entry.object : ReadNewObject(entry.theClass);
}

const CRuntimeClass* CArchive::ReadNewClass() {
    const WORD schema = Get<WORD>();
    const WORD length = Get<WORD>();
    if (length >= kClassNameLimit) Throw(CArchiveException::badClass);
    const std::string name = ReadBytes(length);
    const CRuntimeClass* const theClass = CRuntimeClass::FromName(name);
    if (theClass == nullptr || theClass->m_pfnCreateObject == nullptr) Throw(CArchiveException::badClass);
    if (theClass->m_wSchema != schema) Throw(CArchiveException::badSchema);
    auto& loaded = Tables().loaded;
    if (loaded.size() > kMaxNumber) Throw(CArchiveException::badIndex);
    loaded.push_back({theClass, false, nullptr});
    return theClass;
}

CObject* CArchive::ReadNewObject(const CRuntimeClass* theClass) {
    const Nesting nesting(*this);
    auto& loaded = Tables().loaded;
    const std::size_t number = loaded.size();
    if (number > kMaxNumber) Throw(CArchiveException::badIndex);

    std::unique_ptr<CObject> object(theClass->CreateObject());
    // On failure the object is deleted, and perhaps those that it has read: no number may refer to them any more.
    struct GiveUp {
        ~GiveUp() {
            for (std::size_t i = first; i < entries.size(); ++i) entries[i].object = nullptr;
        }
        std::vector<ObjectTables::Entry>& entries;
        std::size_t first;
    } giveUp{loaded, number};
    loaded.push_back({theClass, true, object.get()});
    object->Serialize(*this);
    giveUp.first = loaded.size();
    return object.release();
}
