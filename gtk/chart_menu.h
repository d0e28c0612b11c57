#pragma once

#include "qellib10/gtk/chart_actions.h"

namespace qel {

/// The menu of a chart, with the keys of its entries.
class ChartMenu {
public:
    explicit ChartMenu(ChartActions& actions) : m_actions(actions) {}
    ~ChartMenu() { Close(); }
    ChartMenu(const ChartMenu&) = delete;
    ChartMenu& operator=(const ChartMenu&) = delete;

    /// @param event of the mouse; null: it was asked for by a key
    void Open(GtkWidget* widget, const GdkEvent* event);

private:
    void Close();
    static void OnActivate(GtkMenuItem* item, gpointer menu) noexcept;

    ChartActions& m_actions;
    GtkWidget* m_pMenu = nullptr;
};

}  // namespace qel
