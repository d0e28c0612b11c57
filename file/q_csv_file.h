#pragma once

#include <initializer_list>
#include <memory>
#include <string_view>

#include "qellib10/file/q_file.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// Writes a table as comma-separated text that spreadsheets and databases read. It prevents the usual fault of such
/// files: a quotation mark, a comma or a line end within a field that breaks the table for its reader.
///
/// @code
/// CQCSVFile table;
/// if (!table.Open("readings.csv", CFile::modeCreate | CFile::modeReadWrite)) return;
/// table.WriteCSVString("Sample \"A\"");  // "Sample ""A"""
/// table.WriteDelimiter();
/// table.WriteCSVString(CQVariant::DoubleToStr(7.005, 2, 0));
/// table.WriteCRLF();
/// table.Close();  // a full disk throws here, at the latest
/// @endcode
///
/// The caller opens and closes it as any CQFile and puts each line together. What is written collects in a block of 64
/// KiB. It goes to the file when the block is full and before this object does anything else with the file; Flush sends
/// it as well. Another opening or a duplicate sees it only from then on. A failure to write it, such as a full disk, is
/// thrown only then, but not by Abort or the destructor.
class QELLIB10_API CQCSVFile : public CQFile {
public:
    /// Delimiter, line end and quotation mark are those of the library's own string table, whatever texts an
    /// application has registered: a comma, CR LF and the double quotation mark.
    CQCSVFile();
    ~CQCSVFile() override;

    void SetDelimiter(const CString& delimiter) { m_szDelimiter = delimiter; }
    const CString& GetDelimiter() const { return m_szDelimiter; }
    void SetCRLF(const CString& lineEnd) { m_szCRLF = lineEnd; }
    const CString& GetCRLF() const { return m_szCRLF; }
    /// With an empty mark fields are written without marks.
    void SetQuotationMark(const CString& mark) { m_szQuotationMark = mark; }
    const CString& GetQuotationMark() const { return m_szQuotationMark; }

    /// Writes a text unchanged; null means empty. This and the following throw CFileException like CFile::Write.
    void Write(const char* text);
    /// Writes one field: in quotation marks, with each inner quotation mark doubled. Nothing else is escaped.
    void WriteCSVString(const char* text);
    void WriteDelimiter();
    void WriteCRLF();

    ULONGLONG GetPosition() const override;
    std::unique_ptr<CFile> Duplicate() const override;
    ULONGLONG Seek(LONGLONG offset, UINT from) override;
    void SetLength(ULONGLONG length) override;
    ULONGLONG GetLength() const override;
    UINT Read(void* buffer, UINT count) override;
    void Write(const void* buffer, UINT count) override;
    void LockRange(ULONGLONG position, ULONGLONG count) override;
    void UnlockRange(ULONGLONG position, ULONGLONG count) override;
    void Abort() noexcept override;
    void Flush() override;
    void Close() override;

    using CQFile::GetStatus;
    BOOL GetStatus(CFileStatus& status) const;

private:
    struct Block;

    bool QuoteInBlock(const char* text, char mark);
    void Put(std::initializer_list<std::string_view> pieces);
    void WriteOut() const;
    void WriteThrough(std::string_view bytes) const;
    void WriteOutQuietly() const noexcept;

    CString m_szDelimiter;
    CString m_szCRLF;
    CString m_szQuotationMark;
    std::unique_ptr<Block> m_pBlock;  // bytes that are not in the file yet
};
