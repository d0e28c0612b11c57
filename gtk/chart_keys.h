#pragma once

#include <gtk/gtk.h>

#include <optional>

#include "qellib10/gtk/chart_actions.h"

namespace qel {

struct ChartKey {
    guint key;
    guint modifiers;  // Shift, Ctrl and Alt; those of + and - do not count
};

/// The command of a key; nothing for one that the chart leaves to the window.
std::optional<ChartCommand> CommandOf(const GdkEventKey& event);

/// The first key of a command, for the menu.
ChartKey KeyOf(ChartCommand command);

}  // namespace qel
