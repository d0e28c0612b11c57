// Law, in every code page: what the system can convert is converted in the same way, and repeating a conversion changes
// nothing more; a match is between characters, with none before it; two texts are the same name exactly if their folded
// copies are equal.
#include <cstddef>
#include <string>
#include <string_view>

#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/converter.h"
#include "qellib10/platform/text/multibyte.h"

#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;

void CheckConversions(std::string_view bytes) {
    const std::string utf8 = qel::ToUtf8(bytes);
    Require(qel::ToUtf8(qel::FromUtf8(utf8)) == utf8);
    Require(qel::FromUtf8WithReferences(utf8) == qel::FromUtf8(utf8));  // all characters of the result are in the page
    Require(qel::FromUtf16(qel::ToUtf16(bytes)) == qel::FromUtf8(utf8));
    static qel::Converter systems("UTF-8", "CP932");
    const auto expected = qel::CodePage() == qel::kCodePageJapanese ? systems.Convert(bytes) : std::nullopt;
    Require(utf8 == expected.value_or(utf8));
    const std::string fitted = qel::FromUtf8(bytes);
    Require(qel::FromUtf8(qel::ToUtf8(fitted)) == fitted);
}

std::size_t FindByWalking(std::string_view text, std::string_view wanted) {
    for (std::size_t at = 0; at < text.size(); at += qel::CharacterSize(text, at, qel::CodePage())) {
        if (text.substr(at).starts_with(wanted)) return at;
    }
    return std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > kLongestUsefulInput) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string_view wanted = text.substr(1, 1 + data[0] % 4);
    const std::string_view searched = text.substr(1 + wanted.size());
    for (const UINT page : {932U, 1252U, 65001U}) {
        qel::SetCodePage(page);
        CheckConversions(text);
        const bool endsInHalf = qel::FindText(wanted, wanted) != 0;
        Require(qel::FindText(searched, wanted) ==
                (endsInHalf ? std::string_view::npos : FindByWalking(searched, wanted)));
        const std::string_view sameSize = searched.substr(0, wanted.size());
        Require(qel::SameName(wanted, sameSize) == (qel::FoldName(wanted) == qel::FoldName(sameSize)));
        Require(qel::CompareTextFolded(text, searched) == -qel::CompareTextFolded(searched, text));
    }
    return 0;
}
