// qel: calculates, seals, checks, lists, shows and prints the contents of the library's files. See qel.1.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "tool.h"

namespace {

using tool::Complain;
using tool::Status;

// Only stored values, and the names of settings, may be empty.
void RefuseEmpty(CLI::App& app) {
    constexpr std::string_view kMayBeEmpty[] = {"SECTION", "KEY", "VALUE", "TEXT"};
    const auto check = [](const std::string& text) { return text.empty() ? "may not be empty" : std::string(); };
    for (CLI::Option* const option : app.get_options()) {
        if (std::ranges::find(kMayBeEmpty, option->get_name()) == std::end(kMayBeEmpty)) option->check(check, "");
    }
    for (CLI::App* const command : app.get_subcommands(nullptr)) RefuseEmpty(*command);
}

// The library replaces an unknown one by its default.
void RequireKnownPage(const CLI::Option& option) {
    const char* const page = std::getenv("QELLIB10_CODEPAGE");
    if (option.count() != 0 || page == nullptr || *page == '\0' || page == std::to_string(qel::CodePage())) return;
    throw CLI::ValidationError("QELLIB10_CODEPAGE: \"" + std::string(page) + "\" is not a known code page");
}

void AddAll(CLI::App& app, Status& status) {
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", "qel " QEL_VERSION);
    const CLI::Option* const codePage =
        app.add_option_function<UINT>(
               "--codepage", [](const UINT& page) { qel::SetCodePage(page); },
               "Code page of texts in files (else $QELLIB10_CODEPAGE, else 932)")
            ->transform(tool::WholeNumber(0, 65535))
            ->check(CLI::IsMember({qel::kCodePageJapanese, qel::kCodePageLatin1, qel::kCodePageUtf8}))
            ->type_name("PAGE");
    app.parse_complete_callback([codePage] { RequireKnownPage(*codePage); });
    for (const auto& add : {tool::AddCalc, tool::AddSeal, tool::AddVerify, tool::AddCabinet, tool::AddXml, tool::AddJob,
                            tool::AddArchive, tool::AddRenewals, tool::AddProfile, tool::AddPlot, tool::AddSelfTest})
        add(app, status);
#ifdef QEL_WITH_TRAIL
    tool::AddTrail(app, status);
    tool::AddStamp(app, status);
    tool::AddSign(app, status);
    tool::AddKey(app, status);
#endif
    RefuseEmpty(app);
}

Status Run(int argc, char** argv) {
    Status status = tool::kGood;
    CLI::App app("Works with the files of QELLIB10.", "qel");
    try {
        AddAll(app, status);
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {  // --help, --version
        app.exit(success);
    } catch (const CLI::RequiredError& error) {
        const std::vector<std::string> words = app.remaining(true);
        const std::string line = words.empty() ? error.what() : '"' + words.front() + "\" is not known";
        return Complain(tool::Shown(line) + "; see qel --help", tool::kUsage);
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
