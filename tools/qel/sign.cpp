// qel sign: a person signs a version of a document.
#include <algorithm>

#include <qellib10/record.h>

#include "password.h"
#include "tool.h"
#include "trail_signatures.h"
#include "trail_signer.h"

namespace tool {
namespace {

struct Options {
    std::string trail, cabinet, meaning, person, user, headFile, report;
    std::uint64_t version = 0;
    SignerOptions signer;
    RuleOptions rules;
    PasswordSource passwords;
    bool json = false;
};

// Nobody is asked to sign what the trail does not know as it is.
qel::SigningRequest RequestOf(const Options& options) {
    qel::CabinetRecords records;
    if (records.Read(Path(options.trail).View()) == 0)
        throw Named(options.trail, LastRefusal("cannot be read", kMalformed));
    qel::CabinetRecords::Cabinet cabinet;
    if (records.Compare(Path(options.cabinet).View(), cabinet) == 0)
        throw Named(options.cabinet, LastRefusal("cannot be read", kBadHeader));
    const auto version = std::ranges::find(cabinet.versions, options.version, &qel::RecordedVersion::version);
    const std::string what = Shown(options.cabinet) + ": version " + std::to_string(options.version);
    if (version == cabinet.versions.end()) throw CLI::ValidationError(what + " does not exist");
    if (version->IsFinding())
        throw Failure(what + " is not what was recorded",
                      version->state == qel::RecordedState::kUnrecorded ? kNeverRecorded : kChanged);
    qel::SigningRequest request;
    request.cabinet = cabinet.guid;
    request.cabinetVersion = version->version;
    request.size = version->size;
    request.sha256 = version->sha256;
    request.meaning = options.meaning;
    if (options.report.empty()) return request;
    const std::optional<qel::FileHash> report = qel::HashFile(Path(options.report).View());
    if (!report) throw Named(options.report, LastRefusal("cannot be read", kFailed));
    request.reportSha256 = report->sha256;
    return request;
}

Status Sign(const Options& options) {
    RequireSigner(options.signer);
    const qel::SigningRequest request = RequestOf(options);
    const auto person = std::make_shared<qel::PersonKey>();
    if (person->Open(Path(options.person).View()) == 0)
        throw Named(options.person, LastRefusal("is no person's key", kInconsistent));
    const auto trail = OpenTrail(options.trail, options.headFile, options.signer);
    Password password;
    options.passwords.Read(password, "Password: ");
    qel::Signing signing(*trail, person, options.rules.Rules());
    const auto receipt = signing.Sign(request, options.user, password.View());
    if (!receipt) throw PersonRefusal("cannot be signed", kFailed);
    options.json ? Print(Json{{"entry", receipt->number},
                              {"hash", receipt->hash},
                              {"cabinet", request.cabinet},
                              {"cabinetVersion", request.cabinetVersion},
                              {"final", signing.MayBeFinal(request.cabinet, request.cabinetVersion) != 0}})
                 : Print("entry " + std::to_string(receipt->number) + ' ' + receipt->hash + '\n');
    return kGood;
}

}  // namespace

void AddSign(CLI::App& app, Status& status) {
    CLI::App* const command = app.add_subcommand("sign", "Sign a version of a document, as a person");
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, std::string& value, const char* type, const char* meaning) {
        return command->add_option(name, value, meaning)->type_name(type);
    };
    AddFile(*command, "TRAIL", options->trail, "The trail's file");
    add("--cabinet", options->cabinet, "FILE", "The cabinet that has the version")->required();
    command->add_option("--version", options->version, "The version's number")
        ->required()
        ->transform(WholeNumber(1, std::int64_t{1} << 32))
        ->type_name("N");
    add("--meaning", options->meaning, "TEXT", "author, reviewed, approved, rejected, or another text")->required();
    add("--person", options->person, "KEYFILE", "The file of the person's key")->required();
    add("--user", options->user, "NAME", "Who signs: the name for logging on")->required();
    add("--head-file", options->headFile, "FILE", "The trail's head file")->required();
    AddSignerOptions(*command, options->signer);
    add("--report", options->report, "JOBFILE", "The report that is signed too, without its block of signatures");
    AddRuleOptions(*command, options->rules);
    AddPasswordOption(*command, options->passwords);
    command->add_flag("--json", options->json, "Write JSON");
    command->callback([options, &status] { status = Sign(*options); });
}

}  // namespace tool
