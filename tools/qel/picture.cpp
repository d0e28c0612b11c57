#include "picture.h"

namespace tool {
namespace {

// The file name of a page.
std::string NameOf(const std::string& path, int page, int pages) {
    if (pages == 1) return path;
    const std::size_t suffix = path.rfind('.');
    return path.substr(0, suffix) + '-' + std::to_string(page) + path.substr(suffix);
}

bool DrawPages(CDC& dc, const Drawing& drawing, int first, int last) {
    if (dc.StartDoc(Text(drawing.title)) <= 0) return false;
    for (int page = first; page <= last; ++page) {
        if (dc.StartPage() <= 0 || !drawing.draw(dc, page) || dc.EndPage() <= 0) return false;
    }
    return dc.EndDoc() > 0;
}

[[noreturn]] void RefuseSize() { throw CLI::ValidationError("the page is too large for a picture of this resolution"); }

bool SavePng(const CString& file, const Drawing& drawing, int page, int dotsPerInch) {
    CDC paper;
    CBitmap bitmap;
    if (!paper.Attach(qel::CreatePdfDC(file, drawing.page))) RefuseSize();
    const auto draw = [&](CDC& dc) { return drawing.draw(dc, page); };
    const bool isDrawn = qel::DrawPagePicture(bitmap, paper, dotsPerInch, draw) != 0;
    if (bitmap.GetSafeHandle() == nullptr) RefuseSize();
    return isDrawn && qel::SavePng(bitmap, file, dotsPerInch) != 0;
}

bool SavePages(const Picture& picture, PictureKind kind, const Drawing& drawing, int dotsPerInch) {
    const CString file = Path(picture.file);
    if (kind == PictureKind::kPng) return SavePng(file, drawing, picture.page, dotsPerInch);
    CDC dc;
    const HDC handle = kind == PictureKind::kPdf
                           ? qel::CreatePdfDC(file, drawing.page)
                           : qel::CreateSvgDC(file, drawing.page.SheetDots(), drawing.page.dotsPerInch.cx);
    if (!dc.Attach(handle)) RefuseSize();
    return DrawPages(dc, drawing, picture.page, picture.page + picture.pages - 1);
}

}  // namespace

PictureKind PictureKindOf(const std::string& path) {
    const std::size_t point = path.rfind('.');
    const CString suffix(point == std::string::npos ? "" : path.substr(point + 1).c_str());
    for (const auto& [name, kind] : {std::pair("png", PictureKind::kPng), std::pair("svg", PictureKind::kSvg),
                                     std::pair("pdf", PictureKind::kPdf)}) {
        if (suffix.CompareNoCase(name) == 0) return kind;
    }
    throw CLI::ValidationError("\"" + path + "\" ends with neither .png, .svg nor .pdf");
}

CSize ParseSheet(const std::string& text) {
    constexpr double kLeast = 10, kMost = 10'000;
    const auto isSide = [](double side) { return side >= kLeast && side <= kMost; };
    const auto size = ParsePair(text, 'x');
    if (!size || !isSide(size->first) || !isSide(size->second))
        throw CLI::ValidationError("\"" + text + "\" is not a size in millimetres such as 210x297");
    return {static_cast<int>(size->first * 100), static_cast<int>(size->second * 100)};
}

std::vector<Picture> WritePictures(const PictureOptions& options, const Drawing& drawing) {
    const PictureKind kind = options.Kind();
    const int files = kind == PictureKind::kPdf ? 1 : drawing.pages;
    std::vector<Picture> pictures;
    for (int i = 1; i <= files; ++i) {
        pictures.push_back({NameOf(options.target, i, files), i, drawing.pages / files});
        RequireNew(pictures.back().file, options.force, drawing.sources);
    }
    for (const Picture& picture : pictures) {
        OnFile(picture.file, [&] {
            if (!SavePages(picture, kind, drawing, options.resolution))
                throw Failure(Why("cannot be drawn or written"));
        });
    }
    return pictures;
}

bool DrawDocument(CDC& dc, const Drawing& drawing) { return DrawPages(dc, drawing, 1, drawing.pages); }

void PictureOptions::AddTo(CLI::App& command, const std::string& resolutionMeaning) {
    command.add_option("-o,--output", target, "The file to write; its suffix says what: .png, .svg or .pdf")
        ->type_name("FILE")
        ->required();
    command.add_option("--resolution", resolution, resolutionMeaning)->transform(WholeNumber(10, 2400))->type_name("N");
    command.add_flag("--force", force, "Replace files that exist");
}

}  // namespace tool
