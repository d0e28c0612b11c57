#include "qellib10/gtk/save_dialog.h"

#include <algorithm>

#include "qellib10/graph/chart_file.h"
#include "qellib10/gtk/chart_words.h"
#include "qellib10/gtk/toolkit.h"

namespace qel {
namespace {

struct Kind {
    const char* end;
    ChartWord name;
};
constexpr Kind kKinds[] = {{".png", {"Picture (PNG)", "画像 (PNG)"}},
                           {".svg", {"Picture for documents (SVG)", "文書用の画像 (SVG)"}},
                           {".pdf", {"Page (PDF)", "ページ (PDF)"}},
                           {".csv", {"Values (CSV)", "値 (CSV)"}},
                           {".job", {"Print job", "印刷ジョブ"}}};
constexpr ChartWord kTitle{"Save chart", "グラフを保存"};
constexpr ChartWord kReplace{"Replace the existing file?", "既存のファイルを置き換えますか？"};
constexpr const char* kEndKey = "chart-file-end";

std::string WithoutEnd(const std::string& name) { return ChartFileOf(name) ? name.substr(0, name.size() - 4) : name; }

// The kind that the dialog shows.
std::string EndOf(GtkFileChooser* chooser) {
    GtkFileFilter* const filter = gtk_file_chooser_get_filter(chooser);
    const char* const end =
        filter != nullptr ? static_cast<const char*>(g_object_get_data(G_OBJECT(filter), kEndKey)) : nullptr;
    return end != nullptr ? end : kKinds[0].end;
}

// Another kind is another name.
void OnKind(GtkFileChooser* chooser, GParamSpec*, gpointer) noexcept {
    const GText name(gtk_file_chooser_get_current_name(chooser));
    if (name == nullptr || *name.get() == 0) return;
    gtk_file_chooser_set_current_name(chooser, (WithoutEnd(name.get()) + EndOf(chooser)).c_str());
}

bool MayReplace(GtkWidget* owner, const std::string& path) {
    ModalDialog dialog(gtk_message_dialog_new(GTK_WINDOW(owner), GTK_DIALOG_MODAL, GTK_MESSAGE_QUESTION,
                                              GTK_BUTTONS_OK_CANCEL, "%s", Say(kReplace)));
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog.Widget()), "%s", path.c_str());
    return dialog.Run() == GTK_RESPONSE_OK;
}

}  // namespace

std::optional<std::string> AskChartFile(GtkWidget* owner, const std::string& title) {
    ModalDialog dialog(gtk_file_chooser_dialog_new(Say(kTitle), WindowOf(owner), GTK_FILE_CHOOSER_ACTION_SAVE,
                                                   GtkText("_Cancel"), GTK_RESPONSE_CANCEL, GtkText("_Save"),
                                                   GTK_RESPONSE_ACCEPT, nullptr));
    GtkFileChooser* const chooser = GTK_FILE_CHOOSER(dialog.Widget());
    gtk_dialog_set_default_response(GTK_DIALOG(dialog.Widget()), GTK_RESPONSE_ACCEPT);
    for (const Kind& kind : kKinds) {
        GtkFileFilter* const filter = gtk_file_filter_new();
        gtk_file_filter_set_name(filter, Say(kind.name));
        gtk_file_filter_add_pattern(filter, (std::string("*") + kind.end).c_str());
        g_object_set_data(G_OBJECT(filter), kEndKey, const_cast<char*>(kind.end));
        gtk_file_chooser_add_filter(chooser, filter);
    }
    std::string name = title.empty() ? "chart" : title;
    std::ranges::replace(name, '/', '-');
    gtk_file_chooser_set_current_name(chooser, (name + kKinds[0].end).c_str());
    g_signal_connect(chooser, "notify::filter", G_CALLBACK(OnKind), nullptr);
    while (dialog.Run() == GTK_RESPONSE_ACCEPT) {
        const GText chosen(gtk_file_chooser_get_filename(chooser));
        if (chosen == nullptr) continue;
        std::string path = chosen.get();
        if (!ChartFileOf(path)) path += EndOf(chooser);
        // Asked here and not by the chooser, which does not know the end that is added.
        if (!g_file_test(path.c_str(), G_FILE_TEST_EXISTS) || MayReplace(dialog.Widget(), path)) return path;
    }
    return {};
}

}  // namespace qel
