// Law: a job file of any bytes is refused, and then the job is as it was; or it is loaded, and then it is saved as a
// file that is loaded as the same job and saved as the same bytes. Whatever it holds can be drawn.
#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/print/queue_data.h"

#include "../tests/support/temp_folder.h"
#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;

void Draw(const CQelPrintJobBlockData& block) {
    CDC dc;
    CBitmap bitmap;
    dc.CreateCompatibleDC(nullptr);
    bitmap.CreateBitmap(40, 30, 1, 32, nullptr);
    dc.SelectObject(&bitmap);
    Require(block.DrawCommand(&dc) == 1);
}

}  // namespace

// The first byte chooses the code page.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1 || size > kLongestUsefulInput) return 0;
    static const TempFolder folder;
    constexpr UINT kPages[] = {qel::kCodePageJapanese, qel::kCodePageLatin1, qel::kCodePageUtf8};
    qel::SetCodePage(kPages[data[0] % 3]);
    folder.Write("a.job", Text(data + 1, size - 1));
    const CString name = folder.Path("a.job");

    CQelPrintJobQueueData job, again;
    if (job.LoadJobFile(name) == 0) {
        Require(job.GetBlock().GetCommandCount() == 0 && job.GetPageStyle() == again.GetPageStyle());
        return 0;
    }
    Require(job.SaveJobFile(name) == 1);
    const std::string saved = folder.Read("a.job");
    Require(again.LoadJobFile(name) == 1);
    Require(again.GetPageStyle() == job.GetPageStyle());
    Require(again.GetBlock().GetCommandCount() == job.GetBlock().GetCommandCount());
    Require(again.SaveJobFile(name) == 1 && folder.Read("a.job") == saved);
    Draw(job.GetBlock());
    return 0;
}
