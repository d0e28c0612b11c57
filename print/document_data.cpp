#include "qellib10/print/document_data.h"

#include <optional>

#include "qellib10/platform/wrapped.h"
#include "qellib10/print/paper_size.h"

namespace {

constexpr int kPointsPerInch = 72;
constexpr int kDownTheColumn = 1, kAlongTheRow = 2;

// A user's margin in device units.
std::optional<int> MarginInDots(int margin, int unit, int dotsAnInch) {
    switch (unit) {
        case 1:
            return qel::WrappedProduct(margin, kPointsPerInch) / dotsAnInch;
        case 2:
            return qel::WrappedProduct(margin, dotsAnInch) / qel::kTenthsPerInch;
        case 3:
            return margin;
        default:
            return std::nullopt;
    }
}

int LengthBetween(int length, int before, int behind) {
    return qel::WrappedDifference(qel::WrappedDifference(length, before), behind);
}

}  // namespace

CQelPrintJobDocumentData::CQelPrintJobDocumentData() = default;

CQelPrintJobDocumentData::~CQelPrintJobDocumentData() = default;

int CQelPrintJobDocumentData::Initialize() {
    m_listBlock.clear();
    m_PdfInfo.reset();
    return m_PageStyle.Initialize();
}

int CQelPrintJobDocumentData::CheckAndAddJobFile(const char* path) {
    CQelPrintJobQueueData job;
    return job.LoadJobFile(path) ? CheckAndAddJobFile(job) : 0;
}

int CQelPrintJobDocumentData::CheckAndAddJobFile(const CQelPrintJobQueueData& job) {
    if (m_listBlock.empty()) {
        m_PageStyle = job.GetPageStyle();
    } else if (!(job.GetPageStyle() == m_PageStyle)) {
        return 0;
    }
    m_listBlock.push_back(job.GetBlock());
    return 1;
}

int CQelPrintJobDocumentData::IsPrintOutPageExist(int more) const {
    return LONGLONG{GetBlockCount()} + more >= m_PageStyle.GetPageBlocks() ? 1 : 0;
}

int CQelPrintJobDocumentData::PrintOut() {
    const HDC selected = m_PageStyle.GetSelectedPrinterDC();
    CDC dc;
    if (!dc.Attach(selected != nullptr ? selected : m_PageStyle.GetPrinterDC())) return 0;
    const std::optional<qel::PdfInfo>& info = m_PdfInfo ? m_PdfInfo : m_PageStyle.GetPdfInfo();
    if (info) qel::SetPdfInfo(dc, *info);
    const bool isPrinted = dc.StartDoc(m_PageStyle.GetStyleName()) > 0 && dc.StartPage() > 0 &&
                           PrintOutMain(&dc, -1, 0) && dc.EndPage() > 0 && dc.EndDoc() > 0;
    if (selected != nullptr) dc.Detach();
    return isPrinted ? 1 : 0;
}

int CQelPrintJobDocumentData::OnPrint(CDC* dc, CPrintInfo* info) {
    m_PageStyle.GetPrinterFromDC(dc, info);
    if (info == nullptr || !PrintOutMain(dc, static_cast<int>(info->m_nCurPage), info->m_bPreview)) {
        throw false;  // NOLINT(hicpp-exception-baseclass): what loops over pages catch
    }
    return 1;
}

int CQelPrintJobDocumentData::PrintOutMain(CDC* dc, int page, int preview) {
    const CSize grid = m_PageStyle.GetPrintBlock();
    const LONGLONG cells = LONGLONG{grid.cx} * grid.cy;
    if (grid.cx < 1 || grid.cy < 1 || !GetPrintMargin(dc, &m_PageStyle)) return 0;
    const CSize size = CellSize(dc);
    // Of a single cell only the corner matters; several would be printed over each other.
    if ((grid.cx > 1 && size.cx < 1) || (grid.cy > 1 && size.cy < 1)) return 0;
    int current = 1;
    LONGLONG index = 0;
    for (CQelPrintJobBlockData& block : m_listBlock) {
        const auto cell = static_cast<int>(index % cells);
        if (cell == 0 && index > 0) {
            if (page < 0 && preview == 0 && (dc->EndPage() <= 0 || dc->StartPage() <= 0)) return 0;
            ++current;
        }
        ++index;
        if (page >= 0 && page != current) continue;
        dc->SaveDC();
        const CPoint corner = CellPosition(cell, size);
        block.SetOffset(corner.x, corner.y);
        block.DrawCommand(dc);
        dc->RestoreDC(-1);  // in a preview both of its contexts, whatever each has kept before
    }
    return 1;
}

CSize CQelPrintJobDocumentData::CellSize(CDC* dc) const {
    const CQelPrintJobPageStyle& style = m_PageStyle;
    const CSize paper = style.GetPaperSizeOn(dc), grid = style.GetPrintBlock();
    return {LengthBetween(paper.cx, style.GetLeftMargin(), style.GetRightMargin()) / grid.cx,
            LengthBetween(paper.cy, style.GetTopMargin(), style.GetBottomMargin()) / grid.cy};
}

CPoint CQelPrintJobDocumentData::CellPosition(int cell, const CSize& size) const {
    const CQelPrintJobPageStyle& style = m_PageStyle;
    const int across = style.GetPrintBlock().cx, down = style.GetPrintBlock().cy;
    const bool isDown = style.GetPrintDirection() == kDownTheColumn;
    CPoint corner;
    if (isDown || style.GetPrintDirection() == kAlongTheRow) {
        const int column = isDown ? cell / down : cell % across, row = isDown ? cell % down : cell / across;
        corner = CPoint(qel::WrappedProduct(column, size.cx), qel::WrappedProduct(row, size.cy));
    }
    style.ConvertMillimetreToPixel(corner);
    corner.Offset(style.GetPrnLeftMargin(), style.GetPrnTopMargin());
    return corner;
}

int CQelPrintJobDocumentData::GetPrintMargin(CDC* dc, CQelPrintJobPageStyle* style) {
    if (dc == nullptr || style == nullptr) return 0;
    const int dotsAnInch = dc->GetDeviceCaps(LOGPIXELSX);
    if (dotsAnInch < 1) return 0;
    const auto inDots = [&](int margin) { return MarginInDots(margin, style->GetUnit(), dotsAnInch); };
    const auto top = inDots(style->GetTopMargin()), bottom = inDots(style->GetBottomMargin());
    const auto left = inDots(style->GetLeftMargin()), right = inDots(style->GetRightMargin());
    if (!top) return 0;  // nor any other: the unit is unknown
    style->SetPrnTopMargin(qel::WrappedDifference(*top, dc->GetDeviceCaps(PHYSICALOFFSETY)));
    style->SetPrnLeftMargin(qel::WrappedDifference(*left, dc->GetDeviceCaps(PHYSICALOFFSETX)));
    style->SetPrnBottomMargin(LengthBetween(dc->GetDeviceCaps(PHYSICALHEIGHT), *bottom, *top));
    style->SetPrnRightMargin(LengthBetween(dc->GetDeviceCaps(PHYSICALWIDTH), *right, *left));
    return 1;
}
