// Promises: 100,000 line commands replayed onto a picture of 1200 x 800 compared with one Cairo stroke per line,
// without antialiasing. A job file of 100,000 commands saved, compared with pugixml building and writing the same tree,
// and loaded, compared with pugixml finding it with `select_nodes` and attributes by name. A recorded point takes
// little memory.
//   Replay >= 10 ReplayByCairo
//   Save >= 0.9 SaveByPugixml
//   Load >= 1 LoadByPugixml
//   Record:bytes per point <= 200

#include <malloc.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>

#include <benchmark/benchmark.h>
#include <cairo.h>
#include <pugixml.hpp>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/print/queue_data.h"

#include "memory_file.h"

namespace {

constexpr int kCommands = 100'000, kWidth = 1200, kHeight = 800;

struct Line {
    int x1, y1, x2, y2;
};

// A noisy curve like measured points: steps of a few pixels.
std::vector<Line> Lines() {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> step(-10, 10);
    std::vector<Line> lines;
    int x = kWidth / 2, y = kHeight / 2;
    for (int i = 0; i < kCommands; ++i) {
        const int nextX = (x + step(random) + kWidth) % kWidth, nextY = (y + step(random) + kHeight) % kHeight;
        lines.push_back({x, y, nextX, nextY});
        x = nextX;
        y = nextY;
    }
    return lines;
}

struct Picture {
    Picture() {
        dc.CreateCompatibleDC(nullptr);
        bitmap.CreateBitmap(kWidth, kHeight, 1, 32, nullptr);
        dc.SelectObject(&bitmap);
        const RECT all{0, 0, kWidth, kHeight};
        dc.FillSolidRect(&all, RGB(255, 255, 255));
    }
    long Ink() {
        std::vector<std::uint32_t> pixels(std::size_t{kWidth} * kHeight);
        dc.GetPixel(0, 0);  // after everything has been drawn
        bitmap.GetBitmapBits(static_cast<DWORD>(pixels.size() * 4), pixels.data());
        return std::count(pixels.begin(), pixels.end(), 0U);
    }

    CDC dc;
    CBitmap bitmap;
};

class CairoPicture {
public:
    CairoPicture()
        : m_surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight)), m_cairo(cairo_create(m_surface)) {
        cairo_set_source_rgb(m_cairo, 1, 1, 1);
        cairo_paint(m_cairo);
        cairo_set_antialias(m_cairo, CAIRO_ANTIALIAS_NONE);
        cairo_set_source_rgb(m_cairo, 0, 0, 0);
        cairo_set_line_width(m_cairo, 1);
    }
    ~CairoPicture() {
        cairo_destroy(m_cairo);
        cairo_surface_destroy(m_surface);
    }
    CairoPicture(const CairoPicture&) = delete;
    CairoPicture& operator=(const CairoPicture&) = delete;

    void Draw(const Line& line) {
        cairo_move_to(m_cairo, line.x1 + 0.5, line.y1 + 0.5);
        cairo_line_to(m_cairo, line.x2 + 0.5, line.y2 + 0.5);
        cairo_stroke(m_cairo);
    }
    long Ink() {
        cairo_surface_flush(m_surface);
        const auto* const pixels = reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(m_surface));
        return std::count_if(pixels, pixels + kWidth * kHeight, [](std::uint32_t p) { return (p & 0xFFFFFF) == 0; });
    }

private:
    cairo_surface_t* m_surface;
    cairo_t* m_cairo;
};

void Replay(benchmark::State& state) {
    CQelPrintJobBlockData block;
    CQelPrintJobCommand command;
    for (const Line& line : Lines()) {
        command.SetLine(line.x1, line.y1, line.x2, line.y2);
        block.AddCommand(command);
    }
    Picture picture;
    CairoPicture peer;
    block.DrawCommand(&picture.dc);
    for (const Line& line : Lines()) peer.Draw(line);
    // The pixels of a line differ, their number hardly does.
    if (std::abs(static_cast<double>(picture.Ink()) / static_cast<double>(peer.Ink()) - 1) > 0.05) {
        return state.SkipWithError("the pictures differ");
    }
    for (auto _ : state) block.DrawCommand(&picture.dc);
    state.SetItemsProcessed(state.iterations() * kCommands);
}

