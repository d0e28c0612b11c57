#pragma once

#include <string>
#include <string_view>

#include "qellib10/record/person_ssh_signature.h"
#include "qellib10/record/person_statement.h"

// Signed statements as texts. docs/formats.md has a description of them.
namespace qel {

inline constexpr std::string_view kStatementNamespace = "qellib10-signature";

/// The bytes of a statement that are signed: its text without the signature.
/// @throws DataError for one that cannot be: digits in another form, a text that cannot be shown, no version
std::string SignedPart(const PersonStatement& statement);

/// The whole text.
std::string StatementText(std::string_view signedPart, const PersonSshSignature& signature);

struct SignedStatement {
    PersonStatement statement;
    PersonSshSignature signature;
    std::string signedPart;

    bool IsSigned() const { return IsSignatureOf(signature, kStatementNamespace, signedPart); }
};

/// Takes a text apart. It does not check the signature.
/// @throws DataError for each text that is not, byte for byte, what StatementText would make of its content
SignedStatement ReadSignedStatement(std::string_view text);

}  // namespace qel
