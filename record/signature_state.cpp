#include "qellib10/record/signature_state.h"

#include <algorithm>
#include <cstdlib>

#include "qellib10/platform/error.h"
#include "qellib10/platform/text/utf8_name.h"
#include "qellib10/record/person_statement_text.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/version_list.h"

namespace qel {
namespace {

template <std::size_t kSize> std::array<std::byte, kSize> BytesOf(std::string_view hex) {
    std::array<std::byte, kSize> bytes;
    Unhex(hex, bytes);
    return bytes;
}

bool IsAboutSame(const TrailEntry& entry, const PersonStatement& statement) {
    return entry.user == statement.user && entry.cabinet == statement.cabinet &&
           entry.cabinetVersion == statement.cabinetVersion && entry.size == statement.size &&
           entry.sha256 == statement.sha256;
}

}  // namespace

// Nobody where no entry that counts has named the user.
SignatureState::Person SignatureState::Find(std::string_view user) const {
    const auto found = m_names.find(FoldUtf8Name(user));
    return found != m_names.end() ? &*found : nullptr;
}

SignatureState::Person SignatureState::Keep(std::string_view user) {
    return &*m_names.insert(FoldUtf8Name(user)).first;
}

SignatureState::Place SignatureState::PlaceOf(std::string_view cabinet, std::uint64_t number) {
    std::string digits;
    for (const char c : cabinet) {
        if (c >= 'A' && c <= 'F') digits += static_cast<char>(c - 'A' + 'a');
        if (c >= '0' && c <= '9') digits += c;
    }
    return {BytesOf<16>(digits), number};
}

const SignatureState::Version& SignatureState::Found(const Place& place) const {
    static const Version kNothing;
    const auto found = m_versions.find(place);
    return found != m_versions.end() ? found->second : kNothing;
}

std::vector<SignatureProblem> SignatureState::Take(const TrailEntry& entry) {
    using namespace trail_kind;
    try {
        if (entry.action == kPersonKeyAdded || entry.action == kPersonKeyEnded) return TakePersonKey(entry);
        if (entry.action == kSignature) return TakeSignature(entry);
        const bool isRegistration = IsOfRegistering(entry) && entry.action != kAbandoned && !entry.cabinet.empty();
        return isRegistration ? TakeRegistration(entry) : Problems();
    } catch (const DataError& failure) {
        return {{SignatureFault::kMalformed, failure.what()}};
    }
}

std::vector<SignatureProblem> SignatureState::TakePersonKey(const TrailEntry& entry) {
    const PersonPublicKey key = PersonPublicKey::OfText(entry.object);
    if (entry.user.empty()) throw DataError("a person's key is announced for nobody");
    const auto found = m_keys.find(key);
    const bool isThere = found != m_keys.end();
    const bool isOwn = isThere && found->second.user == Find(entry.user);
    if (entry.action == trail_kind::kPersonKeyAdded) {
        if (isThere && !isOwn) return {{SignatureFault::kPersonKey, "the key is another person's"}};
        // Also one that has ended: whoever has it now may be somebody else.
        if (isThere) return {{SignatureFault::kPersonKey, "the key was announced already"}};
        m_keys[key] = {.user = Keep(entry.user), .printedName = entry.after};
        return {};
    }
    if (!isOwn || !found->second.isValid) return {{SignatureFault::kPersonKey, "the key is none of this person's"}};
    found->second.isValid = false;
    return {};
}

// A registration that was interrupted is finished by the next program: its user is not the author.
std::vector<SignatureProblem> SignatureState::TakeRegistration(const TrailEntry& entry) {
    Version& version = m_versions[PlaceOf(entry.cabinet, entry.cabinetVersion)];
    const bool isFirst = !version.sha256;
    if (isFirst && !entry.user.empty() && entry.action != trail_kind::kRecovered)
        version.registeredBy = Keep(entry.user);
    if (entry.action == trail_kind::kRegistering) return {};
    const auto sha256 = BytesOf<32>(entry.sha256);
    if (isFirst) version.sha256 = sha256;
    if (version.sha256 == sha256) return {};
    version.isChanged = true;
    return {{SignatureFault::kChangedVersion, "the version has another content than before"}};
}

std::vector<SignatureProblem> SignatureState::TakeSignature(const TrailEntry& entry) {
    const SignedStatement read = ReadSignedStatement(entry.statement);
    const PersonStatement& statement = read.statement;
    if (!read.IsSigned()) return {{SignatureFault::kChanged, "the statement is not what was signed"}};
    Problems problems;
    if (statement.trailId != entry.trailId)
        problems.push_back({SignatureFault::kOtherTrail, "the statement was signed for trail " + statement.trailId});
    if (!IsAboutSame(entry, statement))
        problems.push_back({SignatureFault::kOtherEntry, "the entry says something else than its statement"});
    if (std::abs(statement.time - entry.time) > kMostApart)
        problems.push_back({SignatureFault::kOtherEntry, "the time of the statement is not that of its entry"});
    if (!m_nonces.insert(BytesOf<16>(statement.nonce)).second)
        problems.push_back({SignatureFault::kRepeated, "the statement was used before"});
    for (SignatureProblem& problem : ProblemsOf(statement, read.signature.key, entry.time))
        problems.push_back(std::move(problem));
    if (problems.empty()) Count(statement);
    return problems;
}

std::vector<SignatureProblem> SignatureState::ProblemsOf(const PersonStatement& statement, const PersonPublicKey& key,
                                                         std::int64_t time) const {
    Problems problems;
    AddKeyProblem(problems, statement, key);
    if (m_rules.mayGive && !m_rules.mayGive(statement.user, statement.meaning, time))
        problems.push_back({SignatureFault::kNotAllowed, "the user may not sign as " + statement.meaning});
    const Version& version = Found(PlaceOf(statement.cabinet, statement.cabinetVersion));
    if (!version.sha256) {
        problems.push_back({SignatureFault::kNotRegistered, "no entry has registered the version"});
    } else if (*version.sha256 != BytesOf<32>(statement.sha256)) {
        problems.push_back({SignatureFault::kChangedVersion, "the version has another content than what is signed"});
    }
    AddPeopleProblem(problems, statement, version);
    if (statement.meaning == signature_meaning::kApproved && m_rules.approvalNeedsReview && version.reviewedBy.empty())
        problems.push_back({SignatureFault::kOrder, "the version is approved before it was reviewed"});
    return problems;
}

void SignatureState::AddKeyProblem(Problems& problems, const PersonStatement& statement,
                                   const PersonPublicKey& key) const {
    const auto found = m_keys.find(key);
    if (found == m_keys.end() || found->second.user != Find(statement.user)) {
        problems.push_back({SignatureFault::kUnknownKey, "the key was not announced for this user"});
        return;
    }
    const PersonKey& announced = found->second;
    if (!announced.isValid) problems.push_back({SignatureFault::kEndedKey, "the key has ended"});
    if (!announced.printedName.empty() && announced.printedName != statement.name)
        problems.push_back({SignatureFault::kOtherName, "the key was announced with another printed name"});
}

void SignatureState::AddPeopleProblem(Problems& problems, const PersonStatement& statement,
                                      const Version& version) const {
    const auto find = [&](const char* text) { problems.push_back({SignatureFault::kSamePerson, text}); };
    const Person user = Find(statement.user);
    if (user == nullptr) return;  // they have done nothing yet
    const bool hasApproved = version.approvedBy.contains(user);
    const bool isAuthor = version.authors.contains(user) || version.registeredBy == user;
    const bool approves = statement.meaning == signature_meaning::kApproved;
    if (approves && isAuthor && !m_rules.authorMayApprove) find("an author may not approve");
    if (approves && hasApproved && m_rules.approvals > 1) find("the user has approved already");
    const bool reviews = statement.meaning == signature_meaning::kReviewed;
    const bool isSecondStep = (approves && version.reviewedBy.contains(user)) || (reviews && hasApproved);
    if (isSecondStep && !m_rules.reviewerMayApprove) find("one person may not review and approve");
    if (reviews && isAuthor && !m_rules.authorMayReview) find("an author may not review");
    if (statement.meaning == signature_meaning::kAuthor && hasApproved && !m_rules.authorMayApprove)
        find("the user has approved and cannot be an author");
}

void SignatureState::Count(const PersonStatement& statement) {
    Version& version = m_versions[PlaceOf(statement.cabinet, statement.cabinetVersion)];
    const Person user = Keep(statement.user);
    if (statement.meaning == signature_meaning::kAuthor) version.authors.insert(user);
    if (statement.meaning == signature_meaning::kApproved) version.approvedBy.insert(user);
    if (statement.meaning == signature_meaning::kReviewed) version.reviewedBy.insert(user);
    if (statement.meaning == signature_meaning::kRejected) version.isRejected = true;
}

bool SignatureState::IsPerson(std::string_view user) const {
    const Person person = Find(user);
    return std::ranges::any_of(m_keys, [person](const auto& key) { return key.second.user == person; });
}

bool SignatureState::IsValidKeyOf(const PersonPublicKey& key, std::string_view user) const {
    const auto found = m_keys.find(key);
    return found != m_keys.end() && found->second.isValid && found->second.user == Find(user);
}

std::vector<PersonPublicKey> SignatureState::ValidKeysOf(std::string_view user) const {
    const Person person = Find(user);
    std::vector<PersonPublicKey> keys;
    for (const auto& [key, announced] : m_keys) {
        if (announced.isValid && announced.user == person) keys.push_back(key);
    }
    return keys;
}

std::string SignatureState::WhyNotFinal(const std::string& cabinet, std::uint64_t number) const {
    if (!IsCabinet(cabinet) || number == 0) throw DataError("a cabinet or a version is named wrongly");
    const Version& version = Found(PlaceOf(cabinet, number));
    if (!version.sha256) return "the version was not registered";
    if (version.isChanged) return "the version was changed after it was registered";
    if (version.isRejected) return "the version was rejected";
    const std::size_t approvals = version.approvedBy.size();
    if (approvals >= m_rules.approvals) return "";
    return std::to_string(approvals) + " of " + std::to_string(m_rules.approvals) + " approvals are there";
}

}  // namespace qel
