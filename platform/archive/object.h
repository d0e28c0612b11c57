#pragma once

#include <concepts>
#include <string_view>
#include <type_traits>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

class CArchive;
class CObject;

/// Run-time information about a class. A class that archives name, or that is created by name, has one; see CObject.
struct QELLIB10_API CRuntimeClass {
    const char* m_lpszClassName;
    int m_nObjectSize;                  // bytes
    UINT m_wSchema;                     // version of what Serialize writes, 0 to FFFE
    CObject* (*m_pfnCreateObject)();    // null for an abstract class
    const CRuntimeClass* m_pBaseClass;  // null for CObject

    /// Creates an object, which the caller deletes; null for an abstract class.
    CObject* CreateObject() const;
    /// Also true for the class itself.
    bool IsDerivedFrom(const CRuntimeClass* base) const noexcept;

    /// The registered class of that name, or null.
    static const CRuntimeClass* FromName(std::string_view name);
};

/// Base of all objects that know their class at run time and can be stored in an archive. An application's class
/// declares itself like this (only the names CReading and "CReading" differ):
///
///     class CReading : public CObject {                                     // reading.h
///     public:
///         static const CRuntimeClass* GetThisClass();
///         const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
///         void Serialize(CArchive& archive) override;
///         double m_dVolume = 0;
///     };
///
///     const CRuntimeClass* CReading::GetThisClass() {                       // reading.cpp
///         static const CRuntimeClass theClass = qel::DescribeClass<CReading, CObject>("CReading");
///         return &theClass;
///     }
///     static const qel::RegisteredClass<CReading> registered;               // makes it known by its name
///
///     void CReading::Serialize(CArchive& archive) {
///         if (archive.IsStoring()) archive << m_dVolume;
///         else archive >> m_dVolume;
///     }
///
/// Then `archive << &reading` and `CReading* p; archive >> p` store the class with the object, and
/// `CRuntimeClass::FromName("CReading")->CreateObject()` creates one.
class QELLIB10_API CObject {
public:
    virtual const CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();
    /// Writes the object to the archive or reads it, depending on archive.IsStoring(). CObject itself stores nothing.
    virtual void Serialize(CArchive& archive);

    static const CRuntimeClass* GetThisClass();

    /// Whether the object is of this class or of one derived from it.
    bool IsKindOf(const CRuntimeClass* wanted) const noexcept;

protected:
    CObject() = default;
    CObject(const CObject&) = default;
    CObject& operator=(const CObject&) = default;
};

namespace qel {

/// Describes class T, derived from Base. A class that is abstract or has no default constructor cannot be created.
template <std::derived_from<CObject> T, class Base>
requires std::derived_from<T, Base> CRuntimeClass DescribeClass(const char* name, UINT schema = 0) {
    CRuntimeClass described{name, static_cast<int>(sizeof(T)), schema, nullptr, Base::GetThisClass()};
    if constexpr (std::default_initializable<T>) described.m_pfnCreateObject = []() -> CObject* { return new T; };
    return described;
}

/// While it exists, its class is found by its name. If two classes have the same name, the earlier one is found.
class QELLIB10_API ClassRegistration {
public:
    explicit ClassRegistration(const CRuntimeClass* registered);
    ~ClassRegistration();
    ClassRegistration(const ClassRegistration&) = delete;
    ClassRegistration& operator=(const ClassRegistration&) = delete;

private:
    const CRuntimeClass* m_pClass;
};

template <std::derived_from<CObject> T> class RegisteredClass : ClassRegistration {
public:
    RegisteredClass() : ClassRegistration(T::GetThisClass()) {}
};

}  // namespace qel
