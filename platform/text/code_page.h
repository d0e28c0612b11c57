#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

namespace qel {

/// Code pages that text of this process can use.
inline constexpr UINT kCodePageJapanese = 932;
inline constexpr UINT kCodePageLatin1 = 1252;
inline constexpr UINT kCodePageUtf8 = 65001;

/// The code page of all 8-bit text in this process: at the start the environment's QELLIB10_CODEPAGE (932, 1252 or
/// 65001), else 932. It is never taken from the locale.
QELLIB10_API UINT CodePage() noexcept;

/// Sets the code page. Call it before other threads use text.
/// @return false for any page other than these three; nothing changes then.
QELLIB10_API bool SetCodePage(UINT page) noexcept;

/// Converts text of the process's code page to UTF-8, and back. Neither fails. Invalid bytes become U+30FB (932) or
/// U+FFFD (65001). A character missing in the page becomes the platform's best fit (µ is the Greek letter in 932), else
/// one `?` for each of its UTF-16 units. Every byte of 932 and 1252 that the platform maps is mapped, including those
/// that iconv does not know. Safe from any thread.
/// @throws std::runtime_error when the system has no converter for the page
QELLIB10_API std::string ToUtf8(std::string_view text);
QELLIB10_API std::string FromUtf8(std::string_view utf8);

/// Like FromUtf8, for text inside XML: characters missing in the page are written as references, `&#228;` instead of a
/// best fit, so that nothing is lost.
QELLIB10_API std::string FromUtf8WithReferences(std::string_view utf8);

/// The same to and from UTF-16 code units in host order.
QELLIB10_API std::u16string ToUtf16(std::string_view text);
QELLIB10_API std::string FromUtf16(std::u16string_view utf16);

}  // namespace qel
