// Law: a signed statement that is read is, byte for byte, the text that is written of it; so is a signature.
#include "qellib10/record/person_statement_text.h"

#include "law.h"
#include "qellib10/platform/error.h"

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) {
    try {
        return qel::ReadSignedStatement(Text(data, size)).IsSigned();
    } catch (const qel::DataError&) {
        return false;
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = Text(data, size);
    try {
        const qel::SignedStatement read = qel::ReadSignedStatement(text);
        Require(qel::StatementText(read.signedPart, read.signature) == text);
        Require(read.statement.cabinetVersion > 0 && !read.statement.meaning.empty());
    } catch (const qel::DataError&) {
    }
    try {
        const auto signature = qel::PersonSshSignature::OfBlob(text, qel::kStatementNamespace);
        Require(signature.Blob(qel::kStatementNamespace) == text);
        Require(qel::PersonPublicKey::OfText(signature.key.Text()) == signature.key);
    } catch (const qel::DataError&) {
    }
    return 0;
}
