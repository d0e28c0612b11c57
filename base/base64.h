#pragma once

#include "qellib10/platform/export.h"
#include "qellib10/platform/types.h"

/// Converts bytes to Base64 text and back: the standard alphabet of RFC 4648 with "=" padding, never a line break.
/// Bytes that are put into a document or a setting as they are end at the first zero, and a code page changes the rest.
/// As Base64 they come back unchanged.
///
/// @code
/// const unsigned char telegram[] = {0x02, 0x00, 0x91, 0x03};
/// char text[8];
/// int size = sizeof text;  // GetBinToBase64Size(4) is 8
/// if (!CBase64::GetBinToBase64(telegram, 4, text, size)) return;
/// const CString setting(text, size);  // no zero was written: the length is needed
/// @endcode
///
/// Sizes count bytes and characters; a negative one means 0. Conversions return 1, or 0 (and write nothing) if the
/// target is too small or a needed pointer is null. Nothing is thrown. Any thread may call them.
///
/// Characters outside the alphabet are not errors: they decode as 0 bits.
class QELLIB10_API CBase64 {
public:
    virtual ~CBase64();

    /// Characters that @p n bytes encode to, padding included; 0 if that does not fit in an int (from 1 610 612 734
    /// bytes).
    static int GetBinToBase64Size(int n);

    /// Bytes that the whole groups in @p n characters decode to, before the padding is subtracted.
    static int GetBase64ToBinSize(int n);

    /// Encodes @p n bytes. No terminating zero is written.
    /// @param dst not overlapping @p src
    /// @param dstSize in: size of @p dst; out: characters written
    static BOOL GetBinToBase64(const unsigned char* src, int n, char* dst, int& dstSize);

    /// Decodes @p n characters. Padding is searched only in the last group and subtracts 1 or 2 from @p dstSize; the
    /// subtracted bytes are still written, as 0 bits.
    ///
    /// @p n should be a multiple of four. The characters missing in a last, partial group count as 0 bits; its bytes
    /// are not counted in @p dstSize but written after the counted ones as far as they fit in @p dst. An "=" as its
    /// third character still subtracts 2, down to 0.
    /// @param dst may be @p src: text can be decoded in place
    /// @param dstSize in: size of @p dst, at least GetBase64ToBinSize(n); out: bytes decoded
    static BOOL GetBase64ToBin(const char* src, int n, unsigned char* dst, int& dstSize);

protected:
    /// With @p toBase64 the character for the 6-bit value @p c ("=" from 64 on), else the value of the character @p c
    /// (0 if it is outside the alphabet).
    static unsigned char GetConvertBase64Char(int toBase64, unsigned char c);
};
