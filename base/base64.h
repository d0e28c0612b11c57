#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

/// Bytes as Base64 text and back: the standard alphabet of RFC 4648 with "=" padding, never a line break.
///
/// Sizes count bytes and characters; a negative one counts as 0. Conversions answer 1, or 0 with nothing written when
/// the target is too small or a pointer is null where there is something to read or write. Characters outside the
/// alphabet are no error, they decode as 0 bits.
class QELLIB10_API CBase64 {
public:
    virtual ~CBase64();

    /// Characters that @p n bytes encode to, padding included; 0 when that is more than an int can say (from
    /// 1 610 612 734 bytes).
    static int GetBinToBase64Size(int n);

    /// Bytes that the whole groups among @p n characters decode to, before padding is taken off.
    static int GetBase64ToBinSize(int n);

    /// Encodes @p n bytes. No terminating zero is written.
    /// @param dst not overlapping @p src
    /// @param dstSize in: room in @p dst; out: characters written
    static BOOL GetBinToBase64(const unsigned char* src, int n, char* dst, int& dstSize);

    /// Decodes @p n characters. Padding is looked for in the last group only and takes 1 or 2 off @p dstSize; the
    /// bytes taken off are written all the same, as 0 bits.
    ///
    /// @p n should be a multiple of four. The characters that a last, partial group lacks count as 0 bits; its bytes
    /// are not counted in @p dstSize and written behind the counted ones as far as @p dst has room. An "=" that is its
    /// third character still takes 2 off, down to 0.
    /// @param dst may be @p src: text can be decoded in place
    /// @param dstSize in: room in @p dst, GetBase64ToBinSize(n) at least; out: bytes decoded
    static BOOL GetBase64ToBin(const char* src, int n, unsigned char* dst, int& dstSize);

protected:
    /// With @p toBase64 the character of the 6-bit value @p c ("=" from 64 on), else the value of the character @p c
    /// (0 for one outside the alphabet).
    static unsigned char GetConvertBase64Char(int toBase64, unsigned char c);
};
