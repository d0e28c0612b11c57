#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "qellib10/file/csv_reader.h"
#include "qellib10/platform/text/text_decoder.h"

namespace qel {

/// The text of a table in UTF-8, block by block, from a file or from memory.
class CsvTextSource {
public:
    CsvTextSource(CFile* file, std::string_view text, CsvEncoding encoding);

    /// Appends the next block's text to @p text. After the first call of a source, the byte order mark is passed over.
    /// @return false when nothing more can be read or when it is invalid; at the end of the source it is true, and
    /// IsAll
    /// @throws CFileException when the file cannot be read, std::runtime_error when the system does not know the code
    /// page
    bool Append(std::string& text);

    bool IsAll() const { return m_isAll; }

    /// After a false: from 1, the byte at which the invalid character starts, and what it is not a character of.
    std::uint64_t InvalidByte() const { return m_mark + m_decoder->Decoded() + 1; }
    std::string InvalidCause() const;

private:
    std::string_view NextBlock();
    std::string_view WithoutMark(std::string_view block);

    CFile* m_file;
    std::string_view m_rest;  // of a text in memory
    CsvEncoding m_encoding;
    std::unique_ptr<char[]> m_block;
    std::optional<TextDecoder> m_decoder;
    std::size_t m_mark = 0;  // bytes of the byte order mark
    const char* m_name = "";
    bool m_isAll = false, m_isInvalid = false;
};

}  // namespace qel
