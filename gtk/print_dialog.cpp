#include "qellib10/gtk/print_dialog.h"

#include <gtk/gtkunixprint.h>

#include "qellib10/gtk/print_settings.h"

namespace qel {
namespace {

CString DefaultPrinter() {
    CPrintDialog defaults(0);
    defaults.GetDefaults();
    return defaults.GetDeviceName();
}

// The settings that the user's choices are written into: those passed in if the printer is the same, otherwise its own.
std::optional<DEVMODE> ModeToBeginWith(const CString& device, const PrintDialogRequest& request) {
    if (request.mode && device == request.device) return request.mode;
    CPrintDialog chosen(0);
    if (!chosen.SelectPrinter(device)) return std::nullopt;
    return *chosen.GetDevMode();
}

// Hides the dialog's choice of a file, because our printer chooses file names itself, and of pages, which it does not
// know.
void LeaveOut(GtkPrintUnixDialog* dialog) {
    const auto part = [&](const char* name) {
        GObject* const found = gtk_widget_get_template_child(GTK_WIDGET(dialog), GTK_TYPE_PRINT_UNIX_DIALOG, name);
        return GTK_IS_WIDGET(found) ? GTK_WIDGET(found) : nullptr;
    };
    if (GtkWidget* const file = part("extension_point")) gtk_widget_set_no_show_all(file, TRUE), gtk_widget_hide(file);
    if (GtkWidget* const pages = part("page_range_radio")) gtk_widget_set_sensitive(pages, FALSE);
}

}  // namespace

std::optional<PrintChoice> GtkPrintDialog::Choose(const PrintDialogRequest& request) {
    if (!m_thread.IsThis()) return std::nullopt;
    const CString device = request.device.IsEmpty() ? DefaultPrinter() : request.device;
    const bool isSetup = (request.flags & PD_PRINTSETUP) != 0;
    ModalDialog dialog(gtk_print_unix_dialog_new(isSetup ? GtkText("Page Setup") : nullptr, WindowOf(request.owner)));
    GtkPrintUnixDialog* const print = GTK_PRINT_UNIX_DIALOG(dialog.Widget());
    gtk_print_unix_dialog_set_manual_capabilities(print, GTK_PRINT_CAPABILITY_GENERATE_PDF);
    gtk_print_unix_dialog_set_embed_page_setup(print, TRUE);
    LeaveOut(print);
    gtk_print_unix_dialog_set_settings(print, PrintSettingsOf(device, request.mode).get());
    if (const auto page = request.mode ? PageSetupOf(*request.mode) : nullptr) {
        gtk_print_unix_dialog_set_page_setup(print, page.get());
    }

    if (dialog.Run() != GTK_RESPONSE_OK) return std::nullopt;
    GtkPrinter* const printer = gtk_print_unix_dialog_get_selected_printer(print);
    if (printer == nullptr) return std::nullopt;  // the button works even without one
    PrintChoice choice{DeviceOf(printer, device), std::nullopt};
    choice.mode = ModeToBeginWith(choice.device, request);
    if (choice.mode) {
        const ObjectRef<GtkPrintSettings> settings(gtk_print_unix_dialog_get_settings(print));
        PutInto(*choice.mode, settings.get(), gtk_print_unix_dialog_get_page_setup(print));
    }
    return choice;
}

}  // namespace qel
