#pragma once

#include <memory>
#include <string>

#include <qellib10/record.h>

#include <CLI/CLI.hpp>

namespace tool {

/// Who signs the entries that a command appends.
struct SignerOptions {
    std::string agent, key, signerKey;
};

void AddSignerOptions(CLI::App& command, SignerOptions& options);
/// @throws CLI::ValidationError unless there is either an agent or a file
void RequireSigner(const SignerOptions& options);
/// @throws Failure
std::shared_ptr<qel::Signer> SignerOf(const SignerOptions& options);
/// A trail that exists, to append to it. @throws Failure
std::unique_ptr<qel::Trail> OpenTrail(const std::string& path, const std::string& headFile,
                                      const SignerOptions& options);

}  // namespace tool
