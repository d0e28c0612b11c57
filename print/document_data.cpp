#include "qellib10/print/document_data.h"

#include <algorithm>
#include <optional>

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/wrapped.h"
#include "qellib10/print/paper_size.h"

namespace {

using qel::FailureKind;

constexpr const char* kAdd = "CQelPrintJobDocumentData::CheckAndAddJobFile";
constexpr int kPointsPerInch = 72;
constexpr int kDownTheColumn = 1, kAlongTheRow = 2;

// A user's margin in device units.
std::optional<int> MarginInDots(int margin, int unit, int dotsPerInch) {
    switch (unit) {
        case 1:
            return qel::WrappedProduct(margin, kPointsPerInch) / dotsPerInch;
        case 2:
            return qel::WrappedProduct(margin, dotsPerInch) / qel::kTenthsPerInch;
        case 3:
            return margin;
        default:
            return std::nullopt;
    }
}

// What one document says about itself; afterwards later documents on the same context say again what was set before.
class DocumentInfo {
public:
    DocumentInfo(HDC dc, const std::optional<qel::PdfInfo>& info) : m_hDC(dc) {
        if (!info) return;
        m_before = qel::GetPdfInfo(dc);
        qel::SetPdfInfo(dc, *info);
    }
    ~DocumentInfo() {
        if (m_before) qel::Succeeds([&] { qel::SetPdfInfo(m_hDC, *m_before); });
    }
    DocumentInfo(const DocumentInfo&) = delete;
    DocumentInfo& operator=(const DocumentInfo&) = delete;

private:
    HDC m_hDC;
    std::optional<qel::PdfInfo> m_before;
};

// Lets go of a context, which would be deleted otherwise, on every way out.
class Lent {
public:
    Lent(CDC& dc, HDC handle) : m_dc(dc), m_hDC(handle) {}
    ~Lent() {
        if (m_hDC != nullptr) m_dc.Detach();
    }
    Lent(const Lent&) = delete;
    Lent& operator=(const Lent&) = delete;

private:
    CDC& m_dc;
    HDC m_hDC;
};

// What a context draws with, until Restore or, when a cell cannot be drawn, the end of this object.
class Saved {
public:
    explicit Saved(CDC* dc) : m_dc(dc) { dc->SaveDC(); }
    ~Saved() {
        if (m_dc != nullptr) qel::Succeeds([&] { Restore(); });
    }
    Saved(const Saved&) = delete;
    Saved& operator=(const Saved&) = delete;