void ReplayByCairo(benchmark::State& state) {
    const std::vector<Line> lines = Lines();
    CairoPicture picture;
    for (auto _ : state) {
        for (const Line& line : lines) picture.Draw(line);
    }
    state.SetItemsProcessed(state.iterations() * kCommands);
}

// A page of curves with their axes and labels.
CQelPrintJobQueueData Job() {
    CQelPrintJobQueueData job;
    CQelPrintJobCommand command;
    const std::vector<Line> lines = Lines();
    for (int i = 0; i < kCommands; ++i) {
        const Line& line = lines[static_cast<std::size_t>(i)];
        switch (i % 100) {
            case 0:
                command.SetPen(0, 2, RGB(0, 0, 255));
                break;
            case 1:
                command.SetRgn(line.x1, line.y1, line.x2, line.y2);
                break;
            case 2:
                command.SetText(line.x1, line.y1, "Arial", 90, 0, "pH < 7.00", 0x12, 200, 50);
                break;
            case 3:
                command.SetMoveTo(line.x1, line.y1);
                break;
            default:
                if (i % 100 < 20) {
                    command.SetLine(line.x1, line.y1, line.x2, line.y2);
                } else {
                    command.SetLineTo(line.x2, line.y2);
                }
        }
        job.AddCommand(command);
    }
    return job;
}

// The same tree below `commands`; the page style is ours.
void SavePeer(CQelPrintJobQueueData& job, const char* path) {
    pugi::xml_document document;
    auto commands = document.append_child("printjob").append_child("commands");
    CQelPrintJobCommand command;
    job.GetBlock().ResetGetCommand();
    const auto add = [](pugi::xml_node node, const char* name, int value) {
        node.append_attribute(name).set_value(value);
    };
    while (job.GetBlock().GetNextCommand(command)) {
        switch (command.GetKind()) {
            case CQelPrintJobCommand::kSetPen: {
                auto node = commands.append_child("setpen");
                add(node, "width", command.GetPenWidth());
                add(node, "style", command.GetStyle());
                add(node, "color", static_cast<int>(command.GetColor()));
                break;
            }
            case CQelPrintJobCommand::kText: {
                auto node = commands.append_child("text");
                node.append_attribute("font").set_value(command.GetFont().lfFaceName);
                add(node, "size", command.GetFont().lfHeight);
                add(node, "x", command.GetX1());
                add(node, "y", command.GetY1());
                add(node, "width", command.GetX2());
                add(node, "height", command.GetY2());
                add(node, "color", static_cast<int>(command.GetColor()));
                add(node, "style", command.GetStyle());
                node.text().set(command.GetText());
                break;
            }
            case CQelPrintJobCommand::kMoveTo:
            case CQelPrintJobCommand::kLineTo: {
                auto node =
                    commands.append_child(command.GetKind() == CQelPrintJobCommand::kMoveTo ? "moveto" : "lineto");
                add(node, "x", command.GetX1());
                add(node, "y", command.GetY1());
                break;
            }
            default: {
                auto node = commands.append_child(command.GetKind() == CQelPrintJobCommand::kLine ? "line" : "setrgn");
                add(node, "x1", command.GetX1());
                add(node, "y1", command.GetY1());
                add(node, "x2", command.GetX2());
                add(node, "y2", command.GetY2());
            }
        }
    }
    document.save_file(path, "", pugi::format_raw | pugi::format_no_declaration);
}

