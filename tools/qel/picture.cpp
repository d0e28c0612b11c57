#include "picture.h"

namespace tool {
namespace {

constexpr int kScreenDotsAnInch = 96;  // on which a preview's scale is based

// The file of a page.
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

// Drawn as a preview of the page, so that texts and lines have the places that they have on paper.
bool SavePng(const CString& file, const Drawing& drawing, int page, int dotsAnInch) {
    qel::PageSetup pixels = drawing.page;
    pixels.dotsAnInch = {dotsAnInch, dotsAnInch};
    const CSize size = pixels.SheetDots();
    CDC screen, paper;
    CBitmap bitmap;
    screen.CreateCompatibleDC(nullptr);
    if (!paper.Attach(qel::CreatePdfDC(file, drawing.page)) || !bitmap.CreateBitmap(size.cx, size.cy, 1, 32, nullptr))
        throw Failure(Utf8(file.View()) + ": the page is too large for a picture of this resolution");
    CBitmap* const before = screen.SelectObject(&bitmap);
    const CRect sheet({0, 0}, size);
    screen.FillSolidRect(&sheet, RGB(255, 255, 255));
    bool isDrawn = false;
    {
        CPreviewDC preview;
        preview.SetOutputDC(screen);
        preview.SetAttribDC(paper);
        preview.SetTopLeftOffset({0, 0});
        preview.SetScaleRatio(dotsAnInch, kScreenDotsAnInch);
        isDrawn = drawing.draw(preview, page);
    }
    screen.SelectObject(before);
    return isDrawn && qel::SavePng(bitmap, file, dotsAnInch) != 0;
}

bool SavePages(const CString& file, PictureKind kind, const Drawing& drawing, int first, int last, int dotsAnInch) {
    if (kind == PictureKind::kPng) return SavePng(file, drawing, first, dotsAnInch);
    CDC dc;
    const HDC handle = kind == PictureKind::kPdf
                           ? qel::CreatePdfDC(file, drawing.page)
                           : qel::CreateSvgDC(file, drawing.page.SheetDots(), drawing.page.dotsAnInch.cx);
    return dc.Attach(handle) != 0 && DrawPages(dc, drawing, first, last);
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
        throw CLI::ValidationError("\"" + text + "\" is no size in millimetres such as 210x297");
    return {static_cast<int>(size->first * 100), static_cast<int>(size->second * 100)};
}

std::vector<std::string> WritePictures(const std::string& path, const Drawing& drawing, int dotsAnInch, bool force) {
    const PictureKind kind = PictureKindOf(path);
    const int files = kind == PictureKind::kPdf ? 1 : drawing.pages;
    std::vector<std::string> names;
    for (int i = 1; i <= files; ++i) {
        names.push_back(NameOf(path, i, files));
        RequireNew(names.back(), force);
    }
    for (int i = 1; i <= files; ++i) {
        const std::string& name = names[i - 1];
        const int last = files == 1 ? drawing.pages : i;
        if (!SavePages(Path(name), kind, drawing, i, last, dotsAnInch))
            throw Failure(Shown(name) + ": cannot be drawn or written");
    }
    return names;
}

bool DrawDocument(CDC& dc, const Drawing& drawing) { return DrawPages(dc, drawing, 1, drawing.pages); }

void PictureOptions::AddTo(CLI::App& command, const std::string& resolutionMeaning) {
    command.add_option("-o,--output", target, "The file to write; its suffix says what: .png, .svg or .pdf")
        ->type_name("FILE")
        ->required();
    command.add_option("--resolution", resolution, resolutionMeaning)->check(CLI::Range(10, 2400))->type_name("N");
    command.add_flag("--force", force, "Replace files that exist");
}

}  // namespace tool
