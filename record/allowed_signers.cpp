#include "qellib10/record/allowed_signers.h"

#include <chrono>

#include "qellib10/platform/error.h"
#include "qellib10/record/trail_file.h"

namespace qel {
namespace {

constexpr std::uint64_t kLongestFile = 1 << 20;
constexpr std::string_view kBlanks = " \t";

// Up to the first blank outside of quotation marks, which is taken off with those after it.
std::string_view TakeWord(std::string_view& rest) {
    bool isQuoted = false;
    std::size_t end = 0;
    for (; end < rest.size() && (isQuoted || kBlanks.find(rest[end]) == std::string_view::npos); ++end) {
        if (rest[end] == '"') isQuoted = !isQuoted;
    }
    if (isQuoted) throw DataError("a quotation mark is missing");
    const std::string_view word = rest.substr(0, end);
    const std::size_t next = rest.find_first_not_of(kBlanks, end);
    rest = next == std::string_view::npos ? std::string_view() : rest.substr(next);
    return word;
}

bool IsTypeOfKey(std::string_view word) {
    return word.starts_with("ssh-") || word.starts_with("ecdsa-") || word.starts_with("sk-") ||
           word.starts_with("rsa-");
}

unsigned Digits(std::string_view text, std::size_t at, std::size_t count) {
    unsigned value = 0;
    for (const char c : text.substr(at, count)) value = value * 10 + static_cast<unsigned>(c - '0');
    return value;
}

// YYYYMMDDZ, YYYYMMDDHHMMZ or YYYYMMDDHHMMSSZ
std::int64_t ReadTime(std::string_view text) {
    using namespace std::chrono;
    const bool isUtc = text.ends_with('Z');
    if (isUtc) text.remove_suffix(1);
    const bool isLong = text.size() == 8 || text.size() == 12 || text.size() == 14;
    if (!isUtc || !isLong || text.find_first_not_of("0123456789") != std::string_view::npos)
        throw DataError("a time is not in the form 20261231235959Z of UTC");
    const year_month_day date(year(static_cast<int>(Digits(text, 0, 4))), month(Digits(text, 4, 2)),
                              day(Digits(text, 6, 2)));
    const unsigned hour = text.size() >= 12 ? Digits(text, 8, 2) : 0;
    const unsigned minute = text.size() >= 12 ? Digits(text, 10, 2) : 0;
    const unsigned second = text.size() == 14 ? Digits(text, 12, 2) : 0;
    if (!date.ok() || hour > 23 || minute > 59 || second > 59) throw DataError("a time does not exist");
    return (sys_days(date) + hours(hour) + minutes(minute) + seconds(second)).time_since_epoch() / seconds(1);
}

bool Matches(std::string_view pattern, std::string_view text) {
    std::size_t p = 0, t = 0, star = std::string_view::npos, retry = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            retry = t;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
            ++p, ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++retry;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace

bool MatchesPatterns(std::string_view patterns, std::string_view text) {
    bool isMatched = false;
    for (std::size_t at = 0; at <= patterns.size();) {
        const std::size_t end = std::min(patterns.find(',', at), patterns.size());
        std::string_view pattern = patterns.substr(at, end - at);
        const bool isNegated = pattern.starts_with('!');
        if (isNegated) pattern.remove_prefix(1);
        if (Matches(pattern, text)) {
            if (isNegated) return false;
            isMatched = true;
        }
        at = end + 1;
    }
    return isMatched;
}

AllowedSigners::AllowedSigners(std::string_view text) {
    for (std::uint64_t number = 1; !text.empty(); ++number) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        const std::size_t start = line.find_first_not_of(kBlanks);
        if (start == std::string_view::npos || line[start] == '#') continue;
        try {
            AddLine(number, line.substr(start));
        } catch (const DataError& failure) {
            throw DataError("line " + std::to_string(number) + " of the allowed signers: " + failure.what());
        }
    }
}

AllowedSigners AllowedSigners::OfFile(const std::string& path) {
    return AllowedSigners(ReadShortFile(path, kLongestFile, "the file of allowed signers is longer than 1 MiB"));
}

void AllowedSigners::AddLine(std::uint64_t number, std::string_view line) {
    Signer signer;
    signer.line = number;
    bool isAuthority = false;
    if (TakeWord(line).empty()) throw DataError("names nobody");  // whoever it is: every name is trusted alike
    std::string_view word = TakeWord(line);
    if (!IsTypeOfKey(word)) {
        ReadOptions(word, signer, isAuthority);
        word = TakeWord(line);
    }
    if (!IsTypeOfKey(word)) throw DataError("has no key");
    const bool isKey = !isAuthority && word == kSshKeyType;
    if (isKey) signer.key = SshPublicKey::OfText(std::string(word) + ' ' + std::string(TakeWord(line)));
    m_signers.push_back(std::move(signer));
}

void AllowedSigners::ReadOptions(std::string_view options, Signer& signer, bool& isAuthority) {
    while (!options.empty()) {
        std::string_view name = options.substr(0, options.find_first_of("=,"));
        options.remove_prefix(name.size());
        std::string_view value;
        if (options.starts_with("=\"")) {
            const std::size_t end = options.find('"', 2);
            if (end == std::string_view::npos) throw DataError("a quotation mark is missing");
            value = options.substr(2, end - 2);
            options.remove_prefix(end + 1);
        }
        if (name == "cert-authority" && value.empty()) {
            isAuthority = true;
        } else if (name == "namespaces" && !value.empty() && !signer.namespaces) {
            signer.namespaces = value;
        } else if (name == "valid-after" && !signer.validAfter) {
            signer.validAfter = ReadTime(value);
        } else if (name == "valid-before" && !signer.validBefore) {
            signer.validBefore = ReadTime(value);
        } else {
            throw DataError("has an option that is not known, or one twice");
        }
        if (options.empty()) return;
        if (!options.starts_with(',')) throw DataError("has options that are not separated by commas");
        options.remove_prefix(1);
    }
}

bool AllowedSigners::Signer::IsFor(std::string_view nameSpace) const {
    return !namespaces || MatchesPatterns(*namespaces, nameSpace);
}

AllowedSigners::Answer AllowedSigners::Ask(const SshPublicKey& key, std::string_view nameSpace,
                                           std::int64_t time) const {
    Answer answer = Answer::kUnknown;
    for (const Signer& signer : m_signers) {
        if (signer.key != key || !signer.IsFor(nameSpace)) continue;
        const bool isEarly = signer.validAfter && time < *signer.validAfter;
        const bool isLate = signer.validBefore && time > *signer.validBefore;
        if (!isEarly && !isLate) return Answer::kAllowed;
        answer = isEarly ? Answer::kNotYetValid : Answer::kEnded;
    }
    return answer;
}

}  // namespace qel
