#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>

#include "qellib10/platform/printing/document_name.h"
#include "qellib10/platform/printing/print_dialog.h"
#include "qellib10/platform/printing/print_spooler.h"
#include "qellib10/platform/storage/descriptor.h"

#include "../support/output_of.h"
#include "../support/print_system.h"
#include "../support/test.h"

namespace {

// One page with one word. @return whether the document was taken
bool Print(HDC handle, const CString& name = "Report", const char* word = "hello") {
    CDC dc;
    return dc.Attach(handle) && dc.StartDoc(name) > 0 && dc.StartPage() > 0 && dc.TextOut(0, 0, word) &&
           dc.EndPage() > 0 && dc.EndDoc() > 0;
}

HDC Printer(const char* name, const DEVMODE* mode = nullptr) { return CreateDC(nullptr, name, nullptr, mode); }

std::string Names(DWORD flags) {
    DWORD needed = 0, count = 0;
    EnumPrinters(flags, nullptr, 1, nullptr, 0, &needed, &count);
    std::vector<BYTE> buffer(needed);
    EXPECT_TRUE(EnumPrinters(flags, nullptr, 1, buffer.data(), needed, &needed, &count));
    std::string names;
    for (DWORD i = 0; i < count; ++i) {
        PRINTER_INFO_1 info;
        std::memcpy(&info, buffer.data() + i * sizeof info, sizeof info);
        names.append(info.pName).append(" ");
    }
    return names;
}

struct Cups : testing::Test {
    void SetUp() override {
        if (!PrintSystem::IsInstalled()) GTEST_SKIP() << PrintSystem::kNeeds;
        system.emplace();
        ASSERT_TRUE(*system);
    }

    std::optional<PrintSystem> system;
};

}  // namespace

TEST_F(Cups, PrintersAreListedAndDescribed) {
    ASSERT_TRUE(
        system->Run({"/usr/sbin/lpadmin", "-p", "PDF", "-E", "-v", "ipp://localhost:9/ipp/print", "-D", "not ours"}));
    ASSERT_TRUE(system->Run({"/usr/bin/lpoptions", "-p", "lab/large", "-o", "media=iso_a3_297x420mm"}));
    ASSERT_TRUE(system->Run({"/usr/sbin/lpadmin", "-d", "lab"}));

    InOwnThread([] {
        EXPECT_EQ(Names(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS), "PDF lab lab/large PDF@cups ");
        EXPECT_EQ(Names(PRINTER_ENUM_CONNECTIONS), "");
        const Cases<CString, CString, int, int> cases = {{"PDF", "PDF", 9, 600},
                                                         {"lab", "Printer - IPP Everywhere", 9, 300},
                                                         {"lab/large", "Printer - IPP Everywhere", 8, 300}};
        for (const auto& [name, driver, form, dots] : cases) {
            HANDLE printer = nullptr;
            DWORD needed = 0;
            ASSERT_TRUE(OpenPrinter(name, &printer, nullptr));
            EXPECT_FALSE(GetPrinter(printer, 2, nullptr, 0, &needed));
            std::vector<BYTE> buffer(needed + 1);
            EXPECT_FALSE(GetPrinter(printer, 2, buffer.data() + 1, needed, &needed)) << "not aligned";
            EXPECT_FALSE(GetPrinter(printer, 3, buffer.data(), needed, &needed));
            EXPECT_FALSE(GetPrinter(printer, 2, buffer.data(), 8, &needed));
            EXPECT_EQ(std::ranges::count(buffer, 0), needed + 1) << "nothing is written";
            ASSERT_TRUE(GetPrinter(printer, 2, buffer.data(), needed, &needed));
            EXPECT_TRUE(ClosePrinter(printer));
            EXPECT_FALSE(ClosePrinter(printer));
            PRINTER_INFO_2 info;
            std::memcpy(&info, buffer.data(), sizeof info);
            EXPECT_EQ(name, info.pPrinterName) << name;
            EXPECT_EQ(driver, info.pDriverName) << name;
            EXPECT_EQ(info.pDevMode->dmPaperSize, form) << name;
            EXPECT_EQ(info.pDevMode->dmYResolution, dots);
            EXPECT_EQ(std::string(info.pPortName).starts_with("ipp://localhost:"), dots == 300);
        }
        HANDLE printer = &printer;
        EXPECT_FALSE(OpenPrinter("nobody", &printer, nullptr));
        EXPECT_EQ(printer, nullptr);
        CPrintDialog dialog(0);
        EXPECT_EQ(dialog.DoModal(), IDCANCEL) << "nobody shows it";
        EXPECT_TRUE(dialog.GetDefaults());
        EXPECT_EQ(dialog.GetDeviceName(), "lab");
    });
}

