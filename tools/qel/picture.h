#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tool.h"

namespace tool {

/// Pages to be drawn, each in the device units of a printer.
struct Drawing {
    qel::PageSetup page;
    int pages = 1;
    std::string title;
    std::vector<std::string> sources;          ///< the files to draw, which no picture may replace
    std::function<bool(CDC&, int page)> draw;  ///< pages count from 1
};

enum class PictureKind { kPng, kSvg, kPdf };

/// The picture's format, from its suffix. @throws CLI::ValidationError for any other
PictureKind PictureKindOf(const std::string& path);

/// A size in millimetres, for example 210x297, 10 to 10000 each. @return hundredths
/// @throws CLI::ValidationError
CSize ParseSheet(const std::string& text);

/// Draws the pages as one document. @return false if the surface does not accept it
bool DrawDocument(CDC& dc, const Drawing& drawing);

/// The options -o, --resolution and --force of a command that writes pictures.
struct PictureOptions {
    std::string target;
    int resolution = 150;  // of a PNG, dots per inch
    bool force = false;
    std::optional<PictureKind> kind = {};  ///< else the suffix says it

    PictureKind Kind() const { return kind ? *kind : PictureKindOf(target); }
    void AddTo(CLI::App& command, const std::string& resolutionMeaning);
};

/// A file and its pages, from @p page on.
struct Picture {
    std::string file;
    int page = 1, pages = 1;
};

/// Writes the pages. A PDF contains all of them; each PNG or SVG page is a file of its own, with its number before the
/// suffix if there are several.
std::vector<Picture> WritePictures(const PictureOptions& options, const Drawing& drawing);

}  // namespace tool
