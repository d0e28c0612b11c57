#pragma once

#include "qellib10/gtk/toolkit.h"
#include "qellib10/platform/printing/print_dialog.h"

namespace qel {

/// GTK's print dialog over the printers of the library.
class GtkPrintDialog : public PrintDialogProvider {
public:
    std::optional<PrintChoice> Choose(const PrintDialogRequest& request) override;

private:
    OwnThread m_thread;
};

}  // namespace qel
