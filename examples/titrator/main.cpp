// A titrator's window: a simulated instrument whose points are shown as they come, the end point and the result with
// its uncertainty, results with their history, people who sign, and a printed report.
//
//     titrator FOLDER [--shoot FILE]
//
// Results and people are in the folder. With a file all of it is done without a person, as mori (password violet) and
// sato (amber) would; then the window is written to the file as PNG, and closed.

#include <gtk/gtk.h>
#include <qellib10/gtk/chart_view.h>
#include <qellib10/gtk/dialogs.h>
#include <qellib10/gtk/person_dialog.h>
#include <qellib10/gtk/window_picture.h>

#include <cstdio>
#include <stdexcept>

#include "archive.h"
#include "evaluation.h"
#include "instrument.h"

namespace titrator {
namespace {

qel::Chart MakeChart() {
    qel::Chart chart;
    chart.title = "Acidity of vinegar";
    chart.axes[0].title = "Volume", chart.axes[0].unit = "mL", chart.axes[0].low = 0, chart.axes[0].high = 22;
    chart.axes[1].title = "pH", chart.axes[1].low = 2, chart.axes[1].high = 13;
    chart.series.push_back({.name = "Sample", .mark = qel::ChartMark::kCircle});
    return chart;
}

// A frame with a text that changes; the history fills what is left of the height.
GtkWidget* AddText(GtkWidget* box, const char* title, bool isHistory = false) {
    GtkWidget *const frame = gtk_frame_new(title), *const label = gtk_label_new("");
    g_object_set(label, "xalign", 0.0, "yalign", 0.0, "wrap", TRUE, "width-chars", 30, "max-width-chars", 30, "margin",
                 8, nullptr);
    GtkWidget* const content = isHistory ? gtk_scrolled_window_new(nullptr, nullptr) : label;
    if (isHistory) gtk_container_add(GTK_CONTAINER(content), label);
    gtk_container_add(GTK_CONTAINER(frame), content);
    gtk_box_pack_start(GTK_BOX(box), frame, isHistory ? TRUE : FALSE, TRUE, 0);
    return label;
}

std::string Fixed(double value) { return std::string(CQVariant::DoubleToStr(value, 3, 0)); }

void SetText(GtkWidget* label, const std::string& text) { gtk_label_set_text(GTK_LABEL(label), text.c_str()); }

}  // namespace

/// Instrument, result and history at the left, the live curve at the right. What fails is shown.
class TitratorWindow {
public:
    explicit TitratorWindow(const std::string& folder) : m_archive(folder), m_view(MakeChart()) {
        GtkWidget* const all = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
        GtkWidget* const left = gtk_box_new(GTK_ORIENTATION_VERTICAL, 8);
        g_object_set(left, "margin", 12, nullptr);
        m_reading = AddText(left, "Instrument");
        AddButton<&TitratorWindow::Titrate>(left, "_Titrate");
        m_result = AddText(left, "Result");
        AddButton<&TitratorWindow::Register>(left, "_Register…");
        m_history = AddText(left, "History", true);
        AddButton<&TitratorWindow::Sign>(left, "_Sign…");
        AddButton<&TitratorWindow::Print>(left, "_Print…");
        gtk_box_pack_start(GTK_BOX(all), left, FALSE, FALSE, 0);
        gtk_box_pack_start(GTK_BOX(all), m_view.Widget(), TRUE, TRUE, 0);
        gtk_container_add(GTK_CONTAINER(window), all);
        gtk_window_set_title(GTK_WINDOW(window), "Titrator");
        gtk_window_set_default_size(GTK_WINDOW(window), 1000, 620);
        m_view.AllowLeavingOut([this](std::size_t) {
            if (m_isEvaluated) Evaluate();
        });
        m_timer = g_timeout_add(50, OnTimer, this);
        ShowHistory();
        gtk_widget_show_all(window);
    }
    ~TitratorWindow() { g_source_remove(m_timer); }

    /// All that users do, without dialogs.
    void Demonstrate() {
        m_pause = 5;
        Titrate();
        while (!m_isEvaluated) g_main_context_iteration(nullptr, TRUE);
        m_view.Edit(
            [](qel::Chart& chart) { qel::ToggleLeftOut(chart.series[0], {Instrument::kBubble}, "air bubble"); });
        Evaluate();
        m_archive.Register(Document(), {"mori", "violet"});
        m_archive.Approve({"sato", "amber"});
        ShowHistory();
        CQelPrintJobPageStyle page;
        page.SetPrinterDevice("PDF");
        PrintOn(page);
    }

    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);

private:
    template <void (TitratorWindow::*Step)()> void AddButton(GtkWidget* box, const char* text) {
        GtkWidget* const button = gtk_button_new_with_mnemonic(text);
        g_signal_connect_swapped(button, "clicked", G_CALLBACK(Run<Step>), this);
        gtk_box_pack_start(GTK_BOX(box), button, FALSE, FALSE, 0);
    }
    template <void (TitratorWindow::*Step)()> static void Run(TitratorWindow* self) {
        try {
            (self->*Step)();
        } catch (const std::runtime_error& error) {
            GtkWidget* const message = gtk_message_dialog_new(GTK_WINDOW(self->window), GTK_DIALOG_MODAL,
                                                              GTK_MESSAGE_ERROR, GTK_BUTTONS_CLOSE, "%s", error.what());
            gtk_dialog_run(GTK_DIALOG(message));
            gtk_widget_destroy(message);
        }
    }

