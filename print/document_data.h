#pragma once

#include <list>
#include <optional>

#include "qellib10/platform/export.h"
#include "qellib10/platform/printing/print_info.h"
#include "qellib10/print/block_data.h"
#include "qellib10/print/page_style.h"
#include "qellib10/print/queue_data.h"

/// Several print jobs on the pages of one document: each job is a cell of the grid into which the page style divides a
/// page. It saves paper and keeps order: reports are laid out when a result is made, kept as files, and printed
/// together later, without the data that they came from.
///
/// @code
/// CQelPrintJobDocumentData document;
/// for (const char* path : {"sample1.job", "sample2.job"})
///     if (!document.CheckAndAddJobFile(path)) return;  // cannot be loaded, or has another page style
/// if (!document.PrintOut()) return;
/// @endcode
///
/// All jobs of a document have the same page style. A document goes to the printer as a whole, when it ends. Operations
/// return 1, or 0 on failure; qel::LastFailure says why, for example that there is no such printer. Nothing is thrown
/// but by OnPrint, and std::bad_alloc by construction and copies. One thread at a time.
class QELLIB10_API CQelPrintJobDocumentData {
public:
    CQelPrintJobDocumentData();
    /// Copies have the page style and the blocks, but no printer context.
    CQelPrintJobDocumentData(const CQelPrintJobDocumentData&) = default;
    CQelPrintJobDocumentData& operator=(const CQelPrintJobDocumentData&) = default;
    virtual ~CQelPrintJobDocumentData();

    /// The page style's defaults, no blocks.
    int Initialize();

    CQelPrintJobPageStyle& GetPageStyle() { return m_PageStyle; }
    const CQelPrintJobPageStyle& GetPageStyle() const { return m_PageStyle; }

    /// Adds the job from a file, or a copy of @p job, as the next cell. The first one gives the document its page
    /// style.
    /// @return 0 for a file that cannot be loaded, and for a page style that differs from the document's
    int CheckAndAddJobFile(const char* path);
    int CheckAndAddJobFile(const CQelPrintJobQueueData& job);

    /// What a PDF document printed by PrintOut says about itself: its own information, otherwise that of its page
    /// style, otherwise that of the context. Empty after Initialize. Pages of OnPrint are in a document that the caller
    /// has started: it has no effect there, see qel::SetPdfInfo.
    const std::optional<qel::PdfInfo>& GetPdfInfo() const { return m_PdfInfo; }
    void SetPdfInfo(const std::optional<qel::PdfInfo>& info) { m_PdfInfo = info; }

    int GetBlockCount() const { return static_cast<int>(m_listBlock.size()); }
    int IsPrintOutBlockExist() const { return m_listBlock.empty() ? 0 : 1; }
    /// Whether the blocks, plus @p more of them, fill a page.
    int IsPrintOutPageExist(int more) const;

    /// Takes over the selected printer context of @p from, like CQelPrintJobPageStyle::MovePrinterDC.
    int MovePrinterDC(CQelPrintJobPageStyle& from) { return m_PageStyle.MovePrinterDC(from); }

    /// Prints all pages as one document, named after the page style: on its selected printer context, which it keeps,
    /// or else on a new one of its printer. Without blocks one empty page is printed.
    /// @return 0 if there is no such printer, if the cells cannot be laid out (see PrintOutMain; no document is started
    /// then), and if the printer does not accept the document. A document started on a selected context stays open
    /// then, so that no other one can be started there: AbortPrintOut ends it.
    int PrintOut();
    /// Ends, without printing it, the document that a failed PrintOut left open on the selected context.
    /// @return 0 if no printer is selected, or if no document is open
    int AbortPrintOut();

    /// Draws the page that @p info asks for, on a context of a framework's page loop, on paper or as a preview.
    /// @throws false (the value) if it cannot be drawn
    int OnPrint(CDC* dc, CPrintInfo* info);

    /// Draws the blocks in the cells of their pages, and computes the page style's printer margins for @p dc.
    /// @param page counted from 1; below 0 all pages, with the end and the start of pages between them unless
    /// @p preview is not 0
    /// @return 0 for a grid without cells; for blocks in several columns whose width is below 1, or in several rows
    /// whose height is, which would be drawn over each other (the margins leave no space, or the paper size is unknown,
    /// see CQelPrintJobPageStyle::GetPaperSizeOn); for an invalid unit; and if the printer accepts no further page. A
    /// single column or row is drawn whatever its size. If the print direction is not 1 or 2, all cells are drawn at
    /// the same place, on purpose.
    int PrintOutMain(CDC* dc, int page, int preview);

protected:
    /// Computes where the margins of @p style are in the drawable area of @p dc, see GetPrnTopMargin. All of them use
    /// the horizontal resolution.
    /// @return 0 for a unit other than 1, 2 and 3, and for a context without a resolution
    static int GetPrintMargin(CDC* dc, CQelPrintJobPageStyle* style);

private:
    LONGLONG CellsPerPage() const;
    // Computes the printer margins. Returns the size of a cell in tenths of a millimetre, or nothing as described at
    // PrintOutMain.
    std::optional<CSize> PlaceCells(CDC* dc);
    bool DrawPages(CDC* dc, int page, int preview);  // like PrintOutMain
    CSize FurthestCell() const;                      // the last column and row, from 0, with a block
    CPoint CellPosition(int cell, const CSize& size) const;

    CQelPrintJobPageStyle m_PageStyle;
    std::list<CQelPrintJobBlockData> m_listBlock;
    std::optional<qel::PdfInfo> m_PdfInfo;
};
