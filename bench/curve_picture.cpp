// Draws the curves of a file into a PNG picture of 1200 x 800, as bench/picture_beside_gnuplot has gnuplot do.
//
//   curve_picture make FILE NOISE     writes 10 series of 100,000 points, one series after the other, x and y as doubles
//                                     of this machine: waves with noise of this height, in pixels of the picture
//   curve_picture draw FILE PICTURE   draws them
//   curve_picture ink PICTURE         prints how many pixels are dark
#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <stdexcept>
#include <vector>

#include "qellib10/qellib10.h"

namespace {

constexpr int kWidth = 1200, kHeight = 800;
constexpr int kSeries = 10, kPoints = 100'000;

struct Point {
    double x, y;
};

void Make(const char* path, double height) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> noise(-height, height);
    std::vector<Point> points;
    for (int s = 0; s < kSeries; ++s) {
        for (int i = 0; i < kPoints; ++i) {
            points.push_back(
                {double{kWidth} * i / kPoints, 400 + 150 * std::sin(6.3 * i / kPoints + s) + noise(random)});
        }
    }
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(points.data()),
               static_cast<std::streamsize>(points.size() * sizeof(Point)));
    if (!file.flush()) throw std::runtime_error("the points cannot be written");
}

void ReadInto(CQelGraph& graph, const char* path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<Point> points(kPoints);
    for (int s = 0; s < kSeries; ++s) {
        file.read(reinterpret_cast<char*>(points.data()), static_cast<std::streamsize>(points.size() * sizeof(Point)));
        if (!file) throw std::runtime_error("the file does not hold the points");
        for (const Point& point : points) graph.AddData(s, point.x, point.y);
        graph.SetGraphViewMode(s, 1);
        graph.SetXMaxRange(s, kWidth);
        graph.SetYMaxRange(s, kHeight);
    }
}

void Draw(const char* path, const char* picture) {
    CQelGraph graph;
    ReadInto(graph, path);
    CBitmap bitmap;
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr) || !bitmap.CreateBitmap(kWidth, kHeight, 1, 32, nullptr))
        throw std::runtime_error("there is no memory for the picture");
    CBitmap* const before = dc.SelectObject(&bitmap);
    const CRect all(0, 0, kWidth, kHeight);
    dc.FillSolidRect(&all, RGB(255, 255, 255));
    graph.SetXLabelViewMode(0, 0);
    graph.SetYLabelViewMode(0, 0);
    graph.SetLeftMargin(0);
    graph.SetTopMargin(0);
    graph.SetRightMargin(0);
    graph.SetBottomMargin(0);
    graph.SetDivX(0);
    graph.SetDivY(0);
    graph.SetDrawSize(kWidth, kHeight);
    graph.GraphDraw(&dc, 0, 0);
    dc.SelectObject(before);
    if (qel::SavePng(bitmap, picture) == 0) throw std::runtime_error("the picture cannot be written");
}

long Ink(const char* path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path) == 0) throw std::runtime_error("the picture cannot be read");
    image.format = PNG_FORMAT_GRAY;
    std::vector<unsigned char> pixels(PNG_IMAGE_SIZE(image));
    const png_color white{255, 255, 255};
    if (png_image_finish_read(&image, &white, pixels.data(), 0, nullptr) == 0)
        throw std::runtime_error("the picture cannot be read");
    return std::ranges::count_if(pixels, [](unsigned char pixel) { return pixel < 128; });
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 4 && std::strcmp(argv[1], "make") == 0) {
            Make(argv[2], std::atof(argv[3]));
        } else if (argc == 4 && std::strcmp(argv[1], "draw") == 0) {
            Draw(argv[2], argv[3]);
        } else if (argc == 3 && std::strcmp(argv[1], "ink") == 0) {
            std::printf("%ld\n", Ink(argv[2]));
        } else {
            throw std::runtime_error("usage: curve_picture make FILE NOISE | draw FILE PICTURE | ink PICTURE");
        }
        return 0;
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "curve_picture: %s\n", error.what());
        return 1;
    }
}
