#include <optional>

#include "qellib10/graph/qel_graph.h"
#include "qellib10/platform/operation.h"
#include "qellib10/print/queue_data.h"

namespace {

// Attaches the job that a graph records into, as long as this object lives.
class Attachment {
public:
    Attachment(CQelPrintJobQueueData*& place, CQelPrintJobQueueData* job) : m_place(place) { m_place = job; }
    ~Attachment() { m_place = nullptr; }
    Attachment(const Attachment&) = delete;
    Attachment& operator=(const Attachment&) = delete;

private:
    CQelPrintJobQueueData*& m_place;
};

// The printer of a page style: its selected context, which stays there, or a new one, which is deleted with this
// object.
class Printer {
public:
    explicit Printer(CQelPrintJobPageStyle& style) : m_isSelected(style.GetSelectedPrinterDC() != nullptr) {
        m_dc.Attach(m_isSelected ? style.GetSelectedPrinterDC() : style.GetPrinterDC());
    }
    ~Printer() {
        if (m_isSelected) m_dc.Detach();
    }
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;

    CDC* Surface() { return m_dc.GetSafeHdc() != nullptr ? &m_dc : nullptr; }

private:
    const bool m_isSelected;
    CDC m_dc;
};

}  // namespace

int CQelGraph::GetPrintJob(CQelPrintJobQueueData* job, const CRect& rect, CDC* dc) {
    qel::Operation running("CQelGraph::GetPrintJob");
    if (job == nullptr) return running.Failed(qel::FailureKind::kArgument, "", "a null pointer");
    const Attachment attachment(m_pPrintJob, job);
    std::optional<Printer> printer;
    if (dc == nullptr) dc = printer.emplace(job->GetPageStyle()).Surface();
    if (dc == nullptr) return running.Ended(0);
    SetDrawSize(rect.Width(), rect.Height());
    GraphDraw(dc, rect.left, rect.top);
    running.Ended(true);
    return 0;
}
