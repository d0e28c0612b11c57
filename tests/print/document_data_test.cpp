#include "qellib10/print/document_data.h"

#include <charconv>
#include <functional>

#include "qellib10/platform/drawing/file_dc.h"
#include "qellib10/platform/drawing/preview_dc.h"

#include "../support/canvas.h"
#include "../support/output_of.h"
#include "../support/print_system.h"
#include "../support/test.h"

namespace {

// Tenths of a millimetre are pixels, margins too.
CQelPrintJobQueueData Job(int number, const char* text = nullptr) {
    CQelPrintJobQueueData job;
    CQelPrintJobPageStyle& style = job.GetPageStyle();
    style.SetStyleName("Titration");
    style.SetDpi(254);
    style.SetUnit(3);
    style.SetPaperSize({60, 40});
    style.SetPrintBlock({2, 3});
    style.SetLeftMargin(4);
    style.SetRightMargin(6);
    style.SetTopMargin(2);
    style.SetBottomMargin(5);
    CQelPrintJobCommand command;
    command.SetPen(PS_SOLID, 1, static_cast<unsigned>(number));
    job.AddCommand(command);
    command.SetLine(0, 0, 1, 0);
    job.AddCommand(command);
    command.SetText(0, 0, "Arial", 200, 0, text, 1, -1, -1);
    if (text != nullptr) job.AddCommand(command);
    return job;
}

struct Document : CQelPrintJobDocumentData {
    using CQelPrintJobDocumentData::GetPrintMargin;

    explicit Document(int count) {
        for (int i = 1; i <= count; ++i) EXPECT_EQ(CheckAndAddJobFile(Job(i)), 1);
    }
    // Where the blocks have drawn, by their numbers.
    std::vector<std::tuple<int, int, int>> Drawn(int page, int preview = 0) {
        Canvas canvas(60, 40);
        EXPECT_EQ(PrintOutMain(&canvas.dc, page, preview), 1);
        std::vector<std::tuple<int, int, int>> found;
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 60; ++x) {
                if (const COLORREF color = canvas.At(x, y); color != kWhite) {
                    found.emplace_back(static_cast<int>(color), x, y);
                }
            }
        }
        std::sort(found.begin(), found.end());
        return found;
    }
};

// The text of a PDF file with the place of each word.
std::string WordsOf(const std::string& pdf) { return OutputOf("LC_ALL=C pdftotext -bbox '" + pdf + "' -"); }

// Where the last one of a word begins on its page, in tenths of a millimetre.
CPoint PlaceOf(const std::string& words, const std::string& word) {
    const std::size_t start = words.rfind("<word", words.find('>' + word + '<'));
    const auto tenths = [&](const std::string& name) {
        double points = -1;
        const char* const number = words.c_str() + words.find(name + "=\"", start) + name.size() + 2;
        std::from_chars(number, number + 20, points);
        return static_cast<int>(points * 254 / 72);
    };
    return {tenths("xMin"), tenths("yMin")};
}

