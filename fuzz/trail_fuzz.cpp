// Laws: a line that is read as an entry is the line that is written of it; a file of allowed signers, a key and a
// signature are read or refused, and what was read is written as the same bytes.
#include "qellib10/record/trail_line.h"

#include "law.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/allowed_signers.h"

namespace {

constexpr std::size_t kLongestUsefulInput = 16 * 1024;

// @return whether it is one
template <class Body> bool IsAccepted(Body&& body) {
    try {
        body();
        return true;
    } catch (const qel::DataError&) {
        return false;
    }
}

void CheckOtherForms(std::string_view text) {
    IsAccepted([&] { qel::AllowedSigners{text}; });
    IsAccepted([&] { Require(qel::SshPublicKey::OfText(text).Text() == text); });
    IsAccepted([&] {
        const auto signature = qel::SshSignature::OfBlob(text, qel::kEntryNamespace);
        Require(signature.Blob(qel::kEntryNamespace) == text);
    });
    IsAccepted([&] { qel::ReadPrivateKey(text); });
    qel::MatchesPatterns(text.substr(text.size() / 2), text.substr(0, text.size() / 2));
}

}  // namespace

extern "C" bool IsRead(const std::uint8_t* data, std::size_t size) {
    const std::string text = Text(data, size);
    return IsAccepted([&] { qel::ReadEntry(text); }) || IsAccepted([&] { qel::AllowedSigners{text}; }) ||
           IsAccepted([&] { qel::ReadPrivateKey(text); });
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestUsefulInput) return 0;
    const std::string text = Text(data, size);
    IsAccepted([&] {
        const qel::ReadLine read = qel::ReadEntry(text);
        Require(qel::LineOf(qel::SignedPart(read.entry), read.signature) == text);
        read.IsSigned();
    });
    CheckOtherForms(text);
    return 0;
}
