#pragma once

#include <string>

#include "qellib10/platform/archive/archive.h"
#include "qellib10/platform/storage/mem_file.h"

/// The bytes that an object stores.
template <class T> std::string Stored(T& object) {
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    object.Serialize(archive);
    archive.Close();
    const auto bytes = file.Detach();
    return {bytes.begin(), bytes.end()};
}

/// Reads an object from bytes in a file of that kind.
/// @return the number of bytes after it; below 0 the cause that the archive gave instead, negated
template <class File = CMemFile, class T> int Load(T& object, const std::string& bytes) {
    File file;
    file.Attach(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    try {
        CArchive archive(&file, CArchive::load);
        object.Serialize(archive);
        archive.Close();
        return static_cast<int>(bytes.size() - file.GetPosition());
    } catch (const CArchiveException& exception) {
        return -exception.m_cause;
    }
}

/// Writes the values to an archive that stores, or reads them.
template <class... Values> void Exchange(CArchive& archive, Values&... values) {
    if (archive.IsStoring()) {
        (archive << ... << values);
    } else {
        (archive >> ... >> values);
    }
}

/// Makes T a class that can be archived, by the name and schema that it has.
template <class T, class Base> class Archived : public Base {
public:
    static const CRuntimeClass* GetThisClass() {
        static const CRuntimeClass theClass = qel::DescribeClass<T, Base>(T::kName, T::kSchema);
        return &theClass;
    }
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
};
