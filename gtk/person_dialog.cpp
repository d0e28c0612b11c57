#include "qellib10/gtk/person_dialog.h"

#include "qellib10/gtk/chart_words.h"
#include "qellib10/gtk/toolkit.h"

namespace qel {
namespace {

constexpr int kSpace = 12;
constexpr ChartWord kName{"_Name", "名前(_N)"}, kPassword{"_Password", "パスワード(_P)"};

GtkWidget* AddEntry(GtkWidget* grid, int row, const ChartWord& word) {
    GtkWidget *const label = gtk_label_new_with_mnemonic(Say(word)), *const entry = gtk_entry_new();
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), entry);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_entry_set_activates_default(GTK_ENTRY(entry), TRUE);
    gtk_widget_set_hexpand(entry, TRUE);
    gtk_grid_attach(GTK_GRID(grid), label, 0, row, 1, 1);
    gtk_grid_attach(GTK_GRID(grid), entry, 1, row, 1, 1);
    return entry;
}

// There is nothing to confirm without a name.
void OnChanged(GtkEntry* entry, gpointer dialog) noexcept {
    const bool isSome = *gtk_entry_get_text(entry) != 0;
    gtk_dialog_set_response_sensitive(GTK_DIALOG(dialog), GTK_RESPONSE_OK, isSome ? TRUE : FALSE);
}

}  // namespace

std::optional<PersonTyped> AskPerson(GtkWidget* owner, const std::string& title, const std::string& name) {
    ModalDialog dialog(gtk_dialog_new_with_buttons(title.c_str(), WindowOf(owner), GTK_DIALOG_MODAL, GtkText("_Cancel"),
                                                   GTK_RESPONSE_CANCEL, GtkText("_OK"), GTK_RESPONSE_OK, nullptr));
    gtk_dialog_set_default_response(GTK_DIALOG(dialog.Widget()), GTK_RESPONSE_OK);
    GtkWidget *const area = gtk_dialog_get_content_area(GTK_DIALOG(dialog.Widget())), *const grid = gtk_grid_new();
    gtk_container_set_border_width(GTK_CONTAINER(area), kSpace);
    gtk_box_set_spacing(GTK_BOX(area), kSpace);
    gtk_grid_set_row_spacing(GTK_GRID(grid), kSpace);
    gtk_grid_set_column_spacing(GTK_GRID(grid), kSpace);
    gtk_box_pack_start(GTK_BOX(area), grid, FALSE, FALSE, 0);
    GtkWidget *const user = AddEntry(grid, 0, kName), *const password = AddEntry(grid, 1, kPassword);
    gtk_entry_set_visibility(GTK_ENTRY(password), FALSE);
    gtk_entry_set_input_purpose(GTK_ENTRY(password), GTK_INPUT_PURPOSE_PASSWORD);
    g_signal_connect(user, "changed", G_CALLBACK(OnChanged), dialog.Widget());
    gtk_entry_set_text(GTK_ENTRY(user), name.c_str());
    gtk_widget_set_sensitive(user, name.empty() ? TRUE : FALSE);
    OnChanged(GTK_ENTRY(user), dialog.Widget());
    gtk_widget_grab_focus(name.empty() ? user : password);
    gtk_widget_show_all(area);
    if (dialog.Run() != GTK_RESPONSE_OK) return {};
    return PersonTyped{gtk_entry_get_text(GTK_ENTRY(user)), gtk_entry_get_text(GTK_ENTRY(password))};
}

}  // namespace qel
