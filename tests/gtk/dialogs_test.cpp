#include "qellib10/gtk/dialogs.h"

#include <gtest/gtest.h>

#include <optional>
#include <thread>

#include "../support/cases.h"
#include "../support/temp_folder.h"
#include "qellib10/file/q_file.h"
#include "qellib10/gtk/person_dialog.h"
#include "qellib10/gtk/window_picture.h"
#include "qellib10/platform/printing/print_dialog.h"
#include "screen.h"

namespace {

class Dialogs : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(qel::UseGtkDialogs());
        m_window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        m_label = gtk_label_new("application");
        gtk_container_add(GTK_CONTAINER(m_window), m_label);
        gtk_widget_show_all(m_window);
    }
    void TearDown() override { gtk_widget_destroy(m_window); }

    GtkWidget* m_window = nullptr;
    GtkWidget* m_label = nullptr;
};

DEVMODE Mode(int form, int orientation, const CSize& size = {}, int copies = 1, int duplex = 0) {
    DEVMODE mode{};
    mode.dmFields = DM_PAPERSIZE | DM_ORIENTATION | DM_COPIES | (size.cx > 0 ? DM_PAPERWIDTH | DM_PAPERLENGTH : 0U) |
                    (duplex != 0 ? DWORD{DM_DUPLEX} : 0U);
    mode.dmPaperSize = static_cast<short>(form);
    mode.dmOrientation = static_cast<short>(orientation);
    mode.dmPaperWidth = static_cast<short>(size.cx);
    mode.dmPaperLength = static_cast<short>(size.cy);
    mode.dmCopies = static_cast<short>(copies);
    mode.dmDuplex = static_cast<short>(duplex);
    return mode;
}

void ExpectSame(const DEVMODE& mode, const DEVMODE& expected) {
    EXPECT_EQ(mode.dmPaperSize, expected.dmPaperSize);
    EXPECT_EQ(mode.dmOrientation, expected.dmOrientation);
    EXPECT_TRUE(CSize(mode.dmPaperWidth, mode.dmPaperLength) == CSize(expected.dmPaperWidth, expected.dmPaperLength));
    EXPECT_EQ(mode.dmCopies, expected.dmCopies);
    EXPECT_EQ(mode.dmDuplex, expected.dmDuplex);
}

// Says OK as soon as a printer is selected.
int Agree(GtkDialog* dialog) {
    GtkPrinter* const printer = gtk_print_unix_dialog_get_selected_printer(GTK_PRINT_UNIX_DIALOG(dialog));
    return printer != nullptr ? GTK_RESPONSE_OK : 0;
}

qel::PrintDialogProvider* Provider() {
    qel::PrintDialogProvider* const provider = qel::SetPrintDialogProvider(nullptr);
    qel::SetPrintDialogProvider(provider);
    return provider;
}

}  // namespace

TEST_F(Dialogs, PrinterIsChosen) {
    const TempFolder folder;
    folder.Write("output.pdf", "what the dialog would write to by itself, so it would ask");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Posix());
    CPrintDialog dialog(0, PD_ALLPAGES, m_label);
    {
        const User user("print_dialog", [this](GtkDialog* asked) {
            EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(asked)), GTK_WINDOW(m_window));
            return Agree(asked);
        });
        EXPECT_EQ(dialog.DoModal(), IDOK);
    }
    std::filesystem::current_path(before);
    EXPECT_EQ(dialog.GetDeviceName(), "PDF") << "the default one, as long as there is no other";
    const User user("print_cancelled", [](GtkDialog*) { return GTK_RESPONSE_CANCEL; });
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
}

TEST_F(Dialogs, PaperAndOrientationAreShownAndReturned) {
    const Cases<DEVMODE, DEVMODE> cases{
        {Mode(9, 1), Mode(9, 1)},
        {Mode(8, 2, {}, 3), Mode(8, 2)},  // one file of a document is enough
        {Mode(1, 2, {2159, 2794}), Mode(1, 2)},
        {Mode(256, 2, {1000, 1500}), Mode(256, 2, {1000, 1500})},
        {Mode(256, 1, {1500, 1000}), Mode(256, 2, {1000, 1500})},  // the same page
        {Mode(4, 1), Mode(3, 2)},                                  // a ledger lying on its side
    };
    for (const auto& [asked, expected] : cases) {
        SCOPED_TRACE(asked.dmPaperSize);
        const User user("print_mode_" + std::to_string(asked.dmPaperSize), Agree);
        const auto choice = Provider()->Choose({m_label, 0, "PDF", asked});
        ASSERT_TRUE(choice);
        ASSERT_TRUE(choice->mode);
        EXPECT_EQ(choice->device, "PDF");
        ExpectSame(*choice->mode, expected);
    }
}

