#include "trail_signer.h"

#include "tool.h"

namespace tool {

void AddSignerOptions(CLI::App& command, SignerOptions& options) {
    command.add_option("--agent", options.agent, "The agent that signs the entry")->type_name("SOCKET");
    command.add_option("--key", options.key, "Fingerprint of the agent's key, if it has several")
        ->type_name("SHA256:...");
    command.add_option("--signer-key", options.signerKey, "Or the file of the key that signs it")->type_name("FILE");
}

void RequireSigner(const SignerOptions& options) {
    if (options.agent.empty() == options.signerKey.empty())
        throw CLI::ValidationError("one of --agent and --signer-key is needed");
    if (!options.key.empty() && options.agent.empty()) throw CLI::ValidationError("--key is one of an agent");
}

std::shared_ptr<qel::Signer> SignerOf(const SignerOptions& options) {
    if (!options.signerKey.empty()) {
        auto signer = std::make_shared<qel::KeyFileSigner>();
        if (signer->Load(Path(options.signerKey).View()) == 0)
            throw Named(options.signerKey, LastRefusal("cannot be read", kFailed));
        return signer;
    }
    auto signer = std::make_shared<qel::SshAgentSigner>();
    if (signer->Connect(Path(options.agent).View(), options.key) == 0)
        throw Named(options.agent, LastRefusal("does not answer", kFailed));
    return signer;
}

std::unique_ptr<qel::Trail> OpenTrail(const std::string& path, const std::string& headFile,
                                      const SignerOptions& options) {
    auto trail = std::make_unique<qel::Trail>(qel::TrailSettings{.path = std::string(Path(path).View()),
                                                                 .headPath = std::string(Path(headFile).View()),
                                                                 .application = "qel",
                                                                 .version = QEL_VERSION},
                                              SignerOf(options));
    if (CQFile::IsExist(Path(path)) == 0) throw Failure(Shown(path) + ": is missing", kUnreadable);
    if (trail->Open() != 0) return trail;
    const bool isHead = CString(qel::LastFailure().item.c_str()) == Path(headFile);
    throw Named(isHead ? headFile : path, LastRefusal("cannot be opened", kFailed));
}

}  // namespace tool
