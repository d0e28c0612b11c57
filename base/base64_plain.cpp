#include "qellib10/base/base64_plain.h"

namespace qel {

void EncodeBase64Plain(std::span<const unsigned char> source, char* target) {
    const auto character = [](unsigned bits) { return kBase64Alphabet[bits & 63]; };
    for (; source.size() >= 3; source = source.subspan(3), target += 4) {
        const unsigned group = source[0] << 16 | source[1] << 8 | source[2];
        target[0] = character(group >> 18);
        target[1] = character(group >> 12);
        target[2] = character(group >> 6);
        target[3] = character(group);
    }
    if (source.empty()) return;
    const unsigned group = source[0] << 16 | (source.size() > 1 ? source[1] << 8 : 0);
    target[0] = character(group >> 18);
    target[1] = character(group >> 12);
    target[2] = source.size() > 1 ? character(group >> 6) : kBase64Padding;
    target[3] = kBase64Padding;
}

void DecodeBase64Plain(std::span<const char> source, unsigned char* target) {
    const auto value = [](char character) -> unsigned { return kBase64Values[static_cast<unsigned char>(character)]; };
    for (; source.size() >= 4; source = source.subspan(4), target += 3) {
        const unsigned group =
            value(source[0]) << 18 | value(source[1]) << 12 | value(source[2]) << 6 | value(source[3]);
        target[0] = static_cast<unsigned char>(group >> 16);
        target[1] = static_cast<unsigned char>(group >> 8);
        target[2] = static_cast<unsigned char>(group);
    }
}

}  // namespace qel
