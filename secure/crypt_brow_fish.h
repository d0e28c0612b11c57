#pragma once

#include <memory>

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

namespace qel {
struct BlowfishTables;
}

/// The Blowfish cipher over whole blocks of 8 bytes, each by itself (ECB): equal blocks give equal results, so it only
/// hides a text from casual readers. The halves of a block are little-endian words, while the published vectors have
/// them big-endian; files in the field are enciphered in this way.
///
/// @code
/// const unsigned char key[] = "a key of 16 byte";
/// const unsigned char text[] = "VOLUME * 0.6005";  // with its zero 16 bytes
/// unsigned char buffer[16];                        // GetOutputLength(16)
/// CCryptBrowFish cipher;
/// cipher.Initialize(key, 16);
/// const DWORD written = cipher.Encode(text, buffer, 16);
/// @endcode
///
/// Copies share the tables of the key: a new key for one is a new key for all of them. Nothing fails. Threads may
/// encipher with one object, or with copies, at the same time, as long as none of them sets the key.
class QELLIB10_API CCryptBrowFish {
public:
    /// Without a key; set one before enciphering.
    CCryptBrowFish();
    virtual ~CCryptBrowFish();
    CCryptBrowFish(const CCryptBrowFish&);
    CCryptBrowFish& operator=(const CCryptBrowFish&);

    /// Sets the key: @p length bytes of any value; those after the 72nd have no effect. A key is repeated to 72 bytes,
    /// so "ab" and "abab" are the same. Do not pass an empty key (a null pointer or a length below 1): the tables are
    /// then those of a key of zero bytes.
    void Initialize(const unsigned char* key, int length);

    /// @p length rounded up to a multiple of 8; 0 for the last seven lengths, whose multiple exceeds 32 bits.
    DWORD GetOutputLength(DWORD length) const;

    /// Enciphers @p length bytes of @p input; the last block is filled up with zero bytes. Input and output are the
    /// same buffer, which then has GetOutputLength(length) bytes, or do not overlap. The length is not recorded.
    ///
    /// Kept for files already in the field: for 1 to 6 bytes the block is not filled up; all 8 bytes of @p input are
    /// read and enciphered unchanged.
    /// @return bytes written, GetOutputLength(length)
    DWORD Encode(const unsigned char* input, unsigned char* output, DWORD length);

    /// Deciphers @p length bytes, a multiple of 8; an incomplete last block is read and written as 8 bytes. The buffers
    /// are as for Encode.
    void Decode(const unsigned char* input, unsigned char* output, DWORD length);

private:
    // NOLINTBEGIN(readability-identifier-naming): given names
    void Blowfish_encipher(DWORD* left, DWORD* right);
    void Blowfish_decipher(DWORD* left, DWORD* right);
    // NOLINTEND(readability-identifier-naming)

    std::shared_ptr<qel::BlowfishTables> m_pTables;  // shared by copies on purpose: one key
};