TEST_F(Dialogs, WithoutAPrinterOrInAnotherThreadTheyAreCancelled) {
    {
        const User user("print_nobody", [](GtkDialog*) { return GTK_RESPONSE_OK; });
        EXPECT_FALSE(Provider()->Choose({m_label, 0, "nobody", std::nullopt}));
    }
    std::thread([] {
        CString folder;
        EXPECT_EQ(CPrintDialog(0).DoModal(), IDCANCEL);
        EXPECT_EQ(CQFile::SelectFolderDialog(folder, "Where?", nullptr), 0);
    }).join();
}

TEST_F(Dialogs, FolderIsChosen) {
    const TempFolder folder;
    std::filesystem::create_directories(folder.Posix("滴/results"));
    const std::string inner = folder.Posix("滴/results").string();
    const auto current = [](GtkDialog* dialog) {
        const std::unique_ptr<char, decltype(&g_free)> path(
            gtk_file_chooser_get_current_folder(GTK_FILE_CHOOSER(dialog)), g_free);
        return std::string(path != nullptr ? path.get() : "");
    };
    CString chosen = folder.Path("滴");
    {
        const User user("folder_dialog", [&](GtkDialog* dialog) {
            if (current(dialog) == inner) return int{GTK_RESPONSE_ACCEPT};
            if (current(dialog).empty()) return 0;  // still being read
            EXPECT_EQ(current(dialog), folder.Posix("滴").string()) << "where it begins";
            EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(dialog)), GTK_WINDOW(m_window));
            EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(dialog)), "滴: where?");
            gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog), inner.c_str());
            return 0;
        });
        EXPECT_EQ(CQFile::SelectFolderDialog(chosen, "\x93\x48: where?", m_label), 1);
    }
    EXPECT_EQ(chosen, folder.Path("滴/results"));
    for (const char* start : {"\\none", "", ":*?"}) {
        CString before(start);
        const User user("folder_cancelled", [](GtkDialog*) { return GTK_RESPONSE_CANCEL; });
        EXPECT_EQ(CQFile::SelectFolderDialog(before, "", nullptr), 0);
        EXPECT_EQ(before, start);
    }
}

TEST_F(Dialogs, NameAndPasswordAreAskedFor) {
    const auto entry = [](GtkDialog* dialog, bool isPassword) {
        return GTK_ENTRY(Find(GTK_WIDGET(dialog), [&](GtkWidget* each) {
            return GTK_IS_ENTRY(each) && gtk_entry_get_visibility(GTK_ENTRY(each)) == (isPassword ? FALSE : TRUE);
        }));
    };
    {
        const User user("person", [&](GtkDialog* dialog) {
            GtkWidget* const ok = gtk_dialog_get_widget_for_response(dialog, GTK_RESPONSE_OK);
            EXPECT_FALSE(gtk_widget_get_sensitive(ok)) << "there is no name yet";
            gtk_entry_set_text(entry(dialog, false), "滴");
            gtk_entry_set_text(entry(dialog, true), "violet");
            return gtk_widget_get_sensitive(ok) ? GTK_RESPONSE_OK : GTK_RESPONSE_CANCEL;
        });
        const auto person = qel::AskPerson(m_label, "Sign");
        ASSERT_TRUE(person);
        EXPECT_EQ(person->name + ' ' + person->password, "滴 violet");
    }
    const User user("person_known", [&](GtkDialog* dialog) {
        EXPECT_STREQ(gtk_entry_get_text(entry(dialog, false)), "mori");
        EXPECT_FALSE(gtk_widget_get_sensitive(GTK_WIDGET(entry(dialog, false))));
        return GTK_RESPONSE_CANCEL;
    });
    EXPECT_FALSE(qel::AskPerson(m_label, "Sign", "mori"));
    EXPECT_FALSE(qel::SaveWindowPicture(gtk_window_new(GTK_WINDOW_TOPLEVEL), "never.png")) << "not shown";
}