    void Titrate() {
        if (m_instrument.IsTitrating()) throw std::runtime_error("The titration is not at its end.");
        m_view.Edit([](qel::Chart& chart) { chart = MakeChart(); });
        m_trace.reset();
        SetText(m_result, "");
        m_isEvaluated = false;
        m_sent = 0;
        m_instrument.Start(
            [this](const CQBinary& telegram) {
                const auto point = Instrument::Read(telegram);
                if (point) ++m_sent, m_view.Append(0, {&*point, 1});
            },
            std::chrono::milliseconds(m_pause));
    }
    static gboolean OnTimer(gpointer self) { return static_cast<TitratorWindow*>(self)->Look(), G_SOURCE_CONTINUE; }
    void Look() {
        const auto& points = m_view.Shown().series[0].points;
        const bool isTitrating = m_instrument.IsTitrating();
        const std::string state = isTitrating ? "titrating" : "ready";
        if (points.empty()) return SetText(m_reading, state);
        SetText(m_reading,
                state + "\n" + Fixed(points.back().GetXData()) + " mL, pH " + Fixed(points.back().GetYData()));
        if (!isTitrating && !m_isEvaluated && points.size() == m_sent) Evaluate();
    }

    void Evaluate() {
        m_isEvaluated = true;
        const qel::CurveEndPoint end = EndPointOf(m_view.Shown().series[0]);
        m_trace = end ? std::optional(Acidity(end)) : std::nullopt;
        SetText(m_result, end ? m_trace->ResultWithUncertainty() : end.reason);
        m_view.Edit([&](qel::Chart& chart) {
            chart.notes.clear();
            if (!end) return;
            const std::string text = "EP " + Fixed(*end.value) + " mL";
            chart.notes.push_back({.x = *end.value, .y = end.signal, .text = text, .isFlag = true});
        });
    }
    // The calculation, then the curve with what was left out of it.
    std::string Document() const {
        if (!m_trace) throw std::runtime_error(gtk_label_get_text(GTK_LABEL(m_result)));
        return m_trace->Json() + "\n\n" + m_view.Csv();
    }
    void Register() {
        const std::string document = Document();
        if (const auto person = qel::AskPerson(window, "Register")) m_archive.Register(document, *person);
        ShowHistory();
    }
    void Sign() {
        if (const auto person = qel::AskPerson(window, "Approve the latest result")) m_archive.Approve(*person);
        ShowHistory();
    }
    void ShowHistory() {
        std::string text;
        for (const qel::SignatureBlock& block : m_archive.Versions()) {
            text += "Version " + std::to_string(block.version.version) + " of " + block.version.user + "\n" +
                    qel::TrailTimeText(block.version.time).substr(0, 16) + "Z\n" +
                    (block.whyNotFinal.empty() ? "approved by " + block.signatures.back().name : block.whyNotFinal) +
                    "\n\n";
        }
        SetText(m_history, text);
    }

    void Print() {
        CQelPrintJobPageStyle page;
        if (page.SelectPrinter() != 0) PrintOn(page);
    }
    // The curve, then each step of the calculation, and who has signed the latest version.
    void PrintOn(CQelPrintJobPageStyle& page) {
        if (!m_trace) throw std::runtime_error("There is no result.");
        page.SetStyleName("Titration");
        page.SetLeftMargin(200), page.SetTopMargin(200), page.SetRightMargin(150), page.SetBottomMargin(150);
        CDC printer;
        if (!printer.Attach(page.GetPrinterDC())) throw std::runtime_error("There is no such printer.");
        CQelPrintJobQueueData curve;
        curve.GetPageStyle() = page;
        qel::Chart chart = m_view.Shown();
        chart.theme = qel::ChartTheme::Print();
        CQelPrintJobDocumentData document;
        bool isDone = qel::RecordOnPage(chart, curve, CSize(160, 110)) && document.CheckAndAddJobFile(curve) != 0;
        std::vector<qel::PrintTable> tables = qel::PrintTablesOf(m_trace->Tables(qel::TraceLanguage::kEnglish));
        tables.push_back({"Signatures", {}, {}});
        const std::vector<qel::SignatureBlock> versions = m_archive.Versions();
        if (!versions.empty())
            for (const std::string& line : versions.front().Lines()) tables.back().rows.push_back({line});
        for (const auto& job :
             qel::MakeTableJobs(tables, {.headline = m_trace->ResultWithUncertainty()}, page, printer))
            isDone = isDone && document.CheckAndAddJobFile(job) != 0;
        if (!isDone || document.PrintOut() == 0) throw std::runtime_error(qel::LastFailure().text);
    }

    Archive m_archive;
    qel::ChartView m_view;
    GtkWidget *m_reading, *m_result, *m_history;
    std::optional<qel::Trace> m_trace;
    bool m_isEvaluated = true;
    std::atomic<std::size_t> m_sent = 0;  // points on their way or there
    int m_pause = 120;                    // ms between doses
    guint m_timer;
    Instrument m_instrument;  // last, so that it ends before the view
};

}  // namespace titrator

int main(int argc, char** argv) {
    qel::SetCodePage(qel::kCodePageUtf8);  // like GTK's texts
    gtk_init(&argc, &argv);
    qel::UseGtkDialogs();
    const bool isShot = argc == 4 && std::string_view(argv[2]) == "--shoot";
    if (argc != 2 && !isShot) return std::fputs("usage: titrator FOLDER [--shoot FILE]\n", stderr), 2;
    try {
        titrator::TitratorWindow titrator(argv[1]);
        g_signal_connect(titrator.window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
        if (isShot)
            titrator.Demonstrate(), g_timeout_add(
                                        300, [](gpointer) { return gtk_main_quit(), FALSE; }, nullptr);
        gtk_main();
        return !isShot || qel::SaveWindowPicture(titrator.window, argv[3]) ? 0 : 1;
    } catch (const std::runtime_error& error) {
        return std::fprintf(stderr, "titrator: %s\n", error.what()), 1;
    }
}
