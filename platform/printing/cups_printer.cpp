#include "qellib10/platform/printing/cups_printer.h"

#include <cups/cups.h>

#include <algorithm>
#include <cstdlib>

#include "qellib10/platform/drawing/page_setup.h"
#include "qellib10/platform/printing/cups_session.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

// Values from a server are used only within these limits.
constexpr int kLongestSide = PageSetup::kLongestSide, kFinestResolution = PageSetup::kFinestResolution;
constexpr int kWidestMargin = 2500;

PrinterEntry EntryOf(const cups_dest_t& queue) {
    const auto text = [&](const char* option) { return CString(FromUtf8(OptionOf(queue, option))); };
    PrinterEntry entry;
    entry.name = NameOfQueue(queue);
    entry.driver = text("printer-make-and-model");
    entry.port = text("device-uri");
    entry.comment = text("printer-info");
    entry.location = text("printer-location");
    entry.isConnection = (std::strtoul(OptionOf(queue, "printer-type"), nullptr, 10) & CUPS_PRINTER_REMOTE) != 0;
    entry.isDefault = queue.is_default != 0;
    return entry;
}

bool IsSheet(const SIZE& size) {
    return size.cx > 0 && size.cx <= kLongestSide && size.cy > 0 && size.cy <= kLongestSide;
}

Medium MediumOf(const cups_size_t& size) {
    const auto margin = [](int width) { return width > 0 && width <= kWidestMargin ? width : 0; };
    return {size.media,
            {size.width, size.length},
            {margin(size.left), margin(size.top), margin(size.right), margin(size.bottom)}};
}

// Queries one queue; all queries need the same three handles.
class QueueQuery {
public:
    QueueQuery(const CupsSession& session, cups_dest_t* queue, cups_dinfo_t* info)
        : m_pHttp(session.Http()), m_pQueue(queue), m_pInfo(info) {}

    std::vector<Medium> Media(const SIZE& custom) const {
        std::vector<Medium> media;
        cups_size_t size;
        const int count = ::cupsGetDestMediaCount(m_pHttp, m_pQueue, m_pInfo, 0);
        for (int i = 0; i < count; ++i) {
            if (::cupsGetDestMediaByIndex(m_pHttp, m_pQueue, m_pInfo, i, 0, &size) != 0) Add(media, size);
        }
        if (IsSheet(custom) && ::cupsGetDestMediaBySize(m_pHttp, m_pQueue, m_pInfo, custom.cx, custom.cy,
                                                        CUPS_MEDIA_FLAGS_EXACT, &size) != 0) {
            Add(media, size);
        }
        return media;
    }

    // The page size from the user's settings or from the printer itself, or none.
    SIZE DefaultSize() const {
        if (const SIZE size = SizeOf(OptionOf(*m_pQueue, "media")); IsSheet(size)) return size;
        const char* const name = ::ippGetString(Default("media"), 0, nullptr);
        if (const SIZE size = SizeOf(name != nullptr ? name : ""); IsSheet(size)) return size;
        ipp_t* const size = Member(::ippGetCollection(Default("media-col"), 0), "media-size");
        return {Number(size, "x-dimension"), Number(size, "y-dimension")};
    }

    SIZE DotsPerInch() const {
        ipp_attribute_t* attribute = Default("printer-resolution");
        if (attribute == nullptr) {
            attribute = ::cupsFindDestSupported(m_pHttp, m_pQueue, m_pInfo, "printer-resolution");
        }
        int down = 0;
        ipp_res_t units = IPP_RES_PER_INCH;
        const int across = ::ippGetResolution(attribute, 0, &down, &units);
        const auto perInch = [&](int dots) {
            if (dots < 1 || dots > kFinestResolution) return Printer().dotsPerInch.cx;
            return units == IPP_RES_PER_CM ? MulDiv(dots, 254, 100) : dots;
        };
        return {perInch(across), perInch(down)};
    }

private:
    static void Add(std::vector<Medium>& media, const cups_size_t& size) {
        if (IsSheet({size.width, size.length})) media.push_back(MediumOf(size));
    }
    static SIZE SizeOf(const char* name) {
        const pwg_media_t* media = ::pwgMediaForPWG(name);
        if (media == nullptr) media = ::pwgMediaForPPD(name);
        if (media == nullptr) media = ::pwgMediaForLegacy(name);
        return media != nullptr ? SIZE{media->width, media->length} : SIZE{0, 0};
    }
    static ipp_t* Member(ipp_t* collection, const char* name) {
        return ::ippGetCollection(::ippFindAttribute(collection, name, IPP_TAG_BEGIN_COLLECTION), 0);
    }
    static int Number(ipp_t* collection, const char* name) {
        return ::ippGetInteger(::ippFindAttribute(collection, name, IPP_TAG_INTEGER), 0);
    }
    ipp_attribute_t* Default(const char* option) const {
        return ::cupsFindDestDefault(m_pHttp, m_pQueue, m_pInfo, option);
    }

    http_t* m_pHttp;
    cups_dest_t* m_pQueue;
    cups_dinfo_t* m_pInfo;
};

}  // namespace

std::vector<PrinterEntry> CupsPrinters() {
    const CupsSession session;
    std::vector<PrinterEntry> printers;
    for (const cups_dest_t& queue : session.Queues()) printers.push_back(EntryOf(queue));
    return printers;
}

std::optional<Printer> FindCupsPrinter(const CString& name, const SIZE& custom) {
    const CupsSession session;
    cups_dest_t* const queue = session.Find(name);
    const CupsInfo info = session.InfoOf(queue);
    if (!info) {
        session.Refuse(name);
        return std::nullopt;
    }
    const QueueQuery query(session, queue, info.get());
    Printer printer;
    printer.entry = EntryOf(*queue);
    printer.dotsPerInch = query.DotsPerInch();
    printer.media = query.Media(custom);
    const SIZE size = query.DefaultSize();
    if (const Medium* const medium = FindMedium(printer.media, size)) {
        printer.defaultMedium = *medium;
    } else if (!printer.media.empty()) {
        printer.defaultMedium = printer.media.front();
    }
    return printer;
}

}  // namespace qel
