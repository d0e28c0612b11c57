#include "qellib10/gtk/print_settings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr const char* kPdfPrinter = "PDF";
constexpr const char* kQueueCalledPdf = "PDF@cups";

// For binding at the long edges the toolkit calls the pages duplex "horizontally", the device mode "vertically".
constexpr std::pair<short, GtkPrintDuplex> kDuplex[] = {{DMDUP_SIMPLEX, GTK_PRINT_DUPLEX_SIMPLEX},
                                                        {DMDUP_VERTICAL, GTK_PRINT_DUPLEX_HORIZONTAL},
                                                        {DMDUP_HORIZONTAL, GTK_PRINT_DUPLEX_VERTICAL}};

std::string NameInDialog(const CString& device) {
    if (device == kPdfPrinter) return GtkText("Print to File");
    if (device == kQueueCalledPdf) return kPdfPrinter;
    const std::string name = ToUtf8(device.View());
    return name.substr(0, name.find('/'));
}

bool IsLandscape(GtkPageSetup* page) {
    const GtkPageOrientation orientation = gtk_page_setup_get_orientation(page);
    return orientation == GTK_PAGE_ORIENTATION_LANDSCAPE || orientation == GTK_PAGE_ORIENTATION_REVERSE_LANDSCAPE;
}

struct FreePaper {
    void operator()(GtkPaperSize* paper) const { gtk_paper_size_free(paper); }
};

// The toolkit's paper of this size within a millimetre, else a custom one; hundredths of a millimetre.
std::unique_ptr<GtkPaperSize, FreePaper> PaperOf(const SIZE& sheet) {
    const double width = sheet.cx / 100.0, height = sheet.cy / 100.0;
    const auto isSame = [&](GtkPaperSize* paper) {
        return std::abs(gtk_paper_size_get_width(paper, GTK_UNIT_MM) - width) <= 1 &&
               std::abs(gtk_paper_size_get_height(paper, GTK_UNIT_MM) - height) <= 1;
    };
    std::unique_ptr<GtkPaperSize, FreePaper> found;
    GList* const papers = gtk_paper_size_get_paper_sizes(FALSE);
    for (GList* item = papers; item != nullptr && found == nullptr; item = item->next) {
        GtkPaperSize* const paper = static_cast<GtkPaperSize*>(item->data);
        if (isSame(paper)) found.reset(gtk_paper_size_copy(paper));
    }
    g_list_free_full(papers, [](gpointer paper) { gtk_paper_size_free(static_cast<GtkPaperSize*>(paper)); });
    if (found == nullptr) {
        const GText name(g_strdup_printf("%d x %d mm", sheet.cx / 100, sheet.cy / 100));
        found.reset(gtk_paper_size_new_custom(name.get(), name.get(), width, height, GTK_UNIT_MM));
    }
    return found;
}

}  // namespace

ObjectRef<GtkPrintSettings> PrintSettingsOf(const CString& device, const std::optional<DEVMODE>& mode) {
    ObjectRef<GtkPrintSettings> settings(gtk_print_settings_new());
    gtk_print_settings_set_printer(settings.get(), NameInDialog(device).c_str());
    // The dialog asks before it replaces an existing file. Nothing is written to this one, so we name one that never
    // exists.
    gtk_print_settings_set(settings.get(), GTK_PRINT_SETTINGS_OUTPUT_URI, "file:///dev/null/print.pdf");
    if (!mode) return settings;
    if ((mode->dmFields & DM_COPIES) != 0 && mode->dmCopies > 0) {
        gtk_print_settings_set_n_copies(settings.get(), mode->dmCopies);
    }
    for (const auto& [duplex, toolkits] : kDuplex) {
        if ((mode->dmFields & DM_DUPLEX) != 0 && mode->dmDuplex == duplex) {
            gtk_print_settings_set_duplex(settings.get(), toolkits);
        }
    }
    return settings;
}

ObjectRef<GtkPageSetup> PageSetupOf(const DEVMODE& mode) {
    const std::optional<SIZE> size = PageOf(mode);
    if (!size && (mode.dmFields & DM_ORIENTATION) == 0) return nullptr;
    ObjectRef<GtkPageSetup> page(gtk_page_setup_new());
    bool isLandscape = mode.dmOrientation == DMORIENT_LANDSCAPE;
    if (size) {
        isLandscape = size->cx > size->cy;
        gtk_page_setup_set_paper_size_and_default_margins(
            page.get(), PaperOf({std::min(size->cx, size->cy), std::max(size->cx, size->cy)}).get());
    }
    gtk_page_setup_set_orientation(page.get(),
                                   isLandscape ? GTK_PAGE_ORIENTATION_LANDSCAPE : GTK_PAGE_ORIENTATION_PORTRAIT);
    return page;
}

void PutInto(DEVMODE& mode, GtkPrintSettings* settings, GtkPageSetup* page) {
    GtkPaperSize* const paper = gtk_page_setup_get_paper_size(page);
    const auto hundredths = [](double millimetres) {
        return static_cast<LONG>(std::lround(std::clamp(millimetres, 0.0, 1e6) * 100));
    };
    SetPaper(mode, {hundredths(gtk_paper_size_get_width(paper, GTK_UNIT_MM)),
                    hundredths(gtk_paper_size_get_height(paper, GTK_UNIT_MM))});
    mode.dmFields |= DM_ORIENTATION | DM_COPIES;
    mode.dmOrientation = IsLandscape(page) ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
    mode.dmCopies = static_cast<short>(
        std::clamp(gtk_print_settings_get_n_copies(settings), 1, int{std::numeric_limits<short>::max()}));
    if (!gtk_print_settings_has_key(settings, GTK_PRINT_SETTINGS_DUPLEX)) return;
    const auto found =
        std::ranges::find(kDuplex, gtk_print_settings_get_duplex(settings), &std::pair<short, GtkPrintDuplex>::second);
    mode.dmFields |= DM_DUPLEX;
    mode.dmDuplex = found->first;
}

CString DeviceOf(GtkPrinter* printer, const CString& before) {
    const char* const name = gtk_printer_get_name(printer);
    if (gtk_printer_is_virtual(printer)) return kPdfPrinter;
    if (NameInDialog(before) == name) return before;
    const CString device(FromUtf8(name));
    return device == kPdfPrinter ? CString(kQueueCalledPdf) : device;
}

}  // namespace qel
