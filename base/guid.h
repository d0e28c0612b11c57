#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// The 128-bit identifier that distinguishes documents and history records. File names change and numbers are given
/// twice; a GUID made here is never given again, so a copied or renamed document can still be recognised.
///
/// @code
/// const CGuid id = CGuid::CreateNewGuid();
/// if (id.IsNull()) return;              // the system gives no random bytes
/// const CString text = id.GetString();  // such as {01234567-89AB-4DEF-8123-456789ABCDEF}
/// @endcode
///
/// A value of 16 bytes; a new object holds the null GUID (all bytes zero). Nothing is thrown but std::bad_alloc by
/// GetString.
class QELLIB10_API CGuid {
public:
    CGuid() noexcept = default;
    CGuid(const GUID& guid) noexcept : m_guid(guid) {}
    CGuid(const CGuid&) noexcept = default;
    virtual ~CGuid();

    CGuid& operator=(const GUID& guid) noexcept;
    CGuid& operator=(const CGuid&) noexcept = default;

    /// Whether all 16 bytes are equal.
    bool operator==(const GUID& other) const noexcept;
    bool operator==(const CGuid& other) const noexcept { return *this == other.m_guid; }

    operator GUID() const noexcept { return m_guid; }
    /// The GUID itself, to be filled in place.
    operator GUID*() noexcept { return &m_guid; }

    void SetNull() noexcept { m_guid = {}; }
    /// 1 if all 16 bytes are zero.
    BOOL IsNull() const noexcept;

    /// A new, unique GUID: version 4 of RFC 4122, 122 bits from the system's random source.
    /// @return the null GUID if the system provides no random bytes
    static CGuid CreateNewGuid();

    /// Registry form in upper-case hexadecimal, 38 characters: {01234567-89AB-CDEF-0123-456789ABCDEF}.
    CString GetString() const;

private:
    GUID m_guid = {};
};
