#include "qellib10/secure/crypt_brow_fish.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

Bytes FromHex(const std::string& text) {
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(text.substr(i, 2), nullptr, 16)));
    return bytes;
}

Bytes RandomBytes(std::size_t size) {
    static std::mt19937 random(1);
    Bytes bytes(size);
    std::ranges::generate(bytes, [&] { return static_cast<unsigned char>(random()); });
    return bytes;
}

// Published vectors and other libraries have the halves of a block the other way round.
Bytes Swapped(Bytes bytes) {
    for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4) std::reverse(bytes.data() + i, bytes.data() + i + 4);
    return bytes;
}

CCryptBrowFish WithKey(const Bytes& key) {
    CCryptBrowFish cipher;
    cipher.Initialize(key.data(), static_cast<int>(key.size()));
    return cipher;
}

Bytes Encoded(CCryptBrowFish cipher, const Bytes& plain) {
    Bytes out(cipher.GetOutputLength(static_cast<DWORD>(plain.size())));
    EXPECT_EQ(cipher.Encode(plain.data(), out.data(), static_cast<DWORD>(plain.size())), out.size());
    return out;
}

Bytes Decoded(CCryptBrowFish cipher, const Bytes& enciphered) {
    Bytes out(enciphered.size());
    cipher.Decode(enciphered.data(), out.data(), static_cast<DWORD>(out.size()));
    return out;
}

}  // namespace

TEST(CryptBrowFish, GivesThePublishedBlocks) {
    std::ifstream file(QELLIB10_TEST_DATA "/blowfish_vectors.txt");
    int vectors = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) continue;
        SCOPED_TRACE(line);
        std::string key, plain, enciphered;
        std::istringstream(line) >> key >> plain >> enciphered;
        const CCryptBrowFish cipher = WithKey(FromHex(key));
        EXPECT_EQ(Swapped(Encoded(cipher, Swapped(FromHex(plain)))), FromHex(enciphered));
        EXPECT_EQ(Swapped(Decoded(cipher, Swapped(FromHex(enciphered)))), FromHex(plain));
        ++vectors;
    }
    EXPECT_EQ(vectors, 57);
}

TEST(CryptBrowFish, ManyBlocksAreEachByItself) {
    const CCryptBrowFish cipher = WithKey(RandomBytes(56));
    for (std::size_t blocks = 1; blocks < 14; ++blocks) {  // in fours and what is left of them
        const Bytes plain = RandomBytes(8 * blocks);
        Bytes expected;
        for (std::size_t i = 0; i < blocks; ++i) {
            const Bytes one = Encoded(cipher, Bytes(&plain[8 * i], &plain[8 * i] + 8));
            expected.insert(expected.end(), one.begin(), one.end());
        }
        EXPECT_EQ(Encoded(cipher, plain), expected) << blocks;
        EXPECT_EQ(Decoded(cipher, expected), plain) << blocks;
    }
}

TEST(CryptBrowFish, FillsTheLastBlockWithZerosAndShortTextWithWhatFollowsIt) {
    CCryptBrowFish cipher = WithKey({1, 2, 3});
    const Bytes source = RandomBytes(48);
    for (const DWORD length : {0, 1, 6, 7, 8, 9, 31, 33, 40}) {
        SCOPED_TRACE(length);
        const std::size_t size = (length + 7) / 8 * 8;
        EXPECT_EQ(cipher.GetOutputLength(length), size);
        Bytes padded(source.begin(), source.begin() + static_cast<std::ptrdiff_t>(size));
        if (length > 6) std::fill(padded.begin() + length, padded.end(), static_cast<unsigned char>(0));
        const Bytes expected = Encoded(cipher, padded);

        Bytes apart(source.size(), 0xAA);
        EXPECT_EQ(cipher.Encode(source.data(), apart.data(), length), size);
        EXPECT_TRUE(std::ranges::equal(expected, std::span(apart).first(size)));
        EXPECT_TRUE(size == apart.size() || apart[size] == 0xAA);

        Bytes inPlace = source;
        EXPECT_EQ(cipher.Encode(inPlace.data(), inPlace.data(), length), size);
        EXPECT_TRUE(std::ranges::equal(expected, std::span(inPlace).first(size)));
        cipher.Decode(inPlace.data(), inPlace.data(), length);  // as whole blocks
        EXPECT_TRUE(std::ranges::equal(padded, std::span(inPlace).first(size)));
    }
    EXPECT_EQ(cipher.GetOutputLength(0xFFFFFFF9), 0u);
}

TEST(CryptBrowFish, NoKeyIsAZeroByteAndNothingCountsPast72Bytes) {
    Bytes key = RandomBytes(73);
    const Bytes plain = RandomBytes(8), enciphered = Encoded(WithKey(key), plain);
    key.pop_back();
    EXPECT_EQ(Encoded(WithKey(key), plain), enciphered);
    EXPECT_EQ(Encoded(WithKey({}), plain), Encoded(WithKey({0}), plain));
}

TEST(CryptBrowFish, CopiesShareTheKey) {
    const Bytes plain = RandomBytes(8);
    CCryptBrowFish assigned;
    {
        CCryptBrowFish first = WithKey({1});
        assigned = first;
        CCryptBrowFish(first).Initialize(Bytes{2}.data(), 1);
        EXPECT_EQ(Encoded(first, plain), Encoded(WithKey({2}), plain));
    }
    EXPECT_EQ(Encoded(assigned, plain), Encoded(WithKey({2}), plain));
}
