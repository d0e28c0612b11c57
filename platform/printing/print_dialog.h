#pragma once

#include <optional>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/printing/device_mode.h"
#include "qellib10/platform/text/string.h"

/// What a print dialog lets the user choose.
enum : DWORD {
    PD_ALLPAGES = 0,
    PD_NOSELECTION = 0x4,  ///< no choice of the selection
    PD_NOPAGENUMS = 0x8,   ///< no choice of pages
    PD_PRINTSETUP = 0x40,
    PD_USEDEVMODECOPIES = 0x40000,  ///< the device mode's number of copies is used
    PD_HIDEPRINTTOFILE = 0x100000
};
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;

namespace qel {

/// What the application wants from a print dialog.
struct PrintDialogRequest {
    HWND owner = nullptr;         ///< the window that the dialog is in front of; null: none
    DWORD flags = 0;              ///< PD_
    CString device;               ///< the printer shown first; empty: the default one
    std::optional<DEVMODE> mode;  ///< and its settings, if there are any
};

/// What the user chose.
struct PrintChoice {
    CString device;               ///< the name that EnumPrinters gives
    std::optional<DEVMODE> mode;  ///< nothing: the printer's own
};

/// The dialog of an application's toolkit in which the user chooses a printer.
class QELLIB10_API PrintDialogProvider {
public:
    virtual ~PrintDialogProvider();

    /// Shows the dialog and returns when it is closed. Called in the caller's thread; must not throw.
    /// @return nothing if cancelled
    virtual std::optional<PrintChoice> Choose(const PrintDialogRequest& request) = 0;
};

/// Sets the provider of print dialogs; it must live until another one is set. Null: none, each dialog is cancelled at
/// once. @return the former provider
QELLIB10_API PrintDialogProvider* SetPrintDialogProvider(PrintDialogProvider* provider) noexcept;

}  // namespace qel

/// The print dialog: shows the dialog that the application has registered, and keeps the user's choice.
class QELLIB10_API CPrintDialog {
public:
    explicit CPrintDialog(BOOL setupOnly,
                          DWORD flags = PD_USEDEVMODECOPIES | PD_NOPAGENUMS | PD_HIDEPRINTTOFILE | PD_NOSELECTION,
                          HWND parent = nullptr);
    virtual ~CPrintDialog();

    /// @return IDOK; IDCANCEL if it was cancelled, if no provider is set, and if no printer was chosen
    virtual int DoModal();
    /// Selects the default printer without showing anything.
    BOOL GetDefaults();
    /// Selects a printer without showing anything, with the settings @p mode, or its own for null. @return 0 if no
    /// printer has this name; nothing changes then
    BOOL SelectPrinter(const char* device, const DEVMODE* mode = nullptr);

    CString GetDeviceName() const { return m_szDevice; }
    CString GetDriverName() const { return m_szDriver; }
    CString GetPortName() const { return m_szPort; }
    /// The chosen settings, valid as long as this object; null if there are none: nothing was chosen, or the printer
    /// could not be asked.
    DEVMODE* GetDevMode() { return m_mode ? &*m_mode : nullptr; }
    // The dialog offers all pages and nothing else.
    BOOL PrintAll() const { return 1; }
    BOOL PrintRange() const { return 0; }
    BOOL PrintSelection() const { return 0; }
    int GetFromPage() const { return -1; }  ///< always -1: there is no range
    int GetToPage() const { return -1; }    ///< like GetFromPage
    BOOL PrintCollate() const { return m_mode && m_mode->dmCollate == DMCOLLATE_TRUE; }
    int GetCopies() const { return m_mode && m_mode->dmCopies > 0 ? m_mode->dmCopies : 1; }
    /// Creates a context of the chosen printer with the chosen settings; the caller deletes it. Null on failure.
    HDC CreatePrinterDC();
    /// The context that was created for the chosen printer, or a new one if there is none yet. The caller deletes it.
    HDC GetPrinterDC() { return m_hDC != nullptr ? m_hDC : CreatePrinterDC(); }

private:
    DWORD m_dwFlags;
    HWND m_hParent;
    CString m_szDevice;
    CString m_szDriver;
    CString m_szPort;
    std::optional<DEVMODE> m_mode;
    HDC m_hDC = nullptr;  // of the current choice, once requested; belongs to the caller
};