TEST_F(Cups, PagesArriveAsTheyWereLaidOut) {
    // Form, direction, width and length of the mode; at 300 dots per inch the sheet, its drawable area and where that
    // begins; the PDF's page, where the word is on it, and the paper.
    using S = std::string;
    const Cases<int, int, CSize, CSize, CSize, CSize, S, S, S> cases = {
        {9, 1, {}, {2480, 3508}, {2355, 3346}, {50, 62}, "595.276 x 841.89", "12[.].*1[45][.]", "x-dimension=21000"},
        {9, 2, {}, {3508, 2480}, {3346, 2355}, {62, 75}, "841.89 x 595.276", "14[.].*1[789][.]", "x-dimension=21000"},
        {13, 1, {}, {2150, 3035}, {2025, 2873}, {50, 62}, "515.906 x 728.504", "12[.].*1[45][.]", "x-dimension=18200"},
        {9, 1, {2970, 4200}, {3508, 4961}, {3383, 4799}, {50, 62}, "841.89 x 1190.55", "12[.]", "x-dimension=29700"},
        {7, 1, {}, {2480, 3508}, {2355, 3346}, {50, 62}, "595.276 x 841.89", "12[.]", "x-dimension=21000"},
    };
    InOwnThread([&] {
        int number = 0;
        for (const auto& [form, direction, given, sheet, drawable, corner, page, place, medium] : cases) {
            SCOPED_TRACE(++number);
            DEVMODE mode{};
            mode.dmFields = DM_PAPERSIZE | DM_ORIENTATION | DM_PAPERWIDTH | DM_PAPERLENGTH | DM_COPIES | DM_COLOR;
            mode.dmPaperSize = static_cast<short>(form);
            mode.dmOrientation = static_cast<short>(direction);
            mode.dmPaperWidth = static_cast<short>(given.cx);
            mode.dmPaperLength = static_cast<short>(given.cy);
            mode.dmCopies = static_cast<short>(20 + number);
            mode.dmColor = DMCOLOR_MONOCHROME;
            const HDC dc = Printer("lab", &mode);
            const std::size_t before = system->PrinterLog().size();
            EXPECT_TRUE(CSize(GetDeviceCaps(dc, PHYSICALWIDTH), GetDeviceCaps(dc, PHYSICALHEIGHT)) == sheet);
            EXPECT_TRUE(CSize(GetDeviceCaps(dc, HORZRES), GetDeviceCaps(dc, VERTRES)) == drawable);
            EXPECT_TRUE(CSize(GetDeviceCaps(dc, PHYSICALOFFSETX), GetDeviceCaps(dc, PHYSICALOFFSETY)) == corner);
            ASSERT_TRUE(Print(dc, "\x93\x48 a/b", "hello"));
            const std::string pdf = "'" + system->Printed(number) + "'";
            EXPECT_NE(OutputOf("pdfinfo " + pdf + " | tr -s ' '").find("Page size: " + page + " pts"),
                      std::string::npos);
            EXPECT_EQ(OutputOf("pdftotext -bbox " + pdf + " - | grep -c 'word xMin=\"" + place + ".*hello'"), "1\n");
            const std::string job = system->PrinterLog().substr(before);
            EXPECT_NE(job.find("job-name (nameWithoutLanguage) 滴 a/b"), std::string::npos);
            EXPECT_NE(job.find("copies (integer) " + std::to_string(20 + number)), std::string::npos);
            EXPECT_NE(job.find("media-size={" + medium), std::string::npos) << job;
            EXPECT_NE(job.find("print-color-mode (keyword) monochrome"), std::string::npos);
        }
    });
}

