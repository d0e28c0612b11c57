#pragma once

#include <string_view>

#include "qellib10/platform/export.h"

using GtkWidget = struct _GtkWidget;

namespace qel {

/// Writes a window, or one widget of it, as PNG in the pixels of the screen: for manuals, reports of faults, tests. It
/// is drawn again, since on the screen other windows may cover it.
/// @param path UTF-8
/// @return false if the widget is not shown, or the file cannot be written; qel::LastFailure has the reason
QELLIB10_API bool SaveWindowPicture(GtkWidget* widget, std::string_view path);

}  // namespace qel
