#pragma once

#include <string>

#include <gtk/gtk.h>

namespace viewer {

/// Runs the main loop until @p window is on the screen, then writes it to @p path as PNG.
/// @return whether the file was written
bool SaveScreenshot(GtkWidget* window, const std::string& path);

}  // namespace viewer