TEST_F(Cups, OnlyWholeDocumentsAreSent) {
    ASSERT_TRUE(
        system->Run({"/usr/bin/lpoptions", "-p", "lab/back", "-o", "sides=two-sided-long-edge", "-o", "copies=9"}));
    InOwnThread([&] {
        EXPECT_EQ(Printer("nobody"), nullptr);
        CDC dc;
        ASSERT_TRUE(dc.Attach(Printer("lab")));
        const auto isStarted = [&](const char* name) { return dc.StartDoc(name) > 0; };
        EXPECT_EQ(Line({isStarted("aborted"), dc.StartPage() > 0, dc.EndPage() > 0, dc.AbortDoc() > 0}), "1 1 1 1");
        EXPECT_EQ(Line({isStarted("empty"), dc.EndDoc() > 0}), "1 1");
        EXPECT_EQ(Line({isStarted("deleted"), dc.StartPage() > 0, dc.EndPage() > 0, dc.DeleteDC()}), "1 1 1 1");
        const HDC refused = Printer("lab");
        ASSERT_TRUE(system->Run({"/usr/sbin/cupsreject", "lab"}));
        EXPECT_FALSE(Print(refused));
        ASSERT_TRUE(system->Run({"/usr/sbin/cupsaccept", "lab"}));
        const HDC late = Printer("lab");
        EXPECT_TRUE(Print(Printer("lab/back"), "whole"));
        EXPECT_NE(system->Printed(1), "") << "the first that the printer was sent";
        EXPECT_NE(system->PrinterLog().find("sides (keyword) two-sided-long-edge"), std::string::npos);
        EXPECT_EQ(system->PrinterLog().find("copies (integer) 9"), std::string::npos);
        ASSERT_TRUE(system->Run({"/usr/sbin/lpadmin", "-x", "lab"}));
        EXPECT_FALSE(Print(late)) << "the queue is gone";
    });
}

