#include "qellib10/platform/drawing/utf8_notice.h"

#include <algorithm>
#include <atomic>
#include <string>

#include "qellib10/platform/shell/debug_output.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

std::atomic<bool> theNoticeIsGiven = false;

// Contains characters of several bytes, and all of them are complete.
bool HasFormOfUtf8(std::string_view text) {
    std::size_t at = EndOfAscii(text, 0);
    if (at == text.size()) return false;
    while (at < text.size()) {
        if (NextCharacter(text, at) == kReplacementCharacter) return false;
        at = EndOfAscii(text, at);
    }
    return true;
}

// The first characters, on one line: a whole report would hide the message.
std::string Sample(std::string_view text) {
    constexpr std::size_t kMaxBytes = 60;
    std::size_t end = std::min(text.size(), kMaxBytes);
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;  // not inside a character
    std::string sample(text.substr(0, end));
    std::ranges::replace_if(
        sample, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
    return FromUtf8(sample) + (end < text.size() ? "..." : "");
}

}  // namespace

void NoticeUtf8(std::string_view text) {
    if (theNoticeIsGiven.load(std::memory_order_relaxed) || CodePage() != kCodePageJapanese) return;
    if (!HasFormOfUtf8(text) || theNoticeIsGiven.exchange(true)) return;
    const std::string line = "qellib10: \"" + Sample(text) +
                             "\" is drawn as text of code page 932, but looks like UTF-8: call "
                             "qel::SetCodePage(qel::kCodePageUtf8) at the start\n";
    OutputDebugStringA(line.c_str());
}

}  // namespace qel
