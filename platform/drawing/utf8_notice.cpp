#include "qellib10/platform/drawing/utf8_notice.h"

#include <atomic>
#include <string>

#include "qellib10/platform/shell/debug_output.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

std::atomic<bool> theNoticeIsGiven = false;

// Has characters of several bytes, and all of them are whole.
bool HasFormOfUtf8(std::string_view text) {
    std::size_t at = EndOfAscii(text, 0);
    if (at == text.size()) return false;
    while (at < text.size()) {
        if (NextCharacter(text, at) == kReplacementCharacter) return false;
        at = EndOfAscii(text, at);
    }
    return true;
}

}  // namespace

void NoticeUtf8(std::string_view text) {
    if (theNoticeIsGiven.load(std::memory_order_relaxed) || CodePage() != kCodePageJapanese) return;
    if (!HasFormOfUtf8(text) || theNoticeIsGiven.exchange(true)) return;
    const std::string line = "qellib10: \"" + FromUtf8(text) +
                             "\" is drawn as text of code page 932, but looks like UTF-8: call "
                             "qel::SetCodePage(qel::kCodePageUtf8) at the start, or pass qel::FromUtf8(text)\n";
    OutputDebugStringA(line.c_str());
}

}  // namespace qel
