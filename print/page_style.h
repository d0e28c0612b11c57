#pragma once

#include <optional>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/pdf_info.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/printing/print_info.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// Owns a context. A copy of the owner has none, and the target of an assignment deletes its own.
class QELLIB10_API OwnedDC {
public:
    OwnedDC() noexcept = default;
    OwnedDC(const OwnedDC&) noexcept {}
    OwnedDC& operator=(const OwnedDC& other) noexcept {
        if (this != &other) Reset();
        return *this;
    }
    ~OwnedDC() { Reset(); }

    HDC Get() const noexcept { return m_hDC; }
    void Reset(HDC dc = nullptr) noexcept;  ///< deletes the former one
    HDC Release() noexcept;

private:
    HDC m_hDC = nullptr;
};

}  // namespace qel

/// The paper and the printer of a print job: names, form, orientation and resolution, margins, and how many cells a
/// page is divided into. A report that was laid out for one sheet and printed on another loses its edge; so every job
/// carries its own style, and a document takes only jobs of the same style.
///
/// @code
/// CQelPrintJobPageStyle style;  // A4, portrait
/// style.SetPrinterDevice("PDF");
/// style.SetDpi(600);
/// style.SetTopMargin(200);  // 20 mm
/// style.SetBottomMargin(200);
/// style.SetPrintBlock(CSize(1, 3));  // three reports on a page
/// @endcode
///
/// Margins, paper size and positions are in tenths of a millimetre; what is drawn is in the device units of the
/// printer. Set the resolution before something is drawn: in a job without one, marks have no size and millimetres are
/// not converted.
///
/// A style owns at most one context of its printer (the selected one). Copies and assignment leave it where it is; an
/// assigned style drops its own, unless it is assigned to itself. Operations return 1, or 0 (null) on failure;
/// qel::LastFailure says why. Nothing is thrown but std::bad_alloc, by construction, copies and what takes or loads a
/// text.
class QELLIB10_API CQelPrintJobPageStyle {
public:
    /// Like after Initialize, with empty names and printer margins of 0.
    CQelPrintJobPageStyle();
    CQelPrintJobPageStyle(const CQelPrintJobPageStyle&) = default;
    CQelPrintJobPageStyle& operator=(const CQelPrintJobPageStyle&) = default;
    virtual ~CQelPrintJobPageStyle();

    /// A4 in portrait, unit 2, resolution, sizes and margins 0, one cell, the column first; deletes the selected
    /// context. Device name, port name and printer margins do not change.
    int Initialize();

    const CString& GetPrinterDriverName() const { return m_szPrinterDriverName; }
    void SetPrinterDriverName(const CString& name) { m_szPrinterDriverName = name; }
    const CString& GetPrinterDevice() const { return m_szPrinterDevice; }
    void SetPrinterDevice(const CString& device) { m_szPrinterDevice = device; }
    const CString& GetPrinterPort() const { return m_szPrinterPort; }
    void SetPrinterPort(const CString& port) { m_szPrinterPort = port; }
    /// The unit of the margins: 2 tenths of a millimetre, 3 device units; with 1 the margin * 72 / resolution is used.
    const int& GetUnit() const { return m_nUnit; }
    void SetUnit(const int& unit) { m_nUnit = unit; }
    /// Device units per inch; 0: unknown.
    const int& GetDpi() const { return m_nDpi; }
    void SetDpi(const int& dpi) { m_nDpi = dpi; }
    /// As the page is read: landscape is wider than high.
    const CSize& GetPaperSize() const { return m_sizePaper; }
    void SetPaperSize(const CSize& size) { m_sizePaper = size; }
    /// The paper size for laying out pages. If the style has none, as after loading a job file (which stores only the
    /// form), it is the size of the form, or for a form without a size (Letter) that of the sheet of @p dc.
    /// @param dc a printer's context, may be null
    /// @return like GetPaperSize if neither is known
    CSize GetPaperSizeOn(CDC* dc) const;
    /// The printer interface's code, 9 for A4.
    const int& GetPaperForm() const { return m_nPaperForm; }
    void SetPaperForm(const int& form) { m_nPaperForm = form; }
    /// 1 portrait, 2 landscape.
    const int& GetPaperDirection() const { return m_nPaperDirection; }
    void SetPaperDirection(const int& direction) { m_nPaperDirection = direction; }
    const int& GetTopMargin() const { return m_nTopMargin; }
    void SetTopMargin(const int& margin) { m_nTopMargin = margin; }
    const int& GetBottomMargin() const { return m_nBottomMargin; }
    void SetBottomMargin(const int& margin) { m_nBottomMargin = margin; }
    const int& GetLeftMargin() const { return m_nLeftMargin; }
    void SetLeftMargin(const int& margin) { m_nLeftMargin = margin; }
    const int& GetRightMargin() const { return m_nRightMargin; }
    void SetRightMargin(const int& margin) { m_nRightMargin = margin; }
    /// Also the name of printed documents.
    const CString& GetStyleName() const { return m_szStyleName; }
    void SetStyleName(const CString& name) { m_szStyleName = name; }
    void SetStyleName(UINT stringId);  ///< from the string tables; empty if none has it
    /// What a PDF document says about itself if CQelPrintJobDocumentData::PrintOut prints it with this style, or if it
    /// is printed on a context that GetPrinterDC creates from now on. It does not apply to the selected context: an
    /// application's own document there needs qel::SetPdfInfo. It is not stored in the job file, and not compared.
    /// Empty after Initialize: then the context's own applies.
    const std::optional<qel::PdfInfo>& GetPdfInfo() const { return m_PdfInfo; }
    void SetPdfInfo(const std::optional<qel::PdfInfo>& info) { m_PdfInfo = info; }
    /// Cells across and down.
    const CSize& GetPrintBlock() const { return m_sizePrintBlock; }
    void SetPrintBlock(const CSize& block) { m_sizePrintBlock = block; }
    /// 1: cells fill a page down the column first, 2: along the row first.
    const int& GetPrintDirection() const { return m_nPrintDirection; }
    void SetPrintDirection(const int& direction) { m_nPrintDirection = direction; }
    /// Device units, from the corner of the drawable area: where the user's margins end, and (bottom, right) the height
    /// and width between them. Computed when a document is printed.
    const int& GetPrnTopMargin() const { return m_nPrnTopMargin; }
    void SetPrnTopMargin(const int& margin) { m_nPrnTopMargin = margin; }
    const int& GetPrnBottomMargin() const { return m_nPrnBottomMargin; }
    void SetPrnBottomMargin(const int& margin) { m_nPrnBottomMargin = margin; }
    const int& GetPrnLeftMargin() const { return m_nPrnLeftMargin; }
    void SetPrnLeftMargin(const int& margin) { m_nPrnLeftMargin = margin; }
    const int& GetPrnRightMargin() const { return m_nPrnRightMargin; }
    void SetPrnRightMargin(const int& margin) { m_nPrnRightMargin = margin; }