// Prints one job per cell from job files, on all papers and grids; @p printed has the path of the document that the
// printer has received as the given one.
void CheckCellsOnAllPapers(const char* printer, const std::function<std::string(int)>& printed) {
    constexpr int kMargin = 100;
    const TempFolder folder;
    int number = 0;
    for (const auto& [form, direction, sheet] : Cases<int, int, CSize>{{1, 1, {2159, 2794}},
                                                                       {1, 2, {2794, 2159}},
                                                                       {5, 1, {2150, 3542}},  // 9 less than the sheet
                                                                       {5, 2, {3542, 2150}},
                                                                       {11, 1, {1480, 2100}},
                                                                       {11, 2, {2100, 1480}}}) {
        for (const CSize grid : {CSize(1, 1), CSize(1, 2), CSize(2, 2), CSize(2, 3)}) {
            SCOPED_TRACE(std::to_string(form) + " " + std::to_string(direction) + " " + std::to_string(grid.cy));
            CQelPrintJobDocumentData document;
            for (int cell = 0; cell < grid.cx * grid.cy; ++cell) {
                CQelPrintJobQueueData job = Job(1, ("cell" + std::to_string(cell)).c_str());
                CQelPrintJobPageStyle& style = job.GetPageStyle();
                style.SetPrinterDevice(printer);
                style.SetPaperForm(form);
                style.SetPaperDirection(direction);
                style.SetPrintBlock(grid);
                style.SetUnit(2);
                style.SetTopMargin(kMargin);
                style.SetBottomMargin(kMargin);
                style.SetLeftMargin(kMargin);
                style.SetRightMargin(kMargin);
                ASSERT_EQ(job.SaveJobFile(folder.Path("a.job")), 1);
                ASSERT_EQ(document.CheckAndAddJobFile(folder.Path("a.job")), 1);
            }
            ASSERT_EQ(document.PrintOut(), 1);
            const std::string words = WordsOf(printed(++number));
            for (int cell = 0; cell < grid.cx * grid.cy; ++cell) {
                const CPoint place = PlaceOf(words, "cell" + std::to_string(cell));
                const int column = cell / grid.cy, row = cell % grid.cy;
                EXPECT_NEAR(place.x, kMargin + column * ((sheet.cx - 2 * kMargin) / grid.cx), 5) << cell;
                EXPECT_NEAR(place.y, kMargin + row * ((sheet.cy - 2 * kMargin) / grid.cy), 25) << cell;
            }
        }
    }
}

}  // namespace

TEST(PrintDocument, CellsFillAPageByTheDirection) {
    using Places = std::vector<std::tuple<int, int, int>>;
    for (const auto& [direction, places] :
         Cases<int, Places>{{1, {{1, 4, 2}, {2, 4, 13}, {3, 4, 24}, {4, 29, 2}, {5, 29, 13}, {6, 29, 24}}},
                            {2, {{1, 4, 2}, {2, 29, 2}, {3, 4, 13}, {4, 29, 13}, {5, 4, 24}, {6, 29, 24}}},
                            {0, {{6, 4, 2}}}}) {  // all at one place
        Document document(7);
        document.GetPageStyle().SetPrintDirection(direction);
        EXPECT_EQ(document.Drawn(1), places) << direction;
        EXPECT_EQ(document.Drawn(2), Places({{7, 4, 2}}));
        EXPECT_TRUE(document.Drawn(3).empty());
        EXPECT_TRUE(document.Drawn(0).empty());
        EXPECT_EQ(document.Drawn(-1, 1).back(), std::tuple(7, 4, 2)) << "a preview ends no page";
    }
    Document document(2);
    document.GetPageStyle().SetDpi(0);
    document.GetPageStyle().SetPaperSize({70, 40});
    document.GetPageStyle().SetPrintDirection(2);
    EXPECT_EQ(document.Drawn(-1), Places({{1, 4, 2}, {2, 34, 2}})) << "tenths of a millimetre as pixels";
}

TEST(PrintDocument, TakesJobsOfOnePageStyle) {
    const TempFolder folder;
    CQelPrintJobQueueData other = Job(2);
    other.GetPageStyle().SetTopMargin(3);
    ASSERT_EQ(other.SaveJobFile(folder.Path("a.job")), 1);
    CQelPrintJobDocumentData document;
    EXPECT_EQ(document.IsPrintOutBlockExist(), 0);
    EXPECT_EQ(document.CheckAndAddJobFile(Job(1)), 1);
    EXPECT_EQ(document.CheckAndAddJobFile(folder.Path("a.job")), 0);
    EXPECT_EQ(document.CheckAndAddJobFile(folder.Path("none")), 0);
    EXPECT_EQ(document.GetBlockCount(), 1);
    EXPECT_EQ(document.IsPrintOutPageExist(4), 0);
    EXPECT_EQ(document.IsPrintOutPageExist(5), 1);

    CQelPrintJobDocumentData copy(document);
    EXPECT_EQ(copy.Initialize(), 1);
    EXPECT_EQ(copy.GetBlockCount(), 0);
    EXPECT_EQ(copy.CheckAndAddJobFile(folder.Path("a.job")), 1) << "the first one gives the page style";
    EXPECT_EQ(copy.GetPageStyle().GetTopMargin(), 3);
    copy = document;
    EXPECT_TRUE(copy.GetPageStyle() == document.GetPageStyle());
    EXPECT_EQ(copy.IsPrintOutBlockExist(), 1);
}

