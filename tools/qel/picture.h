#pragma once

#include <functional>
#include <string>

#include "tool.h"

namespace tool {

/// Pages to be drawn, each in the device units of a printer.
struct Drawing {
    qel::PageSetup page;
    int pages = 1;
    std::string title;
    std::function<bool(CDC&, int page)> draw;  ///< pages count from 1
};

enum class PictureKind { kPng, kSvg, kPdf };

/// What a picture's suffix says. @throws CLI::ValidationError for any other
PictureKind PictureKindOf(const std::string& path);

/// A size in millimetres such as 210x297, 10 to 10000 each. @return hundredths
/// @throws CLI::ValidationError
CSize ParseSheet(const std::string& text);

/// Writes the pages: a PDF has all of them, of PNG and SVG each is a file of its own with its number before the suffix
/// when there are several.
/// @param dotsAnInch of a PNG
/// @param force replaces files that exist
/// @return the files
std::vector<std::string> WritePictures(const std::string& path, const Drawing& drawing, int dotsAnInch, bool force);

/// Draws the pages as one document. @return false when the surface does not take it
bool DrawDocument(CDC& dc, const Drawing& drawing);

/// The options -o, --resolution and --force of a command that writes pictures.
struct PictureOptions {
    std::string target;
    int resolution = 150;
    bool force = false;

    void AddTo(CLI::App& command, const std::string& resolutionMeaning);
};

}  // namespace tool
