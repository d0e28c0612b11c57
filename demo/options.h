#pragma once

#include <optional>
#include <string>

namespace titration {

/// The options of the command line.
///
///     titration --data FILE --out FOLDER [--settings FILE] [--table N] [--comment TEXT] [--printer NAME]
///     titration --take-out N --out FOLDER
///     titration --print COUNT --out FOLDER
///     titration --add-user NAME --full-name TEXT --new-password TEXT --role ROLE --out FOLDER
///     titration --sign MEANING --version N --out FOLDER
///     titration --signed-report N --out FOLDER
///     titration --export --out FOLDER
///     titration --list --out FOLDER
///     titration --verify --out FOLDER
///     titration --attack --out FOLDER
///
/// The first computes a result and registers it as a new version, the second takes version N out again, the third
/// prints the reports on the latest versions, three to a page. Then: adds a "reviewer" or an "approver"; signs version
/// N as "reviewed", "approved" or "rejected"; prints the report on version N with its signatures; exports the list of
/// versions. The last three need no logon: they list the files that were made, check each of them again, and attack
/// copies of them. Without settings the method of the previous result is used again. If the
/// data file has several tables with the columns, N says which one. A report is laid out for the paper and the
/// resolution of a printer, so the printer is given with the data: one that CUPS knows, or "PDF", which writes files
/// into the output folder (or into $QELLIB10_PDF_DIR).
///
/// The others take --user NAME and --password TEXT; the defaults are those of the demonstration. A real application
/// asks for them in a dialog, where no list of running programs shows them.
struct Options {
    std::string data, settings, out;
    std::string comment, printer = "PDF";
    std::string addUser, fullName, newPassword, role;
    std::string sign;  // as what
    std::string user = "demo", password = "titration";
    int table = 0;    // 0: the only one
    int takeOut = 0;  // the version, 0: none
    int print = 0;    // number of reports
    int version = 0;  // to sign
    int signedReport = 0;
    bool list = false, verify = false, attack = false, isExport = false;
};

/// @throws Failure
Options ParseOptions(int argc, char** argv);

}  // namespace titration
