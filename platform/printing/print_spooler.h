#pragma once

#include "qellib10/platform/drawing/dc.h"
#include "qellib10/platform/printing/device_mode.h"

// The printers of the system: those that CUPS serves (CUPS_SERVER, client.conf), and one that is always there.
//
//     PDF       writes each document as a PDF file into $QELLIB10_PDF_DIR (a path of the file system; default: the
//               user's folder for documents), named after the document, never over another file
//     NAME      a queue, or NAME/INSTANCE as the user has set it up; a queue that is called PDF itself is PDF@cups
//
// A server that does not answer is given up within 5 seconds, the transfer of a document after 10 seconds without
// progress; the look-up of a remote server's name has the resolver's own limit. Answers are 0 or null on failure. Any
// thread; a context and a handle belong to one at a time.

/// Which printers EnumPrinters lists.
enum : DWORD {
    PRINTER_ENUM_LOCAL = 2,
    PRINTER_ENUM_CONNECTIONS = 4  ///< queues that stand for a printer of another server
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
/// Level 2. Pointers to what this system does not have are null.
struct PRINTER_INFO_2 {  // NOLINT: the name that applications know
    char* pServerName;
    char* pPrinterName;
    char* pShareName;
    char* pPortName;    ///< the device's URI; of PDF the folder
    char* pDriverName;  ///< the make and model; of PDF its name
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

/// Lists printers at level 1: local ones before connections, PDF first. @p buffer, aligned for pointers, receives
/// @p returned records and the texts that they point to; when @p size is too small nothing is written.
/// @param needed the bytes that the list takes
/// @return 0 when the buffer is too small, or for another level or a @p name (of a server)
QELLIB10_API BOOL EnumPrinters(DWORD flags, const char* name, DWORD level, BYTE* buffer, DWORD size, DWORD* needed,
                               DWORD* returned);

/// Looks the printer up, as it is now; the handle knows it from then on. @return 0 when there is none of this name
QELLIB10_API BOOL OpenPrinter(const char* name, HANDLE* printer, const void* defaults);
/// The record of level 1 or 2, with all that it points to. @return as EnumPrinters, and 0 for a bad handle
QELLIB10_API BOOL GetPrinter(HANDLE printer, DWORD level, BYTE* buffer, DWORD size, DWORD* needed);
QELLIB10_API BOOL ClosePrinter(HANDLE printer);

/// A context of the printer @p device, to be deleted with DeleteDC. Of @p mode (null: as the printer does by itself)
/// form or size, orientation, resolution, copies, colour and sides count, each where dmFields names it; a form that
/// the printer does not have becomes its default one. Documents are sent as PDF when they end, and nothing of one
/// that does not; without a date of their own (qel::SetPdfInfo) they are of the time when they are started. @p driver
/// and @p output are not used.
QELLIB10_API HDC CreateDC(const char* driver, const char* device, const char* output, const DEVMODE* mode);