TEST(PrintDocument, MarginsCountByTheHorizontalResolution) {
    const TempFolder folder;
    CDC dc;
    qel::PageSetup page;
    page.dotsPerInch = {600, 300};
    page.margins = {254, 508, 0, 0};
    ASSERT_TRUE(dc.Attach(qel::CreatePdfDC(folder.Path("a.pdf"), page)));
    CQelPrintJobPageStyle style;
    style.SetTopMargin(100);
    style.SetBottomMargin(200);
    style.SetLeftMargin(300);
    style.SetRightMargin(-400);
    for (const auto& [unit, top, bottom, left, right] :
         Cases<int, int, int, int, int>{{1, 12 - 60, 3508 - 24 - 12, 36 - 60, 4961 + 48 - 36},
                                        {2, 236 - 60, 3508 - 472 - 236, 708 - 60, 4961 + 944 - 708},
                                        {3, 100 - 60, 3508 - 200 - 100, 300 - 60, 4961 + 400 - 300}}) {
        SCOPED_TRACE(unit);
        style.SetUnit(unit);
        EXPECT_EQ(Document::GetPrintMargin(&dc, &style), 1);
        EXPECT_EQ(style.GetPrnTopMargin(), top);
        EXPECT_EQ(style.GetPrnBottomMargin(), bottom);
        EXPECT_EQ(style.GetPrnLeftMargin(), left);
        EXPECT_EQ(style.GetPrnRightMargin(), right);
    }
    style.SetUnit(4);
    EXPECT_EQ(Document::GetPrintMargin(&dc, &style), 0);
    EXPECT_EQ(Document::GetPrintMargin(nullptr, &style), 0);
}

TEST(PrintDocument, ALoopOverPagesGetsItsPageOrFalse) {
    Document document(7);
    Canvas canvas(60, 40);
    CPrintInfo info;
    info.m_nCurPage = 2;
    EXPECT_EQ(document.OnPrint(&canvas.dc, &info), 1);
    EXPECT_EQ(canvas.At(4, 2), COLORREF{7});

    Canvas printer(60, 40), screen(60, 40);
    CPreviewDC preview;
    preview.SetOutputDC(screen.dc);
    preview.SetAttribDC(printer.dc);
    printer.dc.SaveDC();
    EXPECT_EQ(document.PrintOutMain(&preview, 2, 1), 1);
    EXPECT_EQ(screen.At(4, 2), COLORREF{7});
    EXPECT_EQ(printer.dc.SaveDC(), 2) << "what the printer's context keeps is its owner's";
    for (const auto& [grid, unit, given] : Cases<CSize, int, CPrintInfo*>{
             {{2, 3}, 3, nullptr},
             {{2, 0}, 3, &info},
             {{-2, -3}, 3, &info},
             {{2, 3}, 0, &info},
         }) {
        document.GetPageStyle().SetPrintBlock(grid);
        document.GetPageStyle().SetUnit(unit);
        try {
            document.OnPrint(&canvas.dc, given);
            ADD_FAILURE() << "no failure";
        } catch (bool answer) {
            EXPECT_FALSE(answer);
        }
    }
}

