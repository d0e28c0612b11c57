#include "qellib10/platform/crypto/secret_text.h"

#include <sodium.h>

#include <utility>

namespace qel {
namespace {

void Wipe(std::string& text) {
    text.resize(text.capacity());  // a short text that was moved is still where it was
    ::sodium_memzero(text.data(), text.size());
}

}  // namespace

SecretText::SecretText(std::string&& text) : m_text(std::move(text)) { Wipe(text); }
SecretText::~SecretText() { Wipe(m_text); }

void WipeSecret(char* text, std::size_t size) noexcept { ::sodium_memzero(text, size); }

}  // namespace qel
