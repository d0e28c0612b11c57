#pragma once

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/printing/device_mode.h"

// The printers of the system: those that CUPS serves (CUPS_SERVER, client.conf), and one that always exists.
//
//     PDF       writes each document as a PDF file into $QELLIB10_PDF_DIR (a path of the file system; default: the
//               user's folder for documents), named after the document, never over another file; until it is whole
//               it is .qellib10.<4 hex digits>.tmp there, which the next document removes if its program was killed
//     NAME      a queue, or NAME/INSTANCE as the user has set it up; a queue that is called PDF itself is PDF@cups
//
// We give up on a server that does not respond after 5 seconds, and on the transfer of a document after 10 seconds
// without progress; looking up a remote server's name has the resolver's own limit. Results are 0 or null on failure.
// Any thread; a context and a handle belong to one at a time.

/// Which printers EnumPrinters lists.
enum : DWORD {
    PRINTER_ENUM_LOCAL = 2,
    PRINTER_ENUM_CONNECTIONS = 4  ///< queues for a printer of another server
};
inline constexpr DWORD PRINTER_ENUM_ICON8 = 0x00800000;  ///< set in the flags of each record

/// Attributes of level 2.
enum : DWORD { PRINTER_ATTRIBUTE_DEFAULT = 0x4, PRINTER_ATTRIBUTE_NETWORK = 0x10, PRINTER_ATTRIBUTE_LOCAL = 0x40 };

/// Level 1: names.
struct PRINTER_INFO_1 {  // NOLINT: the name that applications know
    DWORD Flags;
    char* pDescription;  ///< name, driver and comment, separated by commas
    char* pName;
    char* pComment;
};

// Xlib has a macro of this name, which would make the member below an unnamed int.
#pragma push_macro("Status")
#undef Status
/// Level 2. Pointers to information that this system does not have are null.
struct PRINTER_INFO_2 {  // NOLINT: the name that applications know
    char* pServerName;
    char* pPrinterName;
    char* pShareName;
    char* pPortName;    ///< the device's URI; for PDF the folder
    char* pDriverName;  ///< the make and model; for PDF its name
    char* pComment;
    char* pLocation;
    DEVMODE* pDevMode;  ///< portrait, one copy, the default paper and resolution
    char* pSepFile;
    char* pPrintProcessor;
    char* pDatatype;
    char* pParameters;
    void* pSecurityDescriptor;
    DWORD Attributes;
    DWORD Priority;
    DWORD DefaultPriority;
    DWORD StartTime;
    DWORD UntilTime;
    DWORD Status;
    DWORD cJobs;
    DWORD AveragePPM;
};
#pragma pop_macro("Status")

/// Lists printers at level 1: local ones before connections, PDF first. @p buffer, aligned for pointers, receives @p
/// returned records and the texts that they point to; if @p size is too small, nothing is written.
/// @param needed the bytes that the list needs
/// @return 0 if the buffer is too small, for another level, and for a @p name (of a server)
QELLIB10_API BOOL EnumPrinters(DWORD flags, const char* name, DWORD level, BYTE* buffer, DWORD size, DWORD* needed,
                               DWORD* returned);

/// Looks up the printer as it is now; the handle keeps this state. @return 0 if there is no printer of this name
QELLIB10_API BOOL OpenPrinter(const char* name, HANDLE* printer, const void* defaults);
/// The record of level 1 or 2, with everything that it points to. @return like EnumPrinters, and 0 for a bad handle
QELLIB10_API BOOL GetPrinter(HANDLE printer, DWORD level, BYTE* buffer, DWORD size, DWORD* needed);
QELLIB10_API BOOL ClosePrinter(HANDLE printer);

/// Creates a context of the printer @p device; delete it with DeleteDC. From @p mode (null: the printer's own settings)
/// the form or size, orientation, resolution, copies, colour and sides are used if dmFields names them; a form that the
/// printer does not have is replaced by its default one. A document is sent as PDF when it ends; nothing is sent of one
/// that does not end. Documents without a date of their own (qel::SetPdfInfo) have the time when they are started. @p
/// driver and @p output are not used.
QELLIB10_API HDC CreateDC(const char* driver, const char* device, const char* output, const DEVMODE* mode);

namespace qel {

/// Whether the printer of this context has no sheet of the size or form that CreateDC was asked for, so that pages are
/// laid out for another one: a form that replaces it, or the printer's default. A program asks before it prints
/// what has to fit. @return false also for what is not a context of a printer
QELLIB10_API bool HasOtherSheet(HDC printer);

}  // namespace qel
