#include "qellib10/platform/printing/document_name.h"

#include <algorithm>

namespace qel {
namespace {

constexpr std::size_t kLongestFileName = 200;
constexpr std::string_view kOfPaths = "/\\:*?\"<>|", kCutOff = " .";

bool IsControl(char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }

bool ContinuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

std::string Printable(std::string_view utf8, std::size_t bytes) {
    if (utf8.size() > bytes) {
        while (bytes > 0 && ContinuesCharacter(utf8[bytes])) --bytes;
        utf8 = utf8.substr(0, bytes);
    }
    std::string text(utf8);
    std::ranges::replace_if(text, IsControl, '_');
    return text;
}

std::string FileNameOf(std::string_view document) {
    document.remove_prefix(std::min(document.find_first_not_of(kCutOff), document.size()));
    std::string name = Printable(document, kLongestFileName);
    std::ranges::replace_if(
        name, [](char byte) { return kOfPaths.find(byte) != std::string_view::npos; }, '_');
    name.resize(name.find_last_not_of(kCutOff) + 1);
    return name.empty() ? "document" : name;
}

}  // namespace qel
