#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/record/person_public_key.h"
#include "qellib10/record/person_statement.h"
#include "qellib10/record/signature_check.h"
#include "qellib10/record/trail_entry.h"

namespace qel {

/// How far the time of a statement may be from that of its entry, in ms: it is made before the password is checked, and
/// an agent may wait for somebody.
inline constexpr std::int64_t kMostApart = 5 * 60 * 1000;

struct SignatureProblem {
    SignatureFault fault;
    std::string text;
};

/// What the entries of a trail up to some place say about signatures of people. Whoever signs and whoever checks ask
/// the same object, so that they cannot differ.
class SignatureState {
public:
    explicit SignatureState(SigningRules rules) : m_rules(std::move(rules)) {}
    SignatureState(const SignatureState&) = delete;
    SignatureState& operator=(const SignatureState&) = delete;

    /// Takes the next entry. @return what is wrong with it; it counts for nothing then
    std::vector<SignatureProblem> Take(const TrailEntry& entry);

    /// What is wrong with a statement of valid form that would come next, signed rightly with @p key, in an entry of
    /// this time.
    std::vector<SignatureProblem> ProblemsOf(const PersonStatement& statement, const PersonPublicKey& key,
                                             std::int64_t time) const;
    // Names that differ in case only are one person's, as they are one account of a qel::UserStore.

    /// Whether a key was announced for the user, also one that has ended.
    bool IsPerson(std::string_view user) const;
    /// Whether a key was announced, also one that has ended.
    bool IsKnown(const PersonPublicKey& key) const { return m_keys.contains(key); }
    bool IsValidKeyOf(const PersonPublicKey& key, std::string_view user) const;
    std::vector<PersonPublicKey> ValidKeysOf(std::string_view user) const;
    /// Why a version may not be final yet, or ever; empty if it may.
    std::string WhyNotFinal(const std::string& cabinet, std::uint64_t number) const;

private:
    using Problems = std::vector<SignatureProblem>;
    using Person = const std::string*;  // in m_names, where it stays: a trail has few names and many versions
    using People = std::set<Person>;

    struct PersonKey {
        Person user = nullptr;
        std::string printedName = {};  // empty: the entry does not say it
        bool isValid = true;
    };
    struct Version {
        std::optional<Sha256Digest> sha256;  // as registered first; until then nobody can sign it
        Person registeredBy = nullptr;
        bool isChanged = false, isRejected = false;
        People authors, reviewedBy, approvedBy;
    };
    using Place = std::pair<std::array<std::byte, 16>, std::uint64_t>;  // cabinet and version

    Problems TakePersonKey(const TrailEntry& entry);
    Problems TakeRegistration(const TrailEntry& entry);
    Problems TakeSignature(const TrailEntry& entry);
    void AddKeyProblem(Problems& problems, const PersonStatement& statement, const PersonPublicKey& key) const;
    void AddPeopleProblem(Problems& problems, const PersonStatement& statement, const Version& version) const;
    void Count(const PersonStatement& statement);
    Person Find(std::string_view user) const;
    Person Keep(std::string_view user);
    static Place PlaceOf(std::string_view cabinet, std::uint64_t number);
    const Version& Found(const Place& place) const;

    SigningRules m_rules;
    std::set<std::string> m_names;  // without their case
    std::map<PersonPublicKey, PersonKey> m_keys;
    std::map<Place, Version> m_versions;
    std::set<std::array<std::byte, 16>> m_nonces;
};

}  // namespace qel
