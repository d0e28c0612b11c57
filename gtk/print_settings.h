#pragma once

#include <gtk/gtkunixprint.h>

#include <optional>
#include <string>

#include "qellib10/gtk/toolkit.h"
#include "qellib10/platform/printing/device_mode.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// Printer, copies and sides in the dialog's form.
ObjectRef<GtkPrintSettings> PrintSettingsOf(const CString& device, const std::optional<DEVMODE>& mode);

/// Paper and orientation; null if the mode sets neither.
ObjectRef<GtkPageSetup> PageSetupOf(const DEVMODE& mode);

/// Writes the choices into a device mode; what the dialog does not offer stays.
void PutInto(DEVMODE& mode, GtkPrintSettings* settings, GtkPageSetup* page);

/// The library's name of a printer in the dialog. @param before the printer that was preselected; it may be a queue
/// NAME/INSTANCE set up by the user, of which the dialog knows only NAME
CString DeviceOf(GtkPrinter* printer, const CString& before);

}  // namespace qel
