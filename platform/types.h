#pragma once

#include <cstdint>

// The framework's integer types, in the widths that its file formats and interfaces count on.
#pragma push_macro("BOOL")
#undef BOOL        // unixODBC's headers have it as a macro, for int too
using BOOL = int;  // 0 or not 0
#pragma pop_macro("BOOL")
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using LPSTR = char*;
using LPCSTR = const char*;

/// A handle as the framework passes it: opaque, only compared and passed back. 0 means "none".
using HANDLE = void*;

/// A loaded program or library: any address in it; 0 means the program itself.
using HINSTANCE = void*;

/// A window of the application's toolkit: opaque, only passed on.
using HWND = void*;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;

/// The result of a shell operation: negative on failure, 0x80070000 plus the framework's error number.
using HRESULT = std::int32_t;

/// The longest path, its terminating zero included, in bytes.
inline constexpr int MAX_PATH = 260;

/// A 128-bit identifier, with the layout that records and documents use.
struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
static_assert(sizeof(GUID) == 16);
