#include "qellib10/secure/crypt_brow_fish.h"

#include <algorithm>
#include <span>

#include "qellib10/secure/blowfish.h"

using qel::kBlowfishBlock;

CCryptBrowFish::CCryptBrowFish() : m_pTables(std::make_shared<qel::BlowfishTables>(qel::kBlowfishStart)) {}
CCryptBrowFish::~CCryptBrowFish() = default;
// Copied, not moved from: an object without tables would be unusable.
CCryptBrowFish::CCryptBrowFish(const CCryptBrowFish&) = default;
CCryptBrowFish& CCryptBrowFish::operator=(const CCryptBrowFish&) = default;

void CCryptBrowFish::Initialize(const unsigned char* key, int length) {
    const bool any = key != nullptr && length > 0;
    qel::MakeBlowfishTables(*m_pTables, any ? std::span(key, static_cast<std::size_t>(length)) : std::span(key, 0));
}

DWORD CCryptBrowFish::GetOutputLength(DWORD length) const {
    constexpr DWORD kBelow = kBlowfishBlock - 1;
    return (length + kBelow) & ~kBelow;
}

DWORD CCryptBrowFish::Encode(const unsigned char* input, unsigned char* output, DWORD length) {
    const DWORD size = GetOutputLength(length);
    if (size == 0) return 0;
    const bool isShort = length < kBlowfishBlock - 1;  // taken as a whole block
    const std::size_t whole = isShort ? 1 : length / kBlowfishBlock;
    qel::EncipherBlowfish(*m_pTables, input, output, whole);
    if (const std::size_t done = whole * kBlowfishBlock; done < size) {
        unsigned char* const last = output + done;
        const std::size_t rest = length - done;
        if (input != output) std::copy_n(input + done, rest, last);
        std::fill_n(last + rest, kBlowfishBlock - rest, static_cast<unsigned char>(0));
        qel::EncipherBlowfish(*m_pTables, last, last, 1);
    }
    return size;
}

void CCryptBrowFish::Decode(const unsigned char* input, unsigned char* output, DWORD length) {
    const std::size_t blocks = length / kBlowfishBlock + (length % kBlowfishBlock != 0);
    qel::DecipherBlowfish(*m_pTables, input, output, blocks);
}

void CCryptBrowFish::Blowfish_encipher(DWORD* left, DWORD* right) { qel::EncipherBlowfish(*m_pTables, *left, *right); }

void CCryptBrowFish::Blowfish_decipher(DWORD* left, DWORD* right) { qel::DecipherBlowfish(*m_pTables, *left, *right); }
