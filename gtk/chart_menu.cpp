#include "qellib10/gtk/chart_menu.h"

#include "qellib10/gtk/chart_keys.h"
#include "qellib10/gtk/chart_words.h"

namespace qel {
namespace {

struct Entry {
    ChartCommand command;
    ChartWord word;
    bool isSwitch = false;
    bool isFirstOfGroup = false;
};
constexpr Entry kEntries[] = {
    {ChartCommand::kShowAll, {"Show _everything", "全体を表示(_E)"}},
    {ChartCommand::kZoomIn, {"Zoom _in", "拡大(_I)"}},
    {ChartCommand::kZoomOut, {"Zoom _out", "縮小(_O)"}},
    {ChartCommand::kMarkers, {"_Markers of a range", "範囲マーカー(_M)"}, true, true},
    {ChartCommand::kLeaveOutMode, {"_Leave out points", "点を除外(_L)"}, true},
    {ChartCommand::kCopyPicture, {"_Copy picture", "画像をコピー(_C)"}, false, true},
    {ChartCommand::kCopyCsv, {"Copy _values", "値をコピー(_V)"}},
    {ChartCommand::kSave, {"_Save as…", "名前を付けて保存(_S)…"}, false, true},
    {ChartCommand::kPrint, {"_Print…", "印刷(_P)…"}},
};
constexpr const char* kCommandKey = "chart-command";

}  // namespace

void ChartMenu::OnActivate(GtkMenuItem* item, gpointer menu) noexcept {
    const int command = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(item), kCommandKey));
    static_cast<ChartMenu*>(menu)->m_actions.Run(static_cast<ChartCommand>(command));
}

void ChartMenu::Close() {
    if (m_pMenu != nullptr) gtk_widget_destroy(m_pMenu);
    m_pMenu = nullptr;
}

void ChartMenu::Open(GtkWidget* widget, const GdkEvent* event) {
    Close();
    m_pMenu = gtk_menu_new();
    g_signal_connect(m_pMenu, "destroy", G_CALLBACK(gtk_widget_destroyed), &m_pMenu);
    for (const Entry& entry : kEntries) {
        if (!m_actions.IsOffered(entry.command)) continue;
        if (entry.isFirstOfGroup) gtk_menu_shell_append(GTK_MENU_SHELL(m_pMenu), gtk_separator_menu_item_new());
        GtkWidget* const item = entry.isSwitch ? gtk_check_menu_item_new_with_mnemonic(Say(entry.word))
                                               : gtk_menu_item_new_with_mnemonic(Say(entry.word));
        if (entry.isSwitch)
            gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(item), m_actions.IsOn(entry.command) ? TRUE : FALSE);
        const ChartKey key = KeyOf(entry.command);
        gtk_accel_label_set_accel(GTK_ACCEL_LABEL(gtk_bin_get_child(GTK_BIN(item))), key.key,
                                  static_cast<GdkModifierType>(key.modifiers));
        g_object_set_data(G_OBJECT(item), kCommandKey, GINT_TO_POINTER(static_cast<int>(entry.command)));
        g_signal_connect(item, "activate", G_CALLBACK(OnActivate), this);
        gtk_menu_shell_append(GTK_MENU_SHELL(m_pMenu), item);
    }
    gtk_widget_show_all(m_pMenu);
    gtk_menu_attach_to_widget(GTK_MENU(m_pMenu), widget, nullptr);
    if (event != nullptr) {
        gtk_menu_popup_at_pointer(GTK_MENU(m_pMenu), event);
    } else {
        gtk_menu_popup_at_widget(GTK_MENU(m_pMenu), widget, GDK_GRAVITY_CENTER, GDK_GRAVITY_CENTER, nullptr);
    }
}

}  // namespace qel
