#pragma once

#include <memory>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

namespace qel {
struct BlowfishTables;
}

/// The Blowfish cipher over whole blocks of 8 bytes, each by itself (ECB): equal blocks come out equal, so it hides a
/// text from a casual reader and no more. The halves of a block are little-endian words, where the published vectors
/// have them big-endian; files in the field are enciphered so.
///
///     CCryptBrowFish cipher;
///     cipher.Initialize(key, 16);
///     const DWORD written = cipher.Encode(text, buffer, length);  // buffer: GetOutputLength(length) bytes
///
/// Copies share the tables of the key: a new key for one is a new key for all of them. Nothing fails. Threads may
/// encipher with one object, or with copies, at the same time, while none of them sets the key.
class QELLIB10_API CCryptBrowFish {
public:
    /// Without a key; set one before enciphering.
    CCryptBrowFish();
    virtual ~CCryptBrowFish();
    CCryptBrowFish(const CCryptBrowFish&);
    CCryptBrowFish& operator=(const CCryptBrowFish&);

    /// Sets the key: @p length bytes of any value, of which those behind the 72nd have no effect. A key is repeated to
    /// 72 bytes, so "ab" and "abab" are the same. No bytes at all, a null pointer or a length below 1, are a caller's
    /// mistake: the tables are then those of a key of zero bytes.
    void Initialize(const unsigned char* key, int length);

    /// @p length rounded up to a multiple of 8; 0 for the last seven lengths, whose multiple has more than 32 bits.
    DWORD GetOutputLength(DWORD length) const;

    /// Enciphers @p length bytes of @p input, the last block filled up with zero bytes. The two places are the same,
    /// which then holds GetOutputLength(length) bytes, or do not overlap. The length is not recorded.
    ///
    /// Kept for files already in the field: for 1 to 6 bytes the block is not filled up, all 8 bytes of @p input are
    /// read and enciphered as they stand.
    /// @return bytes written, GetOutputLength(length)
    DWORD Encode(const unsigned char* input, unsigned char* output, DWORD length);

    /// Deciphers @p length bytes, a multiple of 8; a last block that is not whole is read and written as 8 bytes. The
    /// places are as with Encode.
    void Decode(const unsigned char* input, unsigned char* output, DWORD length);

private:
    // NOLINTBEGIN(readability-identifier-naming): given names
    void Blowfish_encipher(DWORD* left, DWORD* right);
    void Blowfish_decipher(DWORD* left, DWORD* right);
    // NOLINTEND(readability-identifier-naming)

    std::shared_ptr<qel::BlowfishTables> m_pTables;  // shared by copies on purpose: one key
};