TEST(PrintDocument, IsPrintedPageByPage) {
    const TempFolder folder;
    const EnvironmentScope server("CUPS_SERVER", folder.Posix("no.sock").c_str());
    const EnvironmentScope target("QELLIB10_PDF_DIR", folder.Posix().c_str());
    CQelPrintJobDocumentData document;
    for (const char* text : {"first", "second", "third", "fourth", "fifth", "sixth", "seventh"}) {
        CQelPrintJobQueueData job = Job(1, text);
        job.GetPageStyle().SetPrinterDevice("PDF");
        job.GetPageStyle().SetUnit(2);
        job.GetPageStyle().SetLeftMargin(200);
        document.CheckAndAddJobFile(job);
    }
    EXPECT_EQ(document.PrintOut(), 1);
    EXPECT_EQ(document.GetPageStyle().GetDpi(), 600) << "that of the printer";
    const std::string pdf = folder.Posix("Titration.pdf").string();
    EXPECT_NE(OutputOf("LC_ALL=C pdfinfo " + pdf).find("Pages:           2"), std::string::npos);
    const std::string words = WordsOf(pdf);
    EXPECT_NEAR(PlaceOf(words, "seventh").x, 200, 5);
    EXPECT_NEAR(PlaceOf(words, "seventh").y, 2, 25);
    EXPECT_GT(words.find("<page", words.find(">sixth<")), words.find(">sixth<"));
    EXPECT_LT(words.rfind("<page"), words.find(">seventh<"));

    CQelPrintJobDocumentData empty;
    empty.GetPageStyle().SetPrinterDevice("PDF");
    empty.GetPageStyle().SetStyleName("empty");
    EXPECT_EQ(empty.PrintOut(), 1);
    EXPECT_NE(OutputOf("LC_ALL=C pdfinfo " + folder.Posix("empty.pdf").string()).find("Pages:           1"),
              std::string::npos);
    empty.GetPageStyle().SetPrinterDevice("none");
    EXPECT_EQ(empty.PrintOut(), 0);
    document.GetPageStyle().SetPrintBlock({0, 1});
    EXPECT_EQ(document.PrintOut(), 0);
    EXPECT_EQ(folder.Count(), 2) << "nothing of a document that failed";
}

TEST(PrintDocument, JobFilesOfEveryPaperHaveTheirCellsSideBySide) {
    const TempFolder folder;
    {
        const EnvironmentScope server("CUPS_SERVER", folder.Posix("no.sock").c_str());
        const EnvironmentScope target("QELLIB10_PDF_DIR", folder.Posix().c_str());
        CheckCellsOnAllPapers("PDF", [&](int number) {
            const std::string suffix = number == 1 ? "" : " (" + std::to_string(number) + ")";
            return folder.Posix("Titration" + suffix + ".pdf").string();
        });
    }
    if (!PrintSystem::IsInstalled()) GTEST_SKIP() << PrintSystem::kNeeds;
    const PrintSystem system;
    ASSERT_TRUE(system);
    InOwnThread([&] { CheckCellsOnAllPapers("lab", [&](int number) { return system.Printed(number); }); });
}

TEST(PrintDocument, BlocksInCellsWithoutASizeAreRefused) {
    struct Case {
        int blocks;
        CSize paper;
        int form;
        CSize grid;
        int direction, expected;
    };
    Canvas canvas(60, 40);
    // clang-format off
    for (const Case& c : {
             Case{2, {60, 40}, 9, {2, 1}, 1, 1},
             {2, {11, 40}, 9, {2, 1}, 1, 0},
             {2, {11, 40}, 9, {1, 2}, 1, 1},
             {2, {60, 8}, 9, {1, 2}, 1, 0},
             {2, {60, 8}, 9, {1, 1}, 1, 1},
             {2, {0, 0}, 9, {2, 3}, 1, 1},
             {2, {0, 0}, 1, {2, 1}, 1, 0},
             {2, {0, 0}, 1, {1, 1}, 1, 1},
             {1, {11, 8}, 9, {2, 2}, 1, 1},  // the cell at the corner of the page
             Case{1, {11, 8}, 9, {2, 2}, 2, 1},
             {0, {11, 8}, 9, {2, 2}, 1, 1},
             {2, {11, 40}, 9, {2, 2}, 1, 1},  // down the column, none in the second one
             Case{2, {11, 40}, 9, {2, 2}, 2, 0},
             {2, {60, 8}, 9, {2, 2}, 1, 0},
             {2, {60, 8}, 9, {2, 2}, 2, 1},
             {3, {11, 40}, 9, {2, 2}, 1, 0},
             {3, {60, 8}, 9, {2, 2}, 2, 0},
             {5, {11, 8}, 9, {2, 2}, 0, 1},  // all at one place on purpose
             Case{5, {11, 8}, 9, {2, 2}, 3, 1},
         }) {
        // clang-format on
        Document document(c.blocks);
        CQelPrintJobPageStyle& style = document.GetPageStyle();
        if (c.blocks == 0) style = Job(0).GetPageStyle();
        style.SetPaperSize(c.paper);
        style.SetPaperForm(c.form);
        style.SetPrintBlock(c.grid);
        style.SetPrintDirection(c.direction);
        EXPECT_EQ(document.PrintOutMain(&canvas.dc, 1, 0), c.expected)
            << c.blocks << " blocks of " << c.paper.cx << " " << c.paper.cy << ", direction " << c.direction;
    }
}

