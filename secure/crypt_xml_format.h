#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/text/string.h"

// The files of CCryptXMLDocument.
//
//     plain        the text in UTF-8, every UTF-16 unit by itself: a character above U+FFFF takes twice three bytes
//     enciphered   00, then the text in the code page, zero bytes up to a multiple of 8, in blocks of Blowfish
//
// The length of an enciphered text is not recorded: its first zero byte ends it.
namespace qel {

inline constexpr char kEncipheredMark = '\0';

/// The bytes of an enciphered file. @param text is not empty
std::string EncipheredXml(std::string text, const CString& key);

/// The text of an enciphered file. A last block that is cut is filled up with zero bytes.
/// @param file begins with kEncipheredMark
std::string DecipheredXml(std::string file, const CString& key);

/// UTF-16 in the form of plain files.
std::string EncodedUnits(std::u16string_view units);

/// The same back. Bytes behind a first byte are taken as they are; ordinary forms of four bytes are read as well. Any
/// other byte from 80 on gives U+FFFD.
std::u16string DecodedUnits(std::string_view bytes);

/// UTF-16 as proper UTF-8; a lone surrogate gives U+FFFD.
std::string Utf8OfUnits(std::u16string_view units);

}  // namespace qel