    // In a preview both of its contexts, whatever each has saved before.
    void Restore() {
        m_dc->RestoreDC(-1);
        m_dc = nullptr;
    }

private:
    CDC* m_dc;
};

// Records why the cells cannot be laid out.
std::nullopt_t NotPlaced(const char* why) {
    qel::Refuse(FailureKind::kData, "", why);
    return std::nullopt;
}

int LengthBetween(int length, int before, int after) {
    return qel::WrappedDifference(qel::WrappedDifference(length, before), after);
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
    return qel::AsResult(kAdd, [&] {
        CQelPrintJobQueueData job;
        return job.LoadJobFile(path) ? CheckAndAddJobFile(job) : 0;
    });
}

int CQelPrintJobDocumentData::CheckAndAddJobFile(const CQelPrintJobQueueData& job) {
    return qel::AsResult(kAdd, [&] {
        if (!m_listBlock.empty() && !(job.GetPageStyle() == m_PageStyle))
            return qel::Refuse(FailureKind::kData, "", "the job has another page style");
        std::list<CQelPrintJobBlockData> added;
        added.push_back(job.GetBlock());
        if (m_listBlock.empty()) m_PageStyle = job.GetPageStyle();
        m_listBlock.splice(m_listBlock.end(), added);
        return 1;
    });
}

int CQelPrintJobDocumentData::IsPrintOutPageExist(int more) const {
    return LONGLONG{GetBlockCount()} + more >= m_PageStyle.GetPageBlocks() ? 1 : 0;
}

int CQelPrintJobDocumentData::PrintOut() {
    return qel::AsResult("CQelPrintJobDocumentData::PrintOut", [&] {
        const HDC selected = m_PageStyle.GetSelectedPrinterDC();
        CDC dc;
        const Lent lent(dc, selected);
        if (!dc.Attach(selected != nullptr ? selected : m_PageStyle.GetPrinterDC())) return false;
        const DocumentInfo info(dc, m_PdfInfo ? m_PdfInfo : m_PageStyle.GetPdfInfo());
        // If it cannot be laid out, no document is started: it would block the next one on a selected context.
        return PlaceCells(&dc) && dc.StartDoc(m_PageStyle.GetStyleName()) > 0 && dc.StartPage() > 0 &&
               PrintOutMain(&dc, -1, 0) && dc.EndPage() > 0 && dc.EndDoc() > 0;
    });
}

int CQelPrintJobDocumentData::AbortPrintOut() {
    return qel::AsResult("CQelPrintJobDocumentData::AbortPrintOut", [&] {
        const HDC selected = m_PageStyle.GetSelectedPrinterDC();
        CDC dc;
        const Lent lent(dc, selected);
        if (selected == nullptr || !dc.Attach(selected))
            return qel::Refuse(FailureKind::kState, "", "no printer is selected");
        return dc.AbortDoc() > 0 ? 1 : qel::Refuse(FailureKind::kState, "", "no document is open");
    });
}

int CQelPrintJobDocumentData::OnPrint(CDC* dc, CPrintInfo* info) {
    m_PageStyle.GetPrinterFromDC(dc, info);
    if (info == nullptr || !PrintOutMain(dc, static_cast<int>(info->m_nCurPage), info->m_bPreview)) {
        throw false;  // NOLINT(hicpp-exception-baseclass): what loops over pages catch
    }
    return 1;
}

int CQelPrintJobDocumentData::PrintOutMain(CDC* dc, int page, int preview) {
    return qel::AsResult("CQelPrintJobDocumentData::PrintOutMain", [&] { return DrawPages(dc, page, preview); });
}

bool CQelPrintJobDocumentData::DrawPages(CDC* dc, int page, int preview) {
    const std::optional<CSize> size = PlaceCells(dc);
    if (!size) return false;
    const LONGLONG cells = CellsPerPage();
    int current = 1;
    LONGLONG index = 0;
    for (CQelPrintJobBlockData& block : m_listBlock) {
        const auto cell = static_cast<int>(index % cells);
        if (cell == 0 && index > 0) {
            if (page < 0 && preview == 0 && (dc->EndPage() <= 0 || dc->StartPage() <= 0)) return false;
            ++current;
        }
        ++index;
        if (page >= 0 && page != current) continue;
        Saved saved(dc);
        const CPoint corner = CellPosition(cell, *size);
        block.SetOffset(corner.x, corner.y);
        block.DrawCommand(dc);
        saved.Restore();
    }
    return true;
}

LONGLONG CQelPrintJobDocumentData::CellsPerPage() const {
    const CSize grid = m_PageStyle.GetPrintBlock();
    return LONGLONG{grid.cx} * grid.cy;
}

std::optional<CSize> CQelPrintJobDocumentData::PlaceCells(CDC* dc) {
    const CQelPrintJobPageStyle& style = m_PageStyle;
    const CSize grid = style.GetPrintBlock();
    if (grid.cx < 1 || grid.cy < 1) return NotPlaced("a page without cells");
    if (!GetPrintMargin(dc, &m_PageStyle)) return NotPlaced("no such unit, or a context without a resolution");
    const CSize paper = style.GetPaperSizeOn(dc);
    const CSize size(LengthBetween(paper.cx, style.GetLeftMargin(), style.GetRightMargin()) / grid.cx,
                     LengthBetween(paper.cy, style.GetTopMargin(), style.GetBottomMargin()) / grid.cy);
    // For the first column and row only the start matters; later ones would be printed over them.
    const CSize furthest = FurthestCell();
    if ((furthest.cx > 0 && size.cx < 1) || (furthest.cy > 0 && size.cy < 1))
        return NotPlaced("the margins leave no space for the cells");
    return size;
}

CSize CQelPrintJobDocumentData::FurthestCell() const {
    const auto used = static_cast<int>(std::min<LONGLONG>(CellsPerPage(), GetBlockCount()));
    const CSize grid = m_PageStyle.GetPrintBlock();
    switch (used > 0 ? m_PageStyle.GetPrintDirection() : 0) {
        case kDownTheColumn:
            return {(used - 1) / grid.cy, std::min<LONG>(used, grid.cy) - 1};
        case kAlongTheRow:
            return {std::min<LONG>(used, grid.cx) - 1, (used - 1) / grid.cx};
        default:
            return {0, 0};
    }
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
    constexpr const char* kOperation = "CQelPrintJobDocumentData::GetPrintMargin";
    if (dc == nullptr || style == nullptr) return qel::RefuseNull(kOperation);
    qel::Operation operation(kOperation);
    const int dotsPerInch = dc->GetDeviceCaps(LOGPIXELSX);
    if (dotsPerInch < 1) return operation.Failed(qel::FailureKind::kState, "", "the device context has no resolution");
    const auto inDots = [&](int margin) { return MarginInDots(margin, style->GetUnit(), dotsPerInch); };
    const auto top = inDots(style->GetTopMargin()), bottom = inDots(style->GetBottomMargin());
    const auto left = inDots(style->GetLeftMargin()), right = inDots(style->GetRightMargin());
    if (!top)  // nor any other
        return operation.Failed(qel::FailureKind::kState, "", "the unit of the margins is unknown");
    style->SetPrnTopMargin(qel::WrappedDifference(*top, dc->GetDeviceCaps(PHYSICALOFFSETY)));
    style->SetPrnLeftMargin(qel::WrappedDifference(*left, dc->GetDeviceCaps(PHYSICALOFFSETX)));
    style->SetPrnBottomMargin(LengthBetween(dc->GetDeviceCaps(PHYSICALHEIGHT), *bottom, *top));
    style->SetPrnRightMargin(LengthBetween(dc->GetDeviceCaps(PHYSICALWIDTH), *right, *left));
    return operation.Ended(1);
}
