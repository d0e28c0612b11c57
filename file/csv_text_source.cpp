#include "qellib10/file/csv_text_source.h"

#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr UINT kBlock = 16 * 1024;  // stays in the nearest cache while it is checked and copied

struct Encoding {
    const char* mark;  // at the start of the file
    FileEncoding encoding;
    const char* name;
};
constexpr Encoding kMarked[] = {{"\xEF\xBB\xBF", FileEncoding::kUtf8, "UTF-8"},
                                {"\xFF\xFE", FileEncoding::kUtf16Little, "UTF-16"},
                                {"\xFE\xFF", FileEncoding::kUtf16Big, "UTF-16"}};

Encoding Unmarked(CsvEncoding encoding) {
    switch (encoding) {
        case CsvEncoding::kCodePage932:
            return {"", FileEncoding::kCodePage, "code page 932"};
        case CsvEncoding::kCodePage1252:
            return {"", FileEncoding::kCodePage, "code page 1252"};
        case CsvEncoding::kUnchecked:
            return {"", FileEncoding::kUnchecked, nullptr};
        case CsvEncoding::kUtf8:
            break;
    }
    return {"", FileEncoding::kUtf8, "UTF-8"};
}

Encoding EncodingOf(std::string_view start, CsvEncoding unmarked) {
    for (const Encoding& marked : kMarked) {
        if (!start.starts_with(marked.mark)) continue;
        const bool staysUnchecked = marked.encoding == FileEncoding::kUtf8 && unmarked == CsvEncoding::kUnchecked;
        return staysUnchecked ? Encoding{marked.mark, FileEncoding::kUnchecked, nullptr} : marked;
    }
    return Unmarked(unmarked);
}

}  // namespace

CsvTextSource::CsvTextSource(CFile* file, std::string_view text, CsvEncoding encoding)
    : m_file(file), m_rest(text), m_encoding(encoding) {
    if (file != nullptr) m_block = std::make_unique_for_overwrite<char[]>(kBlock);
}

bool CsvTextSource::Append(std::string& text) {
    if (m_isInvalid) return false;
    std::string_view block = NextBlock();
    if (!m_decoder) block = WithoutMark(block);
    m_isAll = block.empty() && m_decoder->IsWhole();
    m_isInvalid = block.empty() ? !m_isAll : !m_decoder->Decode(block, text);
    return !m_isInvalid;
}

// Fewer bytes than a whole block only at the end.
std::string_view CsvTextSource::NextBlock() {
    if (m_file == nullptr) {
        const std::string_view block = m_rest.substr(0, kBlock);
        m_rest.remove_prefix(block.size());
        return block;
    }
    UINT size = 0;
    while (size < kBlock) {
        const UINT read = m_file->Read(m_block.get() + size, kBlock - size);
        if (read == 0) break;
        size += read;
    }
    return {m_block.get(), size};
}

std::string_view CsvTextSource::WithoutMark(std::string_view block) {
    const Encoding found = EncodingOf(block, m_encoding);
    const UINT page = m_encoding == CsvEncoding::kCodePage1252 ? kCodePageLatin1 : kCodePageJapanese;
    m_decoder.emplace(found.encoding, page);
    m_name = found.name;
    m_mark = std::string_view(found.mark).size();
    return block.substr(m_mark);
}

std::string CsvTextSource::InvalidCause() const {
    return m_name == nullptr ? "a zero byte" : "not a character of " + std::string(m_name) + ", or a zero byte";
}

}  // namespace qel