    /// Cells per page. The product wraps at 32 bits.
    int GetPageBlocks() const;

    /// Tenths of a millimetre to device units: v * dpi / 254, truncated toward zero; the product wraps at 32 bits.
    /// @return 0 for a resolution below 1; the argument does not change then
    int ConvertMillimetreToPixel(CRect& rect) const;
    int ConvertMillimetreToPixel(CPoint& point) const;

    /// Lets the user choose a printer in the print dialog; a new context of it becomes the selected one.
    /// @return 0 if cancelled, and if the printer cannot be asked
    int SelectPrinter();
    /// Null: none. It still belongs to this style.
    HDC GetSelectedPrinterDC() const { return m_SelectedPrinterDC.Get(); }
    /// Takes over the selected context of @p other and deletes its own. @return 0 if that has none
    int MovePrinterDC(CQelPrintJobPageStyle& other);

    /// Creates a context of this style's device with its form and direction, which the caller deletes; names,
    /// resolution and paper size are set from the printer. For forms without a size in layouts (Letter, unknown forms)
    /// the size is that of the sheet, as it is read in this direction.
    HDC GetPrinterDC();
    /// Sets the printer and paper of the dialog in @p info. If neither its form (Letter) nor @p dc (null, or a picture)
    /// has a size, the former size stays, with its longer side across for landscape.
    /// @return 0 if the dialog has no settings
    int GetPrinterFromDC(CDC* dc, CPrintInfo* info);

    /// Whether everything is equal except the printer margins, the PDF information, and the selected context.
    bool operator==(const CQelPrintJobPageStyle& other) const;

protected:
    /// Sets device name, resolution, paper size, form and direction from a device mode; a resolution missing in the
    /// mode is read from @p dc (which may be null). Kept for pages laid out in this way: a size given in the mode
    /// itself is not swapped for landscape, that of a form is; an unknown form keeps the size, swapped for landscape.
    void GetDevMode(DEVMODE* devMode, CDC* dc);

private:
    void ReadDevMode(DEVMODE mode, CDC* dc);

    CString m_szPrinterDriverName;
    CString m_szPrinterDevice;
    CString m_szPrinterPort;
    int m_nUnit;
    int m_nDpi;
    CSize m_sizePaper;
    int m_nPaperForm;
    int m_nPaperDirection;
    int m_nTopMargin;
    int m_nBottomMargin;
    int m_nLeftMargin;
    int m_nRightMargin;
    CString m_szStyleName;
    std::optional<qel::PdfInfo> m_PdfInfo;
    CSize m_sizePrintBlock;
    int m_nPrintDirection;
    int m_nPrnTopMargin = 0;
    int m_nPrnBottomMargin = 0;
    int m_nPrnLeftMargin = 0;
    int m_nPrnRightMargin = 0;
    qel::OwnedDC m_SelectedPrinterDC;
};
