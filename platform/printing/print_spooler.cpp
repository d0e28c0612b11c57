#include "qellib10/platform/printing/print_spooler.h"

#include <vector>

#include "qellib10/platform/drawing/handle_table.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/printing/printer.h"
#include "qellib10/platform/printing/record_buffer.h"

namespace {

using qel::FailureKind;
using qel::Printer;
using qel::PrinterEntry;

constexpr const char* kNoLevel = "no such level of records";
constexpr const char* kTooSmall = "the buffer is too small";

qel::HandleTable<const Printer>& OpenPrinters() {
    static auto& table = *new qel::HandleTable<const Printer>;
    return table;
}

PRINTER_INFO_1 Names(const PrinterEntry& printer, qel::RecordBuffer& buffer) {
    PRINTER_INFO_1 info{};
    info.Flags = PRINTER_ENUM_ICON8;
    info.pDescription = buffer.Text(printer.name + "," + printer.driver + "," + printer.comment);
    info.pName = buffer.Text(printer.name);
    info.pComment = buffer.Text(printer.comment);
    return info;
}

PRINTER_INFO_2 Description(const Printer& printer, qel::RecordBuffer& buffer) {
    PRINTER_INFO_2 info{};
    const PrinterEntry& entry = printer.entry;
    info.pDevMode = buffer.Take<DEVMODE>();
    if (info.pDevMode != nullptr) *info.pDevMode = printer.OwnMode();
    info.pPrinterName = buffer.Text(entry.name);
    info.pPortName = buffer.Text(entry.port);
    info.pDriverName = buffer.Text(entry.driver);
    info.pComment = buffer.Text(entry.comment);
    info.pLocation = buffer.Text(entry.location);
    info.Attributes = (entry.isDefault ? DWORD{PRINTER_ATTRIBUTE_DEFAULT} : 0) |
                      (entry.isConnection ? PRINTER_ATTRIBUTE_NETWORK : PRINTER_ATTRIBUTE_LOCAL);
    return info;
}

// Writes the records of @p items in the order of the list, all of them or nothing. @return whether they fit
template <class Record, class Item, class Fill>
bool FillRecords(BYTE* bytes, DWORD size, const std::vector<Item>& items, Fill fill, DWORD& needed) {
    const auto pass = [&](BYTE* target, DWORD capacity) {
        qel::RecordBuffer buffer(target, capacity);
        Record* record = buffer.Take<Record>(items.size());
        for (const Item& item : items) {
            const Record filled = fill(item, buffer);
            if (record != nullptr) *record++ = filled;
        }
        needed = buffer.Needed();
        return buffer.Fits();
    };
    pass(nullptr, 0);
    return needed <= size && pass(bytes, size);
}

}  // namespace

BOOL EnumPrinters(DWORD flags, const char* name, DWORD level, BYTE* buffer, DWORD size, DWORD* needed,
                  DWORD* returned) {
    qel::Operation operation("EnumPrinters");
    if (needed == nullptr || returned == nullptr) return qel::RefuseNull("EnumPrinters");
    *needed = *returned = 0;
    if (level != 1 || name != nullptr) return operation.Failed(FailureKind::kArgument, "", kNoLevel);
    std::vector<PrinterEntry> printers = qel::ListPrinters();
    std::erase_if(printers, [&](const PrinterEntry& printer) {
        return (flags & (printer.isConnection ? PRINTER_ENUM_CONNECTIONS : PRINTER_ENUM_LOCAL)) == 0;
    });
    if (!FillRecords<PRINTER_INFO_1>(buffer, size, printers, Names, *needed))
        return operation.Failed(FailureKind::kArgument, "", kTooSmall);
    *returned = static_cast<DWORD>(printers.size());
    return operation.Ended(1);
}

BOOL OpenPrinter(const char* name, HANDLE* printer, const void*) {
    if (printer == nullptr) return qel::RefuseNull("OpenPrinter");
    qel::Operation operation("OpenPrinter");
    *printer = nullptr;
    std::optional<Printer> found = qel::FindPrinter(name);
    if (!operation.Ended(found.has_value())) return 0;
    *printer = OpenPrinters().Add(std::make_shared<const Printer>(std::move(*found)));
    return 1;
}

BOOL GetPrinter(HANDLE printer, DWORD level, BYTE* buffer, DWORD size, DWORD* needed) {
    if (needed == nullptr) return qel::RefuseNull("GetPrinter");
    qel::Operation operation("GetPrinter");
    *needed = 0;
    const std::shared_ptr<const Printer> found = OpenPrinters().Find(printer);
    if (!found) return operation.Failed(FailureKind::kArgument, "", "no open printer");
    if (level != 1 && level != 2) return operation.Failed(FailureKind::kArgument, "", kNoLevel);
    const bool isFilled = level == 1
                              ? FillRecords<PRINTER_INFO_1>(buffer, size, std::vector{found->entry}, Names, *needed)
                              : FillRecords<PRINTER_INFO_2>(buffer, size, std::vector{*found}, Description, *needed);
    return operation.Ended(isFilled, FailureKind::kArgument, kTooSmall);
}

BOOL ClosePrinter(HANDLE printer) { return OpenPrinters().Remove(printer) != nullptr; }
