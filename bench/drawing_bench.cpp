// Promises: a picture of 1200 x 800 in few colours is saved as PNG faster than by Cairo; a PDF of 10,000 lines and
// 1,000 texts takes hardly longer than drawing the same with Cairo and Pango.
//   Png >= 5 PngByCairo
//   Pdf <= 1.2 PdfByCairo

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <cairo-pdf.h>
#include <pango/pangocairo.h>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/drawing/file_dc.h"
#include "qellib10/platform/drawing/png_file.h"

#include "memory_file.h"

namespace {

constexpr int kWidth = 1200, kHeight = 800, kLines = 10'000, kTexts = 1'000, kDpi = 600;
constexpr const char* kFace = "Liberation Sans";

// Ten noisy curves with labels.
struct Picture {
    Picture() {
        dc.CreateCompatibleDC(nullptr);
        bitmap.CreateBitmap(kWidth, kHeight, 1, 32, nullptr);
        dc.SelectObject(&bitmap);
        const RECT all{0, 0, kWidth, kHeight};
        dc.FillSolidRect(&all, RGB(255, 255, 255));
        std::mt19937 random(1);
        for (unsigned curve = 0; curve < 10; ++curve) {
            CPen pen(PS_SOLID, 1, RGB(25 * curve, 255 - 25 * curve, 128));
            CPen* const before = dc.SelectObject(&pen);
            dc.MoveTo(0, kHeight / 2);
            for (int x = 0; x < kWidth; ++x) {
                dc.LineTo(x, 40 + static_cast<int>(curve) * 75 + static_cast<int>(random() % 21));
            }
            dc.SelectObject(before);
            dc.TextOut(20, 20 + static_cast<int>(curve) * 75, CString("Curve ") + static_cast<char>('0' + curve));
        }
        pixels.resize(std::size_t{kWidth} * kHeight);
        dc.GetPixel(0, 0);  // after everything has been drawn
        bitmap.GetBitmapBits(static_cast<DWORD>(pixels.size() * 4), pixels.data());
    }

    CDC dc;
    CBitmap bitmap;
    std::vector<std::uint32_t> pixels;
};

bool Has(const MemoryFile& file, const std::vector<std::uint32_t>& pixels) {
    cairo_surface_t* const surface = cairo_image_surface_create_from_png(file.Posix());
    bool isSame =
        cairo_image_surface_get_width(surface) == kWidth && cairo_image_surface_get_height(surface) == kHeight;
    const auto* const read = reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(surface));
    for (std::size_t i = 0; isSame && i < pixels.size(); ++i) isSame = ((read[i] ^ pixels[i]) & 0xFFFFFF) == 0;
    cairo_surface_destroy(surface);
    return isSame;
}

void Png(benchmark::State& state) {
    const MemoryFile file;
    Picture picture;
    if (!qel::SavePng(picture.bitmap, file.Name()) || !Has(file, picture.pixels)) {
        return state.SkipWithError("the pictures differ");
    }
    for (auto _ : state) benchmark::DoNotOptimize(qel::SavePng(picture.bitmap, file.Name()));
}

void PngByCairo(benchmark::State& state) {
    const MemoryFile file;
    Picture picture;
    cairo_surface_t* const surface = cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(picture.pixels.data()), CAIRO_FORMAT_RGB24, kWidth, kHeight, kWidth * 4);
    for (auto _ : state) cairo_surface_write_to_png(surface, file.Posix());
    if (!Has(file, picture.pixels)) state.SkipWithError("the pictures differ");
    cairo_surface_destroy(surface);
}

struct Line {
    int x1, y1, x2, y2;
};
struct Text {
    int x, y;
    std::string text;
};
struct Page {
    Page() {
        std::mt19937 random(1);
        const auto within = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
        for (int i = 0; i < kLines; ++i) lines.push_back({within(4800), within(6800), within(4800), within(6800)});
        for (int i = 0; i < kTexts; ++i) {
            texts.push_back({100 + i % 10 * 450, 50 + i / 10 * 65, "Sample " + std::to_string(i)});
        }
    }
    std::vector<Line> lines;
    std::vector<Text> texts;
};

bool DrawPdf(const Page& page, const MemoryFile& file) {
    CDC dc;
    if (!dc.Attach(qel::CreatePdfDC(file.Name(), {})) || dc.StartDoc("page") < 1 || dc.StartPage() < 1) return false;
    for (const Line& line : page.lines) {
        dc.MoveTo(line.x1, line.y1);
        dc.LineTo(line.x2, line.y2);
    }
    CFont font;
    font.CreatePointFont(80, kFace, &dc);
    CFont* const before = dc.SelectObject(&font);
    dc.SetBkMode(TRANSPARENT);
    for (const Text& text : page.texts) dc.TextOut(text.x, text.y, CString(text.text));
    dc.SelectObject(before);
    return dc.EndPage() > 0 && dc.EndDoc() > 0;
}

void DrawPdfByCairo(const Page& page, const MemoryFile& file) {
    cairo_surface_t* const surface = cairo_pdf_surface_create(file.Posix(), 595.276, 841.89);
    cairo_t* const cairo = cairo_create(surface);
    cairo_scale(cairo, 72.0 / kDpi, 72.0 / kDpi);
    cairo_set_line_width(cairo, 1);
    for (const Line& line : page.lines) {
        cairo_move_to(cairo, line.x1 + 0.5, line.y1 + 0.5);
        cairo_line_to(cairo, line.x2 + 0.5, line.y2 + 0.5);
    }
    cairo_stroke(cairo);
    PangoLayout* const layout = pango_cairo_create_layout(cairo);
    PangoFontDescription* const font = pango_font_description_from_string(kFace);
    pango_font_description_set_absolute_size(font, 80.0 * kDpi / 720 * PANGO_SCALE);
    pango_layout_set_font_description(layout, font);
    for (const Text& text : page.texts) {
        cairo_move_to(cairo, text.x, text.y);
        pango_layout_set_text(layout, text.text.c_str(), -1);
        pango_cairo_show_layout(cairo, layout);
    }
    pango_font_description_free(font);
    g_object_unref(layout);
    cairo_show_page(cairo);
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
}

std::string TextsOf(const MemoryFile& file) {
    const std::string command = std::string("pdftotext -raw ") + file.Posix() + " -";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string texts;
    std::array<char, 4096> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe.get())) {
        texts.append(block.data(), count);
    }
    return texts;
}

void Pdf(benchmark::State& state) {
    const Page page;
    const MemoryFile file, peer;
    DrawPdfByCairo(page, peer);
    if (!DrawPdf(page, file) || TextsOf(file) != TextsOf(peer) || TextsOf(file).empty()) {
        return state.SkipWithError("the pages differ");
    }
    for (auto _ : state) benchmark::DoNotOptimize(DrawPdf(page, file));
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(file.Posix()));
}

void PdfByCairo(benchmark::State& state) {
    const Page page;
    const MemoryFile file;
    for (auto _ : state) DrawPdfByCairo(page, file);
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(file.Posix()));
}

BENCHMARK(Png)->Unit(benchmark::kMillisecond);
BENCHMARK(PngByCairo)->Unit(benchmark::kMillisecond);
BENCHMARK(Pdf)->Unit(benchmark::kMillisecond);
BENCHMARK(PdfByCairo)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
