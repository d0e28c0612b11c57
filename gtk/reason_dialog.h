#pragma once

#include <gtk/gtk.h>

#include <cstddef>
#include <optional>
#include <string>

namespace qel {

/// Asks why points are left out. @return the reason, without blanks at its ends and never empty; nothing if cancelled
std::optional<std::string> AskReasonLeftOut(GtkWidget* owner, std::size_t count);

}  // namespace qel
