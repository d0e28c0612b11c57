#pragma once

#include <gtk/gtkunixprint.h>

#include <optional>
#include <string>

#include "qellib10/gtk/toolkit.h"
#include "qellib10/platform/printing/device_mode.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// Printer, copies and sides as the dialog takes them.
ObjectRef<GtkPrintSettings> PrintSettingsOf(const CString& device, const std::optional<DEVMODE>& mode);

/// Paper and orientation; null when the mode leaves both open.
ObjectRef<GtkPageSetup> PageSetupOf(const DEVMODE& mode);

/// Puts what was chosen into a device mode; what the dialog does not offer stays.
void PutInto(DEVMODE& mode, GtkPrintSettings* settings, GtkPageSetup* page);

/// The library's name of a printer in the dialog. @param before the printer that the dialog began with, which may be a
/// queue as the user has set it up, NAME/INSTANCE, where the dialog knows NAME alone
CString DeviceOf(GtkPrinter* printer, const CString& before);

}  // namespace qel