TEST(Printing, ServerThatIsMissingOrMuteIsGivenUp) {
    const TempFolder folder;
    const EnvironmentScope server("CUPS_SERVER", folder.Posix("socket").c_str());
    const auto seconds = [] {
        const auto start = std::chrono::steady_clock::now();
        InOwnThread([] { EXPECT_EQ(Printer("lab"), nullptr); });
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    EXPECT_LT(seconds(), 1);
    const qel::Descriptor mute(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, folder.Posix("socket").c_str(), sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(mute.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(mute.Get(), 10), 0);
    EXPECT_LT(seconds(), 5);
}

TEST(PdfPrinter, WritesEachDocumentUnderANameOfItsOwn) {
    const TempFolder folder;
    const EnvironmentScope target("QELLIB10_PDF_DIR", folder.Posix("new/out").c_str());
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(Print(Printer("PDF"), "\x93\x48 1/2"));
    EXPECT_EQ(OutputOf("ls -A " + folder.Posix("new/out").native()), "滴 1_2 (2).pdf\n滴 1_2 (3).pdf\n滴 1_2.pdf\n");
    EXPECT_EQ(OutputOf("pdftotext '" + folder.Posix("new/out/滴 1_2 (3).pdf").native() + "' - | head -1"), "hello\n");

    folder.Write("file", "");
    for (const std::string& bad : {std::string("/proc/none"), folder.Posix("file").native()}) {
        const EnvironmentScope other("QELLIB10_PDF_DIR", bad.c_str());
        CDC dc;
        EXPECT_TRUE(dc.Attach(Printer("PDF")));
        EXPECT_LT(dc.StartDoc("x"), 1) << bad;
    }
    std::filesystem::permissions(folder.Posix("new/out"), std::filesystem::perms(0555));
    std::filesystem::permissions(folder.Posix(), std::filesystem::perms(0755));
    EXPECT_EQ(InChild([] {
                  if (::geteuid() == 0 && ::seteuid(65534) != 0) return 2;  // root may write everywhere
                  return Print(Printer("PDF"), "x") ? 1 : 0;
              }),
              0);
    const EnvironmentScope none("QELLIB10_PDF_DIR", nullptr), config("XDG_CONFIG_HOME", folder.Posix().c_str());
    folder.Write("user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"" + folder.Posix("Papers").native() + "\"\n");
    EXPECT_TRUE(Print(Printer("PDF"), "x"));
    EXPECT_TRUE(folder.Has("Papers/x.pdf"));
}

TEST(PdfPrinter, RemovesWhatKilledPrintsHaveLeftAndNoLivingOnes) {
    const TempFolder folder;
    const EnvironmentScope target("QELLIB10_PDF_DIR", folder.Posix().c_str());
    // The signal comes in the middle of the document.
    const auto printUntil = [](void (*signalled)(int)) {
        return [=] {
            const rlimit little = {100, 100}, none = {0, 0};
            ::setrlimit(RLIMIT_CORE, &none);
            ::setrlimit(RLIMIT_FSIZE, &little);
            std::signal(SIGXFSZ, signalled);
            return Print(Printer("PDF"), "part") ? 0 : 1;
        };
    };
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(InChild(printUntil(SIG_DFL)), -1);
        EXPECT_EQ(folder.Count(), 1) << "one leftover, that of the last";
    }
    ChildProcess living(printUntil([](int) { ::raise(SIGSTOP); }));
    int status = 0;
    ASSERT_EQ(::waitpid(living.Id(), &status, WUNTRACED), living.Id());
    ASSERT_TRUE(WIFSTOPPED(status));
    ASSERT_TRUE(Print(Printer("PDF"), "a"));
    EXPECT_EQ(folder.Count(), 2) << "a.pdf, and what is being printed";
    living.Kill();
    ASSERT_TRUE(Print(Printer("PDF"), "b"));
    EXPECT_EQ(OutputOf("ls -A " + folder.Posix().native()), "a.pdf\nb.pdf\n");
}

TEST(PdfPrinter, DatesEachDocumentWhenItIsStarted) {
    const TempFolder folder;
    const EnvironmentScope target("QELLIB10_PDF_DIR", folder.Posix().c_str()), none("SOURCE_DATE_EPOCH", nullptr);
    const std::time_t before = std::time(nullptr);
    ASSERT_TRUE(Print(Printer("PDF"), "a"));
    const std::time_t after = std::time(nullptr);
    const std::string found = OutputOf("date -u +%s -d \"$(LC_ALL=C TZ=UTC pdfinfo " + folder.Posix("a.pdf").string() +
                                       " | sed -n 's/CreationDate: *//p')\"");
    EXPECT_GE(std::atoll(found.c_str()), before);
    EXPECT_LE(std::atoll(found.c_str()), after);
}

TEST(PdfPrinter, IsChosenByNameInAContextOrADialog) {
    CDC dc;
    EXPECT_FALSE(dc.CreateDC(nullptr, "nobody", nullptr, nullptr));
    EXPECT_TRUE(dc.CreateDC("PDF", "PDF", nullptr, nullptr));
    EXPECT_FALSE(dc.CreateDC(nullptr, "PDF", nullptr, nullptr)) << "it has one";
    CPrintDialog dialog(0);
    EXPECT_EQ(dialog.GetPrinterDC(), nullptr);
    ASSERT_TRUE(dialog.SelectPrinter("PDF"));
    CDC first, second;
    ASSERT_TRUE(first.Attach(dialog.GetPrinterDC()));
    EXPECT_EQ(dialog.GetPrinterDC(), first.GetSafeHdc());
    ASSERT_TRUE(dialog.SelectPrinter("PDF"));
    EXPECT_TRUE(second.Attach(dialog.GetPrinterDC()));
    EXPECT_NE(first.GetSafeHdc(), second.GetSafeHdc());
}

TEST(PdfPrinter, MakesFileNamesOfDocumentNames) {
    const std::string tooLong(198, 'a');
    const Cases<std::string, std::string> cases = {{"", "document"},
                                                   {" .. ", "document"},
                                                   {"../etc", "_etc"},
                                                   {"a\\b:c*d?e\"f<g>h|i\x7F\n", "a_b_c_d_e_f_g_h_i__"},
                                                   {". a. ", "a"},
                                                   {tooLong + "滴", tooLong},
                                                   {tooLong + "é", tooLong + "é"},
                                                   {tooLong + " .x", tooLong}};
    for (const auto& [name, expected] : cases) EXPECT_EQ(qel::FileNameOf(name), expected);
}

TEST(SetPaper, NamesTheFormOrTheSize) {
    const Cases<SIZE, int, CSize> cases = {{{20950, 29790}, 9, {}},
                                           {{21590, 27940}, 1, {}},
                                           {{12500, 17600}, 256, {1250, 1760}},
                                           {{10000, 90000000}, 256, {1000, 32767}}};
    for (const auto& [sheet, form, size] : cases) {
        DEVMODE mode{};
        mode.dmPaperWidth = mode.dmPaperLength = 5;
        qel::SetPaper(mode, sheet);
        EXPECT_EQ(mode.dmPaperSize, form);
        EXPECT_TRUE(CSize(mode.dmPaperWidth, mode.dmPaperLength) == size) << form;
    }
}
