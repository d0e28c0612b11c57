#include "qellib10/store/logon_turn.h"

#include <chrono>

#include "qellib10/platform/crypto/token.h"
#include "qellib10/store/store_error.h"

namespace qel {
namespace {

constexpr std::chrono::seconds kLongestWait(30);
constexpr std::size_t kNameBytes = 8;

// A user's name may have characters that the name of a file cannot have.
std::string SuffixOf(const std::string& foldedName) {
    constexpr char kDigits[] = "0123456789abcdef";
    const TokenDigest digest = DigestOf(foldedName);
    std::string suffix = ".logon-";
    for (std::size_t i = 0; i < kNameBytes; ++i) {
        const auto number = std::to_integer<unsigned>(digest[i]);
        (suffix += kDigits[number >> 4]) += kDigits[number & 0xF];
    }
    return suffix;
}

}  // namespace

LogonTurn::LogonTurn(const std::string& storePath, const std::string& foldedName)
    : m_lock(storePath, SuffixOf(foldedName), kLongestWait) {
    if (!m_lock.IsTaken()) throw StoreError(FailureKind::kState, "another logon of this user is still being checked");
}

}  // namespace qel
