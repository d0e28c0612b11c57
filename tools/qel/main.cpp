// qel: calculates, seals, checks, lists, shows and prints what the library's files hold. See qel.1.
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tool.h"

namespace {

using tool::Complain;
using tool::Status;

void AddAll(CLI::App& app, Status& status) {
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", "qel " QEL_VERSION);
    app.add_option_function<UINT>(
           "--codepage", [](const UINT& page) { qel::SetCodePage(page); },
           "Code page of texts in files (else $QELLIB10_CODEPAGE, else 932)")
        ->check(CLI::IsMember({qel::kCodePageJapanese, qel::kCodePageLatin1, qel::kCodePageUtf8}))
        ->type_name("");
    for (const auto& add : {tool::AddCalc, tool::AddSeal, tool::AddVerify, tool::AddCabinet, tool::AddXml, tool::AddJob,
                            tool::AddArchive, tool::AddProfile, tool::AddPlot})
        add(app, status);
}

Status Run(int argc, char** argv) {
    Status status = tool::kGood;
    CLI::App app("Works with the files of QELLIB10.", "qel");
    try {
        AddAll(app, status);
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {  // --help, --version
        app.exit(success);
    } catch (const CLI::Error& error) {
        return Complain(tool::Shown(error.what()) + "; see qel --help", tool::kUsage);
    } catch (const tool::Failure& failure) {
        return Complain(failure.what(), failure.ExitStatus());
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {  // NOLINT(bugprone-exception-escape): what nobody expects ends the program
    const Status status = Run(argc, argv);
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    return Complain(std::string("standard output: ") + std::strerror(errno), tool::kFailed);
}
