#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

namespace qel {

/// Code pages that text of this process can be in.
inline constexpr UINT kCodePageJapanese = 932;
inline constexpr UINT kCodePageLatin1 = 1252;
inline constexpr UINT kCodePageUtf8 = 65001;

/// The code page of all 8-bit text in this process: environment QELLIB10_CODEPAGE (932, 1252 or 65001) at the start,
/// else 932. It is never taken from the locale.
QELLIB10_API UINT CodePage() noexcept;

/// Sets the code page. Call it before other threads use text.
/// @return false for a page other than the three; nothing is changed.
QELLIB10_API bool SetCodePage(UINT page) noexcept;

/// Converts text of the process's code page to UTF-8, and back. Neither fails: invalid bytes become U+30FB (932) or
/// U+FFFD (65001); characters that the page lacks become their best fit as the platform chooses it, then `?`.
/// @throws DataError when the system has no converter for the page.
QELLIB10_API std::string ToUtf8(std::string_view text);
QELLIB10_API std::string FromUtf8(std::string_view utf8);

/// The same to and from UTF-16 code units in host order.
QELLIB10_API std::u16string ToUtf16(std::string_view text);
QELLIB10_API std::string FromUtf16(std::u16string_view utf16);

}  // namespace qel
