// qel stamp: time stamps of an authority for the entries of a trail. It uses no network: request and answer are files.
#include <qellib10/record.h>

#include "tool.h"
#include "trail_signer.h"

namespace tool {
namespace {

struct Options {
    std::string trail, request, answer, tsaCa, headFile, user;
    SignerOptions signer;
    std::uint64_t entry = 0;
    bool force = false, json = false;
};

std::string LibraryPathOf(const std::string& file) { return std::string(Path(file).View()); }

// The file that the library's last failure is about, else @p otherwise.
Failure Refusal(const Options& options, const std::string& otherwise, Status ofData) {
    const CString item(qel::LastFailure().item.c_str());
    for (const std::string& file : {options.trail, options.tsaCa, options.headFile}) {
        if (!file.empty() && item == Path(file)) return Named(file, LastRefusal("cannot be read", kFailed));
    }
    return Named(otherwise, LastRefusal("is refused", ofData));
}

Status WriteRequest(const Options& options) {
    RequireNew(options.request, options.force, {options.trail});
    const auto request = qel::MakeStampRequest(LibraryPathOf(options.trail), options.entry);
    if (!request) throw Refusal(options, options.trail, options.entry > 0 ? kMissing : kMalformed);
    WriteAsAWhole(options.request, options.force, [&](const qel::Descriptor& file) {
        qel::WriteFully(file, std::as_bytes(std::span(*request)), options.request);
    });
    return kGood;
}

// The answer is checked before the trail is touched.
Status AppendAnswer(const Options& options) {
    const std::string answer = ReadStart(options.answer), request = ReadStart(options.request);
    const std::string tsaCa = LibraryPathOf(options.tsaCa);
    const std::optional<qel::TimeStamp> stamp = qel::CheckStamp(answer, request, tsaCa);
    if (!stamp) throw Refusal(options, options.answer, kStamp);
    const auto trail = OpenTrail(options.trail, options.headFile, options.signer);
    const std::optional<qel::TrailReceipt> receipt = qel::AppendStamp(*trail, answer, request, tsaCa, options.user);
    if (!receipt) throw Refusal(options, options.answer, kStamp);
    const std::string time = qel::TrailTimeText(stamp->time);
    options.json
        ? Print(Json{{"entry", receipt->number}, {"hash", receipt->hash}, {"stamped", stamp->sha256}, {"time", time}})
        : Print("entry " + std::to_string(receipt->number) + ": time stamp of " + time + '\n');
    return kGood;
}

void RequireTogether(const Options& options) {
    const auto require = [](bool isRight, const char* what) {
        if (!isRight) throw CLI::ValidationError(what);
    };
    const auto& [agent, key, signerKey] = options.signer;
    require(!options.answer.empty() || (options.tsaCa.empty() && options.headFile.empty() && options.user.empty() &&
                                        agent.empty() && signerKey.empty()),
            "--answer is missing: the other options are for it");
    require(options.answer.empty() ||
                (!options.tsaCa.empty() && !options.headFile.empty() && agent.empty() != signerKey.empty()),
            "--answer needs --tsa-ca, --head-file, and one of --agent and --signer-key");
    require(key.empty() || !agent.empty(), "--key is one of an agent");
}

}  // namespace

void AddStamp(CLI::App& app, Status& status) {
    CLI::App* const command = app.add_subcommand("stamp", "Ask for a time stamp of a trail, and append the answer");
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, std::string& value, const char* type, const char* meaning) {
        return command->add_option(name, value, meaning)->type_name(type);
    };
    AddFile(*command, "TRAIL", options->trail, "The trail's file");
    add("--request", options->request, "FILE", "The request (.tsq): written, or with --answer read")->required();
    CLI::Option* const entry =
        command->add_option("--entry", options->entry, "The number of the entry to be stamped, else the last one")
            ->transform(WholeNumber(1, std::int64_t{1} << 53))
            ->type_name("N");
    CLI::Option* const answer =
        add("--answer", options->answer, "FILE", "The authority's answer (.tsr), to be appended");
    entry->excludes(answer);
    add("--tsa-ca", options->tsaCa, "FILE", "Certificates of the authority, from elsewhere");
    add("--head-file", options->headFile, "FILE", "The trail's head file");
    AddSignerOptions(*command, options->signer);
    add("--user", options->user, "NAME", "Who appends it");
    command->add_flag("--force", options->force, "Replace the file of the request")->excludes(answer);
    command->add_flag("--json", options->json, "Write JSON")->needs(answer);
    command->footer("Exit status 17: the answer is not one for this request, or not the authority's.");
    command->callback([options, &status] {
        RequireTogether(*options);
        status = options->answer.empty() ? WriteRequest(*options) : AppendAnswer(*options);
    });
}

}  // namespace tool
