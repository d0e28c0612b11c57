#include "qellib10/store/password_rules.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "qellib10/platform/crypto/secret_text.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"
#include "qellib10/platform/text/secret_utf8.h"
#include "qellib10/platform/text/unicode.h"

namespace qel {
namespace {

constexpr int kLongestPassword = 1024;    // bytes
constexpr std::size_t kShortestWord = 3;  // characters; shorter ones are in many passwords by chance

struct Form {
    int characters = 0, kinds = 0;
    bool isOneCharacter = true;
};

Form FormOf(std::string_view utf8) {
    Form form;
    bool hasLower = false, hasUpper = false, hasDigit = false, hasOther = false;
    char32_t first = 0;
    for (std::size_t at = 0; at < utf8.size(); ++form.characters) {
        const char32_t character = NextCharacter(utf8, at);
        if (form.characters == 0) first = character;
        form.isOneCharacter = form.isOneCharacter && character == first;
        const bool isLower = character >= U'a' && character <= U'z';
        const bool isUpper = character >= U'A' && character <= U'Z';
        const bool isDigit = character >= U'0' && character <= U'9';
        hasLower = hasLower || isLower;
        hasUpper = hasUpper || isUpper;
        hasDigit = hasDigit || isDigit;
        hasOther = hasOther || !(isLower || isUpper || isDigit);
    }
    form.kinds = hasLower + hasUpper + hasDigit + hasOther;
    return form;
}

bool IsInWord(char byte) {
    const auto isBetween = [byte](char first, char last) { return byte >= first && byte <= last; };
    return static_cast<unsigned char>(byte) >= 0x80 || isBetween('a', 'z') || isBetween('A', 'Z') ||
           isBetween('0', '9');
}

bool HasWordOf(std::string_view password, std::string_view name) {
    const auto has = [&](std::string_view word) {
        return static_cast<std::size_t>(FormOf(word).characters) >= kShortestWord &&
               password.find(word) != std::string_view::npos;
    };
    for (auto at = name.begin(); at != name.end();) {
        const auto from = std::find_if(at, name.end(), IsInWord);
        at = std::find_if_not(from, name.end(), IsInWord);
        if (has(std::string_view(from, at))) return true;
    }
    return has(name);
}

bool HasName(const CString& password, const CString& name) {
    const std::string folded = ToUtf8(FoldName(name.View()));
    const SecretText pageText(FoldName(password.View())), text(SecretToUtf8(pageText.View()));
    return folded.find(text.View()) != std::string::npos || HasWordOf(text.View(), folded);
}

}  // namespace

PasswordFault FindPasswordFault(const PasswordRules& rules, const CString& username, const CString& fullName,
                                const CString& password) {
    if (password.IsEmpty() || password.GetLength() > kLongestPassword) return PasswordFault::kImpossible;
    const SecretText text(SecretToUtf8(password.View()));
    const Form form = FormOf(text.View());
    if (form.characters < rules.leastCharacters) return PasswordFault::kTooShort;
    if (form.kinds < rules.leastKinds) return PasswordFault::kTooFewKinds;
    if (rules.isOneCharacterRefused && form.isOneCharacter) return PasswordFault::kOneCharacter;
    if (rules.isNameRefused && (HasName(password, username) || HasName(password, fullName)))
        return PasswordFault::kHasName;
    return PasswordFault::kNone;
}

const char* PasswordFaultText(PasswordFault fault) {
    switch (fault) {
        case PasswordFault::kNone:
            break;
        case PasswordFault::kImpossible:
            return "this cannot be a password";
        case PasswordFault::kTooShort:
            return "the password has too few characters";
        case PasswordFault::kTooFewKinds:
            return "the password has too few kinds of characters";
        case PasswordFault::kOneCharacter:
            return "the password is one character, repeated";
        case PasswordFault::kHasName:
            return "the password has the user's name or a part of it";
        case PasswordFault::kUsedBefore:
            return "the password was used before";
        case PasswordFault::kTooEarly:
            return "the password was changed too short a time ago";
        case PasswordFault::kNotVerified:
            return "name or present password are wrong, or were too often";
    }
    return "";
}

}  // namespace qel
