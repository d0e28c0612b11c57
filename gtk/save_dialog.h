#pragma once

#include <gtk/gtk.h>

#include <optional>
#include <string>

namespace qel {

/// Asks where and as what a chart is to be saved. @param title of the chart, for a name to begin with
/// @return a path with the end of its kind, UTF-8; the user has agreed where a file is replaced. Nothing if cancelled
std::optional<std::string> AskChartFile(GtkWidget* owner, const std::string& title);

}  // namespace qel
