#pragma once

#include <optional>

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/printing/device_mode.h"
#include "qellib10/platform/text/string.h"

/// What a print dialog offers.
enum : DWORD {
    PD_ALLPAGES = 0,
    PD_NOSELECTION = 0x4,  ///< no choice of the selection
    PD_NOPAGENUMS = 0x8,   ///< no choice of pages
    PD_PRINTSETUP = 0x40,
    PD_USEDEVMODECOPIES = 0x40000,  ///< the number of copies is the device mode's
    PD_HIDEPRINTTOFILE = 0x100000
};
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;

namespace qel {

/// What a print dialog is asked to do.
struct PrintDialogRequest {
    HWND owner = nullptr;         ///< the window in front of which it stands; null: none
    DWORD flags = 0;              ///< PD_
    CString device;               ///< the printer to begin with; empty: the default one
    std::optional<DEVMODE> mode;  ///< and its settings, where there are any
};

/// What the user chose.
struct PrintChoice {
    CString device;               ///< as EnumPrinters names it
    std::optional<DEVMODE> mode;  ///< nothing: the printer's own
};

/// The dialog of an application's toolkit in which the user chooses a printer.
class QELLIB10_API PrintDialogProvider {
public:
    virtual ~PrintDialogProvider();

    /// Shows the dialog and returns when it is closed. Called in the thread that asks; throws nothing.
    /// @return nothing when cancelled
    virtual std::optional<PrintChoice> Choose(const PrintDialogRequest& request) = 0;
};

/// Sets who shows print dialogs from now on; it must live until another one is set. Null: nobody, each dialog is
/// cancelled at once. @return the provider until now
QELLIB10_API PrintDialogProvider* SetPrintDialogProvider(PrintDialogProvider* provider) noexcept;

}  // namespace qel

/// The print dialog: shows the one that the application has registered, and keeps what was chosen.
class QELLIB10_API CPrintDialog {
public:
    explicit CPrintDialog(BOOL setupOnly,
                          DWORD flags = PD_USEDEVMODECOPIES | PD_NOPAGENUMS | PD_HIDEPRINTTOFILE | PD_NOSELECTION,
                          HWND parent = nullptr);
    virtual ~CPrintDialog();

    /// @return IDOK; IDCANCEL when it was cancelled, when nobody shows dialogs, and when no printer was chosen
    virtual int DoModal();
    /// Takes the default printer without showing anything.
    BOOL GetDefaults();
    /// Takes a printer without showing anything, with the settings @p mode or, null, its own. @return 0 when there is
    /// none of this name; nothing is changed then
    BOOL SelectPrinter(const char* device, const DEVMODE* mode = nullptr);

    CString GetDeviceName() const { return m_szDevice; }
    CString GetDriverName() const { return m_szDriver; }
    CString GetPortName() const { return m_szPort; }
    /// The chosen settings, good as long as this object; null when there are none: nothing was chosen, or a printer
    /// that could not be asked.
    DEVMODE* GetDevMode() { return m_mode ? &*m_mode : nullptr; }
    // The dialog offers all pages and nothing else.
    BOOL PrintAll() const { return 1; }
    BOOL PrintRange() const { return 0; }
    BOOL PrintSelection() const { return 0; }
    int GetFromPage() const { return -1; }  ///< none: there is no range
    int GetToPage() const { return -1; }    ///< as GetFromPage
    BOOL PrintCollate() const { return m_mode && m_mode->dmCollate == DMCOLLATE_TRUE; }
    int GetCopies() const { return m_mode && m_mode->dmCopies > 0 ? m_mode->dmCopies : 1; }
    /// A new context of the chosen printer with the chosen settings, which the caller deletes; null on failure.
    HDC CreatePrinterDC();
    /// The context that was made of the chosen printer, or a new one when there was none yet. The caller deletes it.
    HDC GetPrinterDC() { return m_hDC != nullptr ? m_hDC : CreatePrinterDC(); }

private:
    DWORD m_dwFlags;
    HWND m_hParent;
    CString m_szDevice;
    CString m_szDriver;
    CString m_szPort;
    std::optional<DEVMODE> m_mode;
    HDC m_hDC = nullptr;  // of what is chosen now, once it was asked for; the caller's
};
