#include "qellib10/gtk/chart_output.h"

#include <utility>

#include "qellib10/graph/chart_csv.h"
#include "qellib10/graph/chart_file.h"
#include "qellib10/gtk/chart_words.h"
#include "qellib10/gtk/print_dialog.h"
#include "qellib10/gtk/save_dialog.h"
#include "qellib10/platform/failure_sentence.h"
#include "qellib10/platform/operation.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/print/document_data.h"
#include "qellib10/print/queue_data.h"

namespace qel {
namespace {

constexpr int kUnitsPerInch = 96, kLeastDots = 192;
constexpr int kMargin = 200;  // tenths of a millimetre
constexpr ChartWord kNotSaved{"The chart cannot be saved", "グラフを保存できません"};
constexpr ChartWord kNotPrinted{"The chart cannot be printed", "グラフを印刷できません"};
constexpr ChartWord kSaved{"saved", "保存しました"}, kPrinted{"printed", "印刷しました"};
constexpr ChartWord kCopied{"copied", "コピーしました"};

// The scene's chart with the shown ranges as fixed ones, in another theme; as it was when this ends. Its points, which
// may be millions, are not copied.
class ShownChart {
public:
    ShownChart(ChartScene& scene, bool isPaper) : m_chart(scene.chart), m_axes(m_chart.axes), m_theme(m_chart.theme) {
        const ChartRanges& shown = scene.navigator.Shown();
        for (std::size_t i = 0; i < std::min(shown.size(), m_chart.axes.size()); ++i) {
            if (!shown[i]) continue;
            m_chart.axes[i].low = shown[i]->low;
            m_chart.axes[i].high = shown[i]->high;
        }
        if (isPaper && !scene.HasOwnTheme()) {
            m_chart.theme = ChartTheme::Print();
            m_chart.theme.face = m_theme.face;
        }
    }
    ~ShownChart() {
        m_chart.axes = std::move(m_axes);
        m_chart.theme = std::move(m_theme);
    }
    ShownChart(const ShownChart&) = delete;
    ShownChart& operator=(const ShownChart&) = delete;

    const Chart& Get() const { return m_chart; }

private:
    Chart& m_chart;
    std::vector<ChartAxis> m_axes;
    ChartTheme m_theme;
};

CSize UnitsOf(const ChartScene& scene) {
    return {gtk_widget_get_allocated_width(scene.Widget()), gtk_widget_get_allocated_height(scene.Widget())};
}

// The application's print dialog, or GTK's where it has set none.
bool SelectPrinter(CQelPrintJobPageStyle& page) {
    static GtkPrintDialog ownDialog;
    PrintDialogProvider* const before = SetPrintDialogProvider(&ownDialog);
    if (before != nullptr) SetPrintDialogProvider(before);
    const bool isChosen = page.SelectPrinter() != 0;
    SetPrintDialogProvider(before);
    return isChosen;
}

enum class Printed { kDone, kCancelled, kFailed };

Printed PrintChart(ChartScene& scene) {
    CQelPrintJobQueueData job;
    CQelPrintJobPageStyle& page = job.GetPageStyle();
    if (!SelectPrinter(page))
        return LastFailure().kind == FailureKind::kPrinter ? Printed::kFailed : Printed::kCancelled;
    page.SetStyleName(FromUtf8(scene.chart.title).c_str());
    page.SetLeftMargin(kMargin);
    page.SetTopMargin(kMargin);
    page.SetRightMargin(kMargin);
    page.SetBottomMargin(kMargin);
    if (!RecordOnPage(ShownChart(scene, true).Get(), job, UnitsOf(scene))) return Printed::kFailed;
    CQelPrintJobDocumentData document;
    if (document.CheckAndAddJobFile(job) == 0) return Printed::kFailed;
    document.MovePrinterDC(page);
    return document.PrintOut() != 0 ? Printed::kDone : Printed::kFailed;
}

}  // namespace

void ChartOutput::CopyPicture() {
    if (const auto pixels = m_scene.Pixels()) {
        gtk_clipboard_set_image(gtk_widget_get_clipboard(m_scene.Widget(), GDK_SELECTION_CLIPBOARD), pixels.get());
        m_scene.Announce(Say(kCopied));
    }
}

void ChartOutput::CopyCsv() {
    const std::string text = ChartCsv(m_scene.chart);
    gtk_clipboard_set_text(gtk_widget_get_clipboard(m_scene.Widget(), GDK_SELECTION_CLIPBOARD), text.data(),
                           static_cast<int>(text.size()));
    m_scene.Announce(Say(kCopied));
}

bool ChartOutput::Save(std::string_view path) {
    const auto kind = ChartFileOf(path);
    const bool isPaper = kind == ChartFile::kPdf || kind == ChartFile::kJob;
    const int dots = std::max(kLeastDots, static_cast<int>(kUnitsPerInch * m_scene.Scale()));
    return WriteChartFile(ShownChart(m_scene, isPaper).Get(), path, UnitsOf(m_scene), dots);
}

bool ChartOutput::Print() {
    Operation running("qel::ChartView::Print");
    return running.Ended(PrintChart(m_scene) == Printed::kDone);
}

void ChartOutput::AskAndSave() {
    const auto path = AskChartFile(m_scene.Widget(), m_scene.chart.title);
    if (!path) return;
    if (Save(*path)) {
        m_scene.Announce(Say(kSaved));
    } else {
        ShowFailure(Say(kNotSaved));
    }
}

void ChartOutput::AskAndPrint() {
    const Printed printed = PrintChart(m_scene);
    if (printed == Printed::kDone) m_scene.Announce(Say(kPrinted));
    if (printed == Printed::kFailed) ShowFailure(Say(kNotPrinted));
}

void ChartOutput::ShowFailure(const char* what) {
    const std::string why = ToUtf8(FailureSentence(LastFailure(), ""));
    ModalDialog dialog(gtk_message_dialog_new(WindowOf(m_scene.Widget()), GTK_DIALOG_MODAL, GTK_MESSAGE_ERROR,
                                              GTK_BUTTONS_CLOSE, "%s", what));
    if (!why.empty()) gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog.Widget()), "%s", why.c_str());
    dialog.Run();
}

}  // namespace qel
