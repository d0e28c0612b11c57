// qel job: print jobs from their files, shown, drawn into pictures and printed.
#include <limits>
#include <map>

#include "picture.h"
#include "seal_check.h"

namespace tool {
namespace {

constexpr int kMaxDotsPerInch = 10'000;  // above this, a file is invalid

struct Options {
    std::vector<std::string> files;
    PictureOptions picture;
    std::string printer, paper;
    int dpi = 0, page = 0;
    bool json = false;
};

CQelPrintJobQueueData LoadJob(const std::string& path) {
    CQelPrintJobQueueData job;
    OnFile(path, [&] {
        const Unsealed file(path, CFile::shareDenyWrite);
        if (job.LoadJobFile(file.Name()) == 0)
            throw LastRefusal("its XML is not well-formed, or refers to an entity", kMalformed);
    });
    return job;
}

// A job file has only the form's code. @return hundredths of a millimetre as the page is read; 0 for an unknown form
CSize PaperOf(const CQelPrintJobPageStyle& style) {
    if (style.GetPaperForm() < 0 || style.GetPaperForm() >= DMPAPER_USER) return {0, 0};
    DEVMODE mode = {};
    mode.dmFields = DM_PAPERSIZE | DM_ORIENTATION;
    mode.dmPaperSize = static_cast<short>(style.GetPaperForm());
    mode.dmOrientation = static_cast<short>(style.GetPaperDirection());
    const std::optional<SIZE> page = qel::PageOf(mode);
    return page ? CSize(*page) : CSize(0, 0);
}

CQelPrintJobDocumentData LoadDocument(const Options& options) {
    CQelPrintJobDocumentData document;
    for (const std::string& path : options.files) {
        if (document.CheckAndAddJobFile(LoadJob(path)) == 0)
            throw Failure(Shown(path) + ": has another page style than the first job");
    }
    return document;
}

int PagesOf(const CQelPrintJobDocumentData& document) {
    const int blocksPerPage = document.GetPageStyle().GetPageBlocks();
    if (blocksPerPage < 1) throw Failure("the page style has no cells");
    return (document.GetBlockCount() - 1) / blocksPerPage + 1;
}

Drawing DrawingOf(CQelPrintJobDocumentData& document, const Options& options, const std::optional<CSize>& sheet) {
    CQelPrintJobPageStyle& style = document.GetPageStyle();
    if (options.dpi != 0) style.SetDpi(options.dpi);
    const CSize paper = sheet.value_or(PaperOf(style));
    style.SetPaperSize({paper.cx / 10, paper.cy / 10});
    if (paper.cx < 1 || paper.cy < 1) throw Failure("the size of the job's paper is unknown; give it with --paper");
    if (style.GetDpi() < 1 || style.GetDpi() > kMaxDotsPerInch)
        throw Failure("the job does not say its resolution; give it with --dpi");

    Drawing drawing;
    drawing.page.sheet = paper;
    drawing.page.dotsPerInch = {style.GetDpi(), style.GetDpi()};
    drawing.title = Utf8(style.GetStyleName().View());
    drawing.sources = options.files;
    const int pages = PagesOf(document);
    if (options.page > pages) throw CLI::ValidationError("--page: the document has " + Count(pages, "page", "pages"));
    drawing.pages = options.page != 0 ? 1 : pages;
    drawing.draw = [&document, first = std::max(options.page, 1)](CDC& dc, int page) {
        return document.PrintOutMain(&dc, first + page - 1, 1) != 0;
    };
    return drawing;
}

void Render(const Options& options) {
    PictureKindOf(options.picture.target);
    std::optional<CSize> sheet;
    if (!options.paper.empty()) sheet = ParseSheet(options.paper);
    CQelPrintJobDocumentData document = LoadDocument(options);
    Drawing drawing = DrawingOf(document, options, sheet);
    Json json = Json::array();
    std::string text;
    const int first = std::max(options.page, 1);
    for (const auto& [file, page, pages] : WritePictures(options.picture, drawing)) {
        json.push_back({{"file", file}, {"page", first + page - 1}, {"pages", pages}});
        text += Shown(file) + '\n';
    }
    options.json ? Print(json) : Print(text);
}

// Commands are in the printer's pixels, so another resolution would change the size.
void PrintJobs(const Options& options) {
    CQelPrintJobDocumentData document = LoadDocument(options);
    CQelPrintJobPageStyle& style = document.GetPageStyle();
    const int dotsPerInch = style.GetDpi();
    if (!options.printer.empty()) style.SetPrinterDevice(ExactText(options.printer));
    const std::string name = "the printer \"" + Shown(Utf8(style.GetPrinterDevice().View())) + "\"";
    CDC dc;
    if (!dc.Attach(style.GetPrinterDC())) throw Failure(name + ": " + Why("is not there"));
    if (dotsPerInch > 0 && style.GetDpi() != dotsPerInch)
        throw Failure(name + " has " + std::to_string(style.GetDpi()) + " dots per inch, the job is for " +
                      std::to_string(dotsPerInch));
    Drawing drawing{{}, PagesOf(document), Utf8(style.GetStyleName().View()), {}, {}};
    drawing.draw = [&](CDC& printer, int page) { return document.PrintOutMain(&printer, page, 0) != 0; };
    if (!DrawDocument(dc, drawing)) throw Failure(name + ": " + Why("does not take the document"));
}

std::map<std::string, int> CommandsOf(CQelPrintJobQueueData& job) {
    constexpr const char* kKinds[] = {"other",  "unit",   "text",   "moveto",    "lineto", "line",
                                      "circle", "setpen", "setrgn", "rectangle", "arc"};
    std::map<std::string, int> counts;
    CQelPrintJobCommand command;
    job.GetBlock().ResetGetCommand();
    while (job.GetBlock().GetNextCommand(command) != 0) ++counts[kKinds[command.GetKind()]];
    return counts;
}

Json Described(const std::string& path) {
    CQelPrintJobQueueData job = LoadJob(path);
    const CQelPrintJobPageStyle& style = job.GetPageStyle();
    const CSize paper = PaperOf(style);
    return {{"file", path},
            {"style", Utf8(style.GetStyleName().View())},
            {"printer", Utf8(style.GetPrinterDevice().View())},
            {"form", style.GetPaperForm()},
            {"width", paper.cx / 100.0},
            {"height", paper.cy / 100.0},
            {"direction", style.GetPaperDirection() == DMORIENT_LANDSCAPE ? "landscape" : "portrait"},
            {"dpi", style.GetDpi()},
            {"across", style.GetPrintBlock().cx},
            {"down", style.GetPrintBlock().cy},
            {"commands", CommandsOf(job)}};
}

void Show(const Options& options) {
    Json json = Json::array();
    for (const std::string& path : options.files) json.push_back(Described(path));
    if (options.json) return Print(json);
    for (const Json& job : json) {
        for (const auto& [name, value] : job.items()) {
            const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
            Print((name == "file" ? "" : "  " + name + ": ") + Shown(text) + '\n');
        }
    }
}

}  // namespace

void AddJob(CLI::App& app, Status&) {
    CLI::App* const command = app.add_subcommand("job", "Show, draw and print print jobs");
    command->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, const char* meaning, void (*run)(const Options&)) {
        CLI::App* const action = command->add_subcommand(name, meaning);
        action->add_option("FILE", options->files, "Job files; each is a cell of a page")->required();
        action->callback([options, run] { run(*options); });
        return action;
    };
    CLI::App* const show = add("show", "Write the page style, and how many commands of each kind there are", Show);
    CLI::App* const render = add("render", "Draw the pages into a PDF, or a picture each", Render);
    options->picture.AddTo(*render, "Dots per inch of PNG pictures (150)");
    render->add_option("--page", options->page, "Only this page")
        ->transform(WholeNumber(1, std::numeric_limits<int>::max()))
        ->type_name("N");
    render->add_option("--paper", options->paper, "Millimetres, if the job's form is unknown")
        ->type_name("WIDTHxHEIGHT");
    render->add_option("--dpi", options->dpi, "The job's device units per inch, if it does not say")
        ->transform(WholeNumber(1, kMaxDotsPerInch))
        ->type_name("N");
    for (CLI::App* const action : {show, render}) action->add_flag("--json", options->json, "Write JSON");
    add("print", "Print them as one document", PrintJobs)
        ->add_option("--printer", options->printer, "Else the job's own")
        ->type_name("NAME");
}

}  // namespace tool
