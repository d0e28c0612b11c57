#include "qellib10/gtk/reason_dialog.h"

#include <string_view>

#include "qellib10/gtk/chart_words.h"
#include "qellib10/gtk/toolkit.h"

namespace qel {
namespace {

constexpr ChartWord kTitle{"Leave points out", "点を除外"}, kReason{"Reason", "理由"};
constexpr ChartWord kOne{"Why does this point not count?", "この点を除外する理由は？"};
constexpr ChartWord kSeveral{"Why do these points not count?", "これらの点を除外する理由は？"};
constexpr int kSpace = 12;

std::string TextOf(GtkEntry* entry) {
    const GText text(g_strstrip(g_strdup(gtk_entry_get_text(entry))));
    return text.get();
}

// There is nothing to confirm without a reason.
void OnChanged(GtkEntry* entry, gpointer dialog) noexcept {
    gtk_dialog_set_response_sensitive(GTK_DIALOG(dialog), GTK_RESPONSE_OK, TextOf(entry).empty() ? FALSE : TRUE);
}

}  // namespace

std::optional<std::string> AskReasonLeftOut(GtkWidget* owner, std::size_t count) {
    ModalDialog dialog(gtk_dialog_new_with_buttons(Say(kTitle), WindowOf(owner), GTK_DIALOG_MODAL, GtkText("_Cancel"),
                                                   GTK_RESPONSE_CANCEL, GtkText("_OK"), GTK_RESPONSE_OK, nullptr));
    gtk_dialog_set_default_response(GTK_DIALOG(dialog.Widget()), GTK_RESPONSE_OK);
    std::string question = Say(count == 1 ? kOne : kSeveral);
    if (count > 1) question += " (" + std::to_string(count) + ")";
    GtkWidget* const label = gtk_label_new(question.c_str());
    GtkWidget* const entry = gtk_entry_new();
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), entry);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_entry_set_activates_default(GTK_ENTRY(entry), TRUE);
    atk_object_set_name(gtk_widget_get_accessible(entry), Say(kReason));
    g_signal_connect(entry, "changed", G_CALLBACK(OnChanged), dialog.Widget());
    OnChanged(GTK_ENTRY(entry), dialog.Widget());
    GtkWidget* const area = gtk_dialog_get_content_area(GTK_DIALOG(dialog.Widget()));
    gtk_container_set_border_width(GTK_CONTAINER(area), kSpace);
    gtk_box_set_spacing(GTK_BOX(area), kSpace);
    gtk_box_pack_start(GTK_BOX(area), label, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(area), entry, FALSE, FALSE, 0);
    gtk_widget_show_all(area);
    if (dialog.Run() != GTK_RESPONSE_OK || TextOf(GTK_ENTRY(entry)).empty()) return {};
    return TextOf(GTK_ENTRY(entry));
}

}  // namespace qel
