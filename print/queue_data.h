#pragma once

#include <memory>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/print/block_data.h"
#include "qellib10/print/page_style.h"

namespace qel {
class XmlAttributes;
class XmlDocument;
class XmlElementWriter;
class XmlNode;
}  // namespace qel

/// A print job: the paper and printer that it is meant for, and the commands that draw it. It records a report at the
/// moment of the result, so that a later print shows what was signed, not what the program would draw today. It is kept
/// in a job file, an XML document (docs/formats.md), and printed by CQelPrintJobDocumentData, alone or with others on a
/// page.
///
/// @code
/// CQelPrintJobQueueData job;
/// job.GetPageStyle().SetDpi(600);  // before anything in millimetres
/// job.SetDefaultFont("Arial", 100, RGB(0, 0, 0));
/// job.AddMillimetreCommandText(CRect(100, 100, 900, 160), "Titration", 1);
/// job.AddMillimetreCommandLine(CRect(100, 165, 900, 165));
/// if (!job.SaveJobFile("result.job")) return;
/// @endcode
///
/// Operations return 1, or 0 when a file is missing or refused, or memory runs out (qel::LastFailure says which); a
/// load may have added a part then. The public ones throw nothing but std::bad_alloc, by construction, copying and
/// SetDefaultFont alone. One thread at a time.
class QELLIB10_API CQelPrintJobQueueData {
public:
    CQelPrintJobQueueData();
    /// A copy has the page style and the commands; its default font is that of a new job. The target of an assignment
    /// keeps its own default font.
    CQelPrintJobQueueData(const CQelPrintJobQueueData& other);
    CQelPrintJobQueueData& operator=(const CQelPrintJobQueueData& other);
    virtual ~CQelPrintJobQueueData();

    /// The page style's defaults, no commands, no default font.
    int Initialize();
    /// No commands, no default font.
    int InitializeData();

    CQelPrintJobPageStyle& GetPageStyle() { return m_PageStyle; }
    const CQelPrintJobPageStyle& GetPageStyle() const { return m_PageStyle; }
    CQelPrintJobBlockData& GetBlock() { return m_Block; }
    const CQelPrintJobBlockData& GetBlock() const { return m_Block; }

    /// The font of texts in millimetres; it is not stored with the job.
    /// @param size tenths of a point
    void SetDefaultFont(const char* faceName, int size, unsigned long color);

    int AddCommand(const CQelPrintJobCommand& command);

    // Boxes and lines in tenths of a millimetre, converted with the resolution of the page style, or not converted if
    // that is unknown.
    // @param style as for CQelPrintJobCommand::SetText
    int AddMillimetreCommandText(CRect rect, const char* text, int style);
    /// The text of @p stringId from the string tables; empty if none has it.
    int AddMillimetreCommandText(const CRect& rect, UINT stringId, int style);
    int AddMillimetreCommandLine(CRect rect);  ///< from the top left to the bottom right corner

    /// Writes the job file, replacing an existing one as a whole. The cursor of the commands is then at the end.
    int SaveJobFile(const char* path);

    /// Reads a job file: its page style values replace those of this job, its commands are added to the existing ones.
    /// Unknown elements are ignored; numbers are read from the start of a value, else 0.
    /// @return 0 also if it is not well-formed XML; the job does not change then
    int LoadJobFile(const char* path);

    /// The text as one XML section, or as several if it contains a section's end.
    static CString Quote(const char* text);

protected:
    /// Ensures that there is an empty document to load into.
    int InitializeParser();

    // For a derived class that stores elements of its own in a file of the same kind; the types are in platform/xml/.

    /// Adds an element with the value to the element being written. A null text is the empty one.
    /// @throws DataError like XmlElementWriter::Begin
    static void AddSubNode(qel::XmlElementWriter& node, const char* name, int value);
    static void AddSubNode(qel::XmlElementWriter& node, const char* name, const char* value);
    /// Adds an attribute to the element that was started last.
    /// @throws DataError like XmlElementWriter::Attribute
    static void AddAttribute(qel::XmlElementWriter& element, const char* name, int value);
    static void AddAttribute(qel::XmlElementWriter& element, const char* name, const char* value);
    /// @return @p ifMissing if there is no such attribute, and for a null name
    static int GetAttributeInt(qel::XmlAttributes& attributes, const char* name, int ifMissing);
    static CString GetAttributeString(qel::XmlAttributes& attributes, const char* name, const char* ifMissing);

private:
    void WritePageStyle(qel::XmlElementWriter& root) const;
    static void WriteCommand(qel::XmlElementWriter& commands, const CQelPrintJobCommand& command);
    void ReadPageStyleValue(const qel::XmlNode& value);
    void ReadCommand(const qel::XmlNode& element);

    std::unique_ptr<qel::XmlDocument> m_pDocument;
    CQelPrintJobPageStyle m_PageStyle;
    CQelPrintJobBlockData m_Block;
    CString m_szDefaultFontName;
    int m_nDefaultFontSize = 0;
    DWORD m_dwDefaultColor = 0;
};