CQelPrintJobQueueData LoadPeer(const char* path) {
    CQelPrintJobQueueData job;
    pugi::xml_document document;
    document.load_file(path);
    for (const auto& found : document.document_element().select_nodes("commands/*")) {
        const pugi::xml_node node = found.node();
        const auto get = [&](const char* name) { return node.attribute(name).as_int(); };
        CQelPrintJobCommand command;
        if (std::strcmp(node.name(), "lineto") == 0) {
            command.SetLineTo(get("x"), get("y"));
        } else if (std::strcmp(node.name(), "line") == 0) {
            command.SetLine(get("x1"), get("y1"), get("x2"), get("y2"));
        } else if (std::strcmp(node.name(), "moveto") == 0) {
            command.SetMoveTo(get("x"), get("y"));
        } else if (std::strcmp(node.name(), "setpen") == 0) {
            command.SetPen(get("style"), get("width"), static_cast<unsigned>(get("color")));
        } else if (std::strcmp(node.name(), "setrgn") == 0) {
            command.SetRgn(get("x1"), get("y1"), get("x2"), get("y2"));
        } else if (std::strcmp(node.name(), "text") == 0) {
            command.SetText(get("x"), get("y"), node.attribute("font").value(), get("size"),
                            static_cast<unsigned>(get("color")), node.text().get(), get("style"), get("width"),
                            get("height"));
        }
        job.AddCommand(command);
    }
    return job;
}

std::string CommandsOf(const std::string& file) {
    const std::size_t begin = file.find("<commands>");
    return file.substr(begin, file.find("</printjob>") - begin);
}

bool AreSameSaved(CQelPrintJobQueueData& a, CQelPrintJobQueueData& b) {
    const MemoryFile first, second;
    return a.SaveJobFile(first.Name()) && b.SaveJobFile(second.Name()) &&
           CommandsOf(first.Read()) == CommandsOf(second.Read());
}

void Save(benchmark::State& state) {
    const MemoryFile file, peer;
    CQelPrintJobQueueData job = Job();
    SavePeer(job, peer.Posix());
    if (!job.SaveJobFile(file.Name()) || CommandsOf(file.Read()) != CommandsOf(peer.Read())) {
        return state.SkipWithError("the files differ");
    }
    for (auto _ : state) benchmark::DoNotOptimize(job.SaveJobFile(file.Name()));
}

void SaveByPugixml(benchmark::State& state) {
    const MemoryFile file;
    CQelPrintJobQueueData job = Job();
    for (auto _ : state) SavePeer(job, file.Posix());
}

void Load(benchmark::State& state) {
    const MemoryFile file;
    CQelPrintJobQueueData job = Job(), loaded;
    if (!job.SaveJobFile(file.Name()) || !loaded.LoadJobFile(file.Name()) || !AreSameSaved(job, loaded)) {
        return state.SkipWithError("the jobs differ");
    }
    for (auto _ : state) {
        CQelPrintJobQueueData again;
        benchmark::DoNotOptimize(again.LoadJobFile(file.Name()));
    }
}

void LoadByPugixml(benchmark::State& state) {
    const MemoryFile file;
    CQelPrintJobQueueData job = Job();
    job.SaveJobFile(file.Name());
    CQelPrintJobQueueData loaded = LoadPeer(file.Posix());
    if (!AreSameSaved(job, loaded)) return state.SkipWithError("the jobs differ");
    for (auto _ : state) benchmark::DoNotOptimize(LoadPeer(file.Posix()).GetBlock().GetCommandCount());
}

void Record(benchmark::State& state) {
    constexpr int kPoints = 1'000'000;
    double bytes = 0;
    for (auto _ : state) {
        const auto before = ::mallinfo2();
        CQelPrintJobBlockData block;
        CQelPrintJobCommand command;
        for (int i = 0; i < kPoints; ++i) {
            command.SetLineTo(i, i % 800);
            block.AddCommand(command);
        }
        const auto after = ::mallinfo2();
        bytes =
            static_cast<double>(after.uordblks + after.hblkhd) - static_cast<double>(before.uordblks + before.hblkhd);
    }
    state.counters["bytes per point"] = bytes / kPoints;
    state.SetItemsProcessed(state.iterations() * kPoints);
}

BENCHMARK(Replay)->Unit(benchmark::kMillisecond);
BENCHMARK(ReplayByCairo)->Unit(benchmark::kMillisecond);
BENCHMARK(Save)->Unit(benchmark::kMillisecond);
BENCHMARK(SaveByPugixml)->Unit(benchmark::kMillisecond);
BENCHMARK(Load)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadByPugixml)->Unit(benchmark::kMillisecond);
BENCHMARK(Record)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