// A page style whose selected context is one of the printer PDF.
class SelectedPrinter : public testing::Test, qel::PrintDialogProvider {
protected:
    SelectedPrinter() { qel::SetPrintDialogProvider(this); }
    ~SelectedPrinter() override { qel::SetPrintDialogProvider(nullptr); }

    std::optional<qel::PrintChoice> Choose(const qel::PrintDialogRequest&) override {
        return qel::PrintChoice{"PDF", std::nullopt};
    }
    std::string Described(const char* file) const {
        return OutputOf("LC_ALL=C pdfinfo '" + folder.Posix(file).string() +
                        "' | grep -E '^(Title|Author|Pages)' | tr -s ' '");
    }

    TempFolder folder;
    EnvironmentScope server{"CUPS_SERVER", folder.Posix("no.sock").c_str()};
    EnvironmentScope target{"QELLIB10_PDF_DIR", folder.Posix().c_str()};
};

TEST_F(SelectedPrinter, IsUsableAgainWhenTheMarginsAreCorrected) {
    Document document(4);
    CQelPrintJobPageStyle& style = document.GetPageStyle();
    ASSERT_EQ(style.SelectPrinter(), 1);
    style.SetLeftMargin(3000);
    EXPECT_EQ(document.PrintOut(), 0);
    style.SetLeftMargin(4);
    EXPECT_EQ(document.PrintOut(), 1);
    EXPECT_EQ(Described("Titration.pdf"), "Title: Titration\nPages: 1\n");
    EXPECT_EQ(folder.Count(), 1);
}

TEST_F(SelectedPrinter, EachDocumentSaysWhatItIsItself) {
    Document document(1), other(1);
    CQelPrintJobPageStyle& style = document.GetPageStyle();
    style.SetPdfInfo(qel::PdfInfo{"Assay", "A. Analyst", "", COleDateTime(2025, 11, 25, 18, 0, 0)});
    ASSERT_EQ(style.SelectPrinter(), 1);
    EXPECT_EQ(document.PrintOut(), 1);
    EXPECT_EQ(Described("Titration.pdf"), "Title: Assay\nAuthor: A. Analyst\nPages: 1\n");
    EXPECT_NE(OutputOf("pdfinfo -rawdates " + folder.Posix("Titration.pdf").string()).find("D:20251125180000\n"),
              std::string::npos);
    document.SetPdfInfo(qel::PdfInfo{"Blank", "", "", std::nullopt});
    EXPECT_EQ(document.PrintOut(), 1);
    EXPECT_EQ(Described("Titration (2).pdf"), "Title: Blank\nPages: 1\n");
    document.SetPdfInfo(std::nullopt);
    style.SetPdfInfo(std::nullopt);
    EXPECT_EQ(document.PrintOut(), 1);
    EXPECT_EQ(Described("Titration (3).pdf"), "Title: Titration\nPages: 1\n") << "nothing of the ones before";

    style.SetPdfInfo(qel::PdfInfo{"", "A. Analyst", "", std::nullopt});
    EXPECT_EQ(document.PrintOut(), 1);
    EXPECT_EQ(Described("Titration (4).pdf"), "Title: Titration\nAuthor: A. Analyst\nPages: 1\n")
        << "set after the choice";
    qel::SetPdfInfo(style.GetSelectedPrinterDC(), qel::PdfInfo{"", "The lab", "", std::nullopt});
    EXPECT_EQ(document.PrintOut(), 1);
    ASSERT_EQ(other.MovePrinterDC(style), 1);
    EXPECT_EQ(other.PrintOut(), 1);
    EXPECT_EQ(Described("Titration (5).pdf"), "Title: Titration\nAuthor: A. Analyst\nPages: 1\n");
    EXPECT_EQ(Described("Titration (6).pdf"), "Title: Titration\nAuthor: The lab\nPages: 1\n") << "the context's own";
}
