#include "qellib10/secure/crypt_brow_fish.h"

#include <gcrypt.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "../support/cases.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes FromHex(const std::string& text) {
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes.push_back(static_cast<unsigned char>(std::stoi(text.substr(i, 2), nullptr, 16)));
    }
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

Bytes EncodedByGcrypt(const Bytes& key, const Bytes& plain) {
    gcry_check_version(nullptr);
    gcry_cipher_hd_t cipher = nullptr;
    EXPECT_EQ(gcry_cipher_open(&cipher, GCRY_CIPHER_BLOWFISH, GCRY_CIPHER_MODE_ECB, 0), 0u);
    EXPECT_EQ(gcry_cipher_setkey(cipher, key.data(), key.size()), 0u);
    Bytes out(plain.size());
    EXPECT_EQ(gcry_cipher_encrypt(cipher, out.data(), out.size(), plain.data(), plain.size()), 0u);
    gcry_cipher_close(cipher);
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

TEST(CryptBrowFish, AgreesWithGcryptOverManyBlocks) {
    for (std::size_t blocks = 1; blocks < 14; ++blocks) {  // in fours and what is left of them
        const Bytes key = RandomBytes(4 * blocks);
        const Bytes plain = RandomBytes(8 * blocks);
        const CCryptBrowFish cipher = WithKey(key);
        const Bytes enciphered = Encoded(cipher, plain);
        EXPECT_EQ(Swapped(enciphered), EncodedByGcrypt(key, Swapped(plain))) << blocks;
        EXPECT_EQ(Decoded(cipher, enciphered), plain) << blocks;
    }
}

TEST(CryptBrowFish, FillsTheLastBlockWithZerosAndShortTextWithWhatFollowsIt) {
    CCryptBrowFish cipher = WithKey({1, 2, 3});
    const Bytes source = RandomBytes(48);
    for (const auto& [length, size, filled] : Cases<DWORD, std::size_t, bool>{{0, 0, false},
                                                                              {1, 8, false},
                                                                              {6, 8, false},
                                                                              {7, 8, true},
                                                                              {8, 8, true},
                                                                              {9, 16, true},
                                                                              {31, 32, true},
                                                                              {33, 40, true},
                                                                              {40, 40, true}}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(cipher.GetOutputLength(length), size);
        Bytes padded(source.begin(), source.begin() + static_cast<std::ptrdiff_t>(size));
        if (filled) std::fill(padded.begin() + length, padded.end(), static_cast<unsigned char>(0));
        const Bytes expected = Encoded(cipher, padded);

        Bytes apart(source.size(), 0xAA);
        EXPECT_EQ(cipher.Encode(source.data(), apart.data(), length), size);
        EXPECT_TRUE(std::ranges::equal(expected, std::span(apart).first(size)));
        EXPECT_EQ(std::ranges::count(std::span(apart).subspan(size), 0xAA), std::ssize(apart) - std::ssize(expected));

        Bytes inPlace = source;
        EXPECT_EQ(cipher.Encode(inPlace.data(), inPlace.data(), length), size);
        EXPECT_TRUE(std::ranges::equal(expected, std::span(inPlace).first(size)));
        cipher.Decode(inPlace.data(), inPlace.data(), static_cast<DWORD>(size));
        EXPECT_TRUE(std::ranges::equal(padded, std::span(inPlace).first(size)));
    }
    EXPECT_EQ(cipher.GetOutputLength(0xFFFFFFF9), 0u);
}

TEST(CryptBrowFish, RepeatsItsKeyUpTo72Bytes) {
    const Bytes plain = RandomBytes(16);
    const Bytes longKey = RandomBytes(80);
    const Bytes cutKey(longKey.begin(), longKey.begin() + 72);
    EXPECT_EQ(Encoded(WithKey(longKey), plain), Encoded(WithKey(cutKey), plain));
    EXPECT_EQ(Encoded(WithKey({1, 2, 3}), plain), Encoded(WithKey({1, 2, 3, 1, 2, 3}), plain));
    EXPECT_EQ(Encoded(WithKey({}), plain), Encoded(WithKey({0}), plain));  // a mistake with a plain result
}

TEST(CryptBrowFish, CopiesShareTheKey) {
    const Bytes plain = RandomBytes(8);
    CCryptBrowFish copy;
    {
        const CCryptBrowFish first = WithKey({1});
        copy = first;
        CCryptBrowFish second = first;
        second.Initialize(Bytes{2}.data(), 1);
        EXPECT_EQ(Encoded(first, plain), Encoded(WithKey({2}), plain));
    }
    EXPECT_EQ(Encoded(copy, plain), Encoded(WithKey({2}), plain));
}
