// Law: a job file of any bytes is refused, and then the job is as it was; or it is loaded, and then it is saved as a
// file that is loaded as the same job and saved as the same bytes. Whatever it holds can be drawn.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/print/queue_data.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestUsefulInput = 4096;

void Require(bool holds) {
    if (!holds) std::abort();
}

class Folder {
public:
    Folder() {
        std::string pattern = (fs::temp_directory_path() / "qellib10-fuzz-XXXXXX").string();
        Require(::mkdtemp(pattern.data()) != nullptr);
        m_path = pattern;
    }
    ~Folder() { fs::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    CString Name() const { return qel::ToLibraryPath((m_path / "a.job").native()); }
    void Write(const char* bytes, std::size_t size) const {
        std::ofstream(m_path / "a.job", std::ios::binary).write(bytes, static_cast<std::streamsize>(size));
    }
    std::string Read() const {
        std::ifstream file(m_path / "a.job", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    fs::path m_path;
};

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
    static const Folder folder;
    constexpr UINT kPages[] = {qel::kCodePageJapanese, qel::kCodePageLatin1, qel::kCodePageUtf8};
    qel::SetCodePage(kPages[data[0] % 3]);
    folder.Write(reinterpret_cast<const char*>(data) + 1, size - 1);

    CQelPrintJobQueueData job, again;
    if (job.LoadJobFile(folder.Name()) == 0) {
        Require(job.GetBlock().GetCommandCount() == 0 && job.GetPageStyle() == again.GetPageStyle());
        return 0;
    }
    Require(job.SaveJobFile(folder.Name()) == 1);
    const std::string saved = folder.Read();
    Require(again.LoadJobFile(folder.Name()) == 1);
    Require(again.GetPageStyle() == job.GetPageStyle());
    Require(again.GetBlock().GetCommandCount() == job.GetBlock().GetCommandCount());
    Require(again.SaveJobFile(folder.Name()) == 1 && folder.Read() == saved);
    Draw(job.GetBlock());
    return 0;
}
