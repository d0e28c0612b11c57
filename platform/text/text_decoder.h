#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "qellib10/platform/text/page_table.h"

namespace qel {

/// Encodings of text in files. kUnchecked: any in which ASCII characters are single bytes; they are passed on as they
/// are.
enum class FileEncoding { kUtf8, kUtf16Little, kUtf16Big, kCodePage, kUnchecked };

/// Turns text that comes in blocks into UTF-8. Conversions of whole texts replace what is invalid; this one stops
/// there, so that a damaged file is reported and not read as something else. A zero byte or U+0000 is invalid in all
/// encodings.
class TextDecoder {
public:
    /// @param page of kCodePage, 932 or 1252
    /// @throws std::runtime_error when the system has no converter for the page
    explicit TextDecoder(FileEncoding encoding, UINT page = 0);

    /// Appends the characters of @p bytes, which follow those of the calls before. If a character is cut at their
    /// end, the rest of it comes with the next call.
    /// @return false when some of it is invalid; @p utf8 then has all that is before it, and this is the last call
    bool Decode(std::string_view bytes, std::string& utf8);

    /// Whether the text ends between characters. To be asked after the last block.
    bool IsWhole() const { return m_part.empty(); }

    /// Bytes read as characters so far: after a failure, how many are before the invalid one.
    std::uint64_t Decoded() const { return m_decoded; }

private:
    enum class Step { kCharacter, kIncomplete, kInvalid };

    std::size_t DecodeWhole(std::string_view bytes, std::string& utf8, Step& last) const;
    Step DecodeOne(std::string_view bytes, std::size_t& at, std::string& utf8) const;
    Step DecodeUtf8(std::string_view bytes, std::size_t& at, std::string& utf8) const;
    Step DecodeUtf16(std::string_view bytes, std::size_t& at, std::string& utf8) const;
    Step DecodePage(std::string_view bytes, std::size_t& at, std::string& utf8) const;
    char16_t UnitAt(std::string_view bytes, std::size_t at) const;

    FileEncoding m_encoding;
    const PageTable* m_page;
    std::string m_part;  // of a character, or of a pair of surrogates
    std::uint64_t m_decoded = 0;
};

}  // namespace qel
