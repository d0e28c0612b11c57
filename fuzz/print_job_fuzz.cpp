// Law: a job file of any bytes is refused, and then the job does not change; or it is loaded, and then saved as a file
// that is loaded as the same job and saved as the same bytes. Whatever it contains can be drawn. With a comment at its
// start, so that it is always read as a document, it is the same job.
#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/print/queue_data.h"

#include "../tests/support/temp_folder.h"
#include "law.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 4096;

// The commands as they are saved.
std::string Commands(CQelPrintJobQueueData& job) {
    static const TempFolder folder;
    Require(job.SaveJobFile(folder.Path("b.job")) == 1);
    return folder.Read("b.job");
}

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
    const CString name = folder.Path("a.job");

    CQelPrintJobQueueData job, again, documents;
    const std::string bytes = Text(data + 1, size - 1);
    folder.Write("a.job", bytes);
    const int result = job.LoadJobFile(name);
    if (bytes.starts_with('<') && !bytes.starts_with("<?")) {
        folder.Write("a.job", "<!---->" + bytes);
        Require(documents.LoadJobFile(name) == result);
        Require(Commands(documents) == Commands(job) && documents.GetPageStyle() == job.GetPageStyle());
    }
    if (result == 0) {
        Require(job.GetBlock().GetCommandCount() == 0 && job.GetPageStyle() == again.GetPageStyle());
        return 0;
    }
    const std::string saved = Commands(job);
    folder.Write("a.job", saved);
    Require(again.LoadJobFile(name) == 1);
    Require(again.GetPageStyle() == job.GetPageStyle());
    Require(again.GetBlock().GetCommandCount() == job.GetBlock().GetCommandCount());
    Require(again.SaveJobFile(name) == 1 && folder.Read("a.job") == saved);
    Draw(job.GetBlock());
    return 0;
}
