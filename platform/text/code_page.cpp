#include "qellib10/platform/text/code_page.h"

#include <atomic>
#include <cstdlib>
#include <string_view>

namespace qel {
namespace {

constexpr bool IsKnown(UINT page) {
    return page == kCodePageJapanese || page == kCodePageLatin1 || page == kCodePageUtf8;
}

UINT PageOfEnvironment() {
    const char* value = std::getenv("QELLIB10_CODEPAGE");
    const UINT page = value != nullptr ? static_cast<UINT>(std::strtoul(value, nullptr, 10)) : 0;
    return IsKnown(page) ? page : kCodePageJapanese;
}

std::atomic<UINT>& CurrentPage() {
    static std::atomic<UINT> page = PageOfEnvironment();
    return page;
}

}  // namespace

UINT CodePage() noexcept { return CurrentPage().load(std::memory_order_relaxed); }

bool SetCodePage(UINT page) noexcept {
    if (!IsKnown(page)) return false;
    CurrentPage() = page;
    return true;
}

std::string ToUtf8(std::string_view text) { return std::string(text); }
std::string FromUtf8(std::string_view utf8) { return std::string(utf8); }
std::u16string ToUtf16(std::string_view text) { return std::u16string(text.begin(), text.end()); }
std::string FromUtf16(std::u16string_view utf16) { return std::string(utf16.begin(), utf16.end()); }

}  // namespace qel
