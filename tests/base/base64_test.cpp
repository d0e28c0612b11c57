#include "qellib10/base/base64.h"

#include <climits>
#include <fstream>
#include <random>
#include <string_view>

#include "../support/test.h"
#include "qellib10/base/base64_avx2.h"
#include "qellib10/base/base64_plain.h"

namespace {

using Bytes = std::vector<unsigned char>;  // exact blocks on the heap: the sanitizer sees a step outside them
using Text = std::vector<char>;

// Bit by bit, with nothing of the library's ways.
Bytes DecodedByBits(const Text& text) {
    constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    Bytes bytes(text.size() / 4 * 3);
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        const std::size_t value = kAlphabet.find(text[bit / 6]);
        const bool isSet = value != std::string_view::npos && (value >> (5 - bit % 6) & 1) != 0;
        bytes[bit / 8] = static_cast<unsigned char>(bytes[bit / 8] * 2 + isSet);
    }
    return bytes;
}

// What GetBase64ToBin makes of a target of @p room bytes, all of it, and the size that it reports.
std::pair<std::string, int> Decoded(const std::string& text, int room) {
    const Text source(text.begin(), text.end());
    Bytes target(static_cast<std::size_t>(room));
    EXPECT_EQ(CBase64::GetBase64ToBin(source.data(), static_cast<int>(text.size()), target.data(), room), 1);
    return {std::string(target.begin(), target.end()), room};
}

}  // namespace

TEST(Base64, GivesThePublishedTexts) {
    std::ifstream vectors(QELLIB10_TEST_DATA "/base64_rfc4648.txt");
    int count = 0;
    for (std::string bytes, text; std::getline(vectors, bytes, '\t') && std::getline(vectors, text); ++count) {
        Text target(text.size());
        int size = static_cast<int>(text.size());
        const auto* source = reinterpret_cast<const unsigned char*>(bytes.data());
        EXPECT_EQ(CBase64::GetBinToBase64(source, static_cast<int>(bytes.size()), target.data(), size), 1);
        EXPECT_EQ(target, Text(text.begin(), text.end()));
        const auto [back, length] = Decoded(text, CBase64::GetBase64ToBinSize(size));
        EXPECT_EQ(back.substr(0, static_cast<std::size_t>(length)), bytes);
    }
    EXPECT_EQ(count, 7);
    char last[4];
    int size = 4;
    const unsigned char ones = 0xFF;
    EXPECT_EQ(CBase64::GetBinToBase64(&ones, 1, last, size), 1);
    EXPECT_EQ(std::string(last, 4), "/w==");
}

TEST(Base64, AllFormsAgree) {
    std::mt19937 random(1);
    for (std::size_t n = 0; n <= 9000; n = n == 200 ? 9000 : n + 1) {
        SCOPED_TRACE(n);
        Text junk(n), text(n / 4 * 4), quickText = text;  // mostly characters outside the alphabet, which count as 0
        for (char& character : junk) character = static_cast<char>(random());
        const Bytes bytes = DecodedByBits(junk);
        Bytes plain(bytes.size()), quick = plain;
        qel::EncodeBase64Plain(bytes, text.data());
        qel::DecodeBase64Plain(junk, plain.data());
        EXPECT_EQ(DecodedByBits(text), bytes);
        EXPECT_EQ(plain, bytes);
        if (qel::HasAvx2() && n >= 32) {
            EXPECT_EQ(qel::EncodeBase64Avx2(bytes, quickText.data()), bytes.size());
            EXPECT_EQ(quickText, text);
            EXPECT_EQ(qel::DecodeBase64Avx2(junk, quick.data()), text.size());
            EXPECT_EQ(quick, bytes);
        }
        int size = static_cast<int>(n);  // in place
        EXPECT_EQ(CBase64::GetBase64ToBin(junk.data(), size, reinterpret_cast<unsigned char*>(junk.data()), size), 1);
        EXPECT_EQ(Bytes(junk.begin(), junk.begin() + static_cast<std::ptrdiff_t>(bytes.size())), bytes);
    }
}

TEST(Base64, PartialGroupsAreDecodedAndWhatDoesNotFitIsRefused) {
    using namespace std::string_literals;
    EXPECT_EQ(Decoded("QQ==QUJD", 6), std::pair("A\0\0ABC"s, 6));  // only the last group is looked at
    EXPECT_EQ(Decoded("QUJDQQ", 4), std::pair("ABCA"s, 3));
    EXPECT_EQ(Decoded("QUJDQQ=", 3), std::pair("ABC"s, 1));
    EXPECT_EQ(Decoded("QQ=", 0), std::pair(""s, 0));
    EXPECT_EQ(CBase64::GetBinToBase64Size(1610612733), 2147483644);
    EXPECT_EQ(Line({CBase64::GetBinToBase64Size(INT_MAX), CBase64::GetBinToBase64Size(INT_MIN)}), "0 0");
    EXPECT_EQ(CBase64::GetBase64ToBinSize(INT_MAX), 1610612733);
    unsigned char bytes[3] = {};
    char text[4] = {};
    int few = 2, most = INT_MAX;
    EXPECT_EQ(Line({CBase64::GetBinToBase64(bytes, 3, text, few), CBase64::GetBase64ToBin(text, 4, bytes, few)}),
              "0 0");
    EXPECT_EQ(
        Line({CBase64::GetBinToBase64(bytes, most, text, most), CBase64::GetBase64ToBin(nullptr, 4, bytes, most)}),
        "0 0");
}
