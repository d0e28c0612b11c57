#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/text/string.h"

// The files of CCryptXMLDocument.
//
//     plain        the text in UTF-8, each UTF-16 unit by itself: a character above U+FFFF takes twice three bytes
//     enciphered   00, then the text in the code page, zero bytes up to a multiple of 8, in Blowfish blocks
//
// The length of an enciphered text is not recorded: its first zero byte ends it.
namespace qel {

inline constexpr char kEncipheredMark = '\0';

/// The bytes of an enciphered file. @param text not empty
std::string EncipheredXml(std::string text, const CString& key);

/// The text of an enciphered file. An incomplete last block is filled up with zero bytes.
/// @param file starts with kEncipheredMark
std::string DecipheredXml(std::string file, const CString& key);

/// UTF-16 in the form used in plain files.
std::string EncodedUnits(std::u16string_view units);

/// The reverse. Bytes after a first byte are not checked; standard forms of four bytes are read as well. Any other byte
/// from 80 on gives U+FFFD.
std::u16string DecodedUnits(std::string_view bytes);

/// UTF-16 as standard UTF-8; a lone surrogate gives U+FFFD.
std::string Utf8OfUnits(std::u16string_view units);

}  // namespace qel
