#include "qellib10/record/signing.h"

#include <filesystem>
#include <functional>

#include "qellib10/record/person_key.h"
#include "qellib10/record/signature_block.h"
#include "signing_folder.h"

namespace {

// A person's key that is opened at once, and does something while the password is checked.
class QuickPerson : public qel::PersonSigner {
public:
    QuickPerson(std::string user, int key) : m_user(std::move(user)), m_key(key) {}
    std::string User() const override { return m_user; }
    std::string PrintedName() const override { return "Mori Akiko"; }
    std::string PublicKey() const override { return m_key.PublicKey(); }
    qel::PersonSignature Sign(std::string_view bytes, std::string_view password) override {
        ++tries;
        if (meanwhile) meanwhile();
        if (password != "right") throw qel::WrongPassword();
        return {.bytes = m_key.Sign(isBroken ? "x" : bytes)};
    }

    void Become(const std::string& user, int key) {
        m_user = user;
        m_key = ByteSigner(key);
    }

    int tries = 0;
    bool isBroken = false;
    std::function<void()> meanwhile;

private:
    std::string m_user;
    ByteSigner m_key;
};

qel::SigningRequest Request(const char* meaning = "approved") {
    return {.cabinet = kCabinet,
            .cabinetVersion = 2,
            .size = 3,
            .sha256 = HashOf("abc"),
            .reportSha256 = HashOf("report"),
            .meaning = meaning};
}

std::string Outcome(const std::optional<qel::TrailReceipt>& receipt) {
    if (receipt) return "entry " + std::to_string(receipt->number);
    return std::to_string(static_cast<int>(qel::LastFailure().kind)) + ' ' + qel::LastFailure().text;
}

// A folder with a version and a session of sato.
struct Session : People {
    Session(const std::string& user = "sato", int key = 13, qel::SigningRules rules = {})
        : person(std::make_shared<QuickPerson>(user, key)), signing(trail, person, std::move(rules)) {
        Do("kato registers");
    }

    std::shared_ptr<QuickPerson> person;
    qel::Signing signing;
};

const std::string kRefused = std::to_string(static_cast<int>(qel::FailureKind::kRefused)) + ' ';
const std::string kState = std::to_string(static_cast<int>(qel::FailureKind::kState)) + ' ';
const std::string kData = std::to_string(static_cast<int>(qel::FailureKind::kData)) + ' ';

}  // namespace

// Each password that is tried costs half a second: four in all.
TEST(Signing, TakesNameAndPasswordThenThePasswordAlone) {
    People people;
    qel::PersonKey made;
    ASSERT_EQ(made.Make(people.Name("k"), "ota", "\xC5\x8Cta \"O\"", "secret word"), 1) << qel::LastFailure().text;
    qel::TrailRecord announced = Record("person key added", made.PublicKey());
    announced.user = "ota";
    ASSERT_TRUE(people.trail.Append(announced));
    people.Do("mori registers");
    const auto person = std::make_shared<qel::PersonKey>();
    ASSERT_EQ(person->Open(people.Name("k")), 1);
    qel::Signing signing(people.trail, person, {.reviewerMayApprove = true});
    EXPECT_EQ(Outcome(signing.Sign(Request("reviewed"), "secret word")),
              kState + "the first signature of a session needs the user's name");
    EXPECT_EQ(Outcome(signing.Sign(Request("reviewed"), "ota", "Secret word")), kRefused + "the password is wrong");
    EXPECT_EQ(Outcome(signing.Sign(Request("reviewed"), "ota", "secret word")), "entry 8");
    EXPECT_EQ(signing.MayBeFinal(kCabinet, 2), 0);
    EXPECT_EQ(qel::LastFailure().text, "0 of 1 approvals are there");
    EXPECT_EQ(Outcome(signing.Sign(Request(), "secret word")), "entry 9");
    EXPECT_EQ(signing.MayBeFinal(kCabinet, 2), 1);
    EXPECT_EQ(signing.MayBeFinal(kCabinet, 3), 0);

    const qel::TrailEntry entry = people.Entry(9);
    const std::optional<qel::PersonStatement> statement = qel::ReadPersonStatement(entry.statement);
    ASSERT_TRUE(statement);
    EXPECT_EQ(Line({statement->name, statement->user, statement->meaning, statement->reportSha256 == HashOf("report"),
                    statement->time <= entry.time, statement->time > entry.time - 60'000}),
              "\xC5\x8Cta \"O\" ota approved 1 1 1");
    EXPECT_NE(statement->nonce, qel::ReadPersonStatement(people.Entry(8).statement)->nonce);
    EXPECT_EQ(Line({people.Entry(7).action, people.Entry(7).user, people.Entry(7).reason}),
              "signature refused ota the password is wrong");
    EXPECT_EQ(people.Read("t").find("ecret word"), std::string::npos);
    EXPECT_EQ(people.Found({.reviewerMayApprove = true}) + people.Findings(people.CheckWithHead()), "");
}

TEST(Signing, RefusesBeforeItAsksForThePasswordAndWritesNothingThatWasTyped) {
    const auto never = [] {
        qel::SigningRules rules;
        rules.mayGive = [](std::string_view, std::string_view, std::int64_t) { return false; };
        return rules;
    };
    const std::string name = "the name is not that of the key", key = "the key was not announced for this user";
    for (const auto& [user, seed, rules, typed, refusal, known] :
         Cases<const char*, int, qel::SigningRules, const char*, std::string, const char*>{
             {"sato", 13, {}, "right", name, ""},  // the password in the place of the name
             {"sato", 13, {}, "mori", name, "mori"},
             {"sato", 13, {}, "sato ", name, ""},
             {"ota", 14, {}, "ota", key, ""},
             {"sato", 12, {}, "sato", key, "sato"},
             {"sato", 13, never(), "sato", "the user may not sign as approved", "sato"},
         }) {
        Session s(user, seed, rules);
        EXPECT_EQ(Outcome(s.signing.Sign(Request(), typed, "right")), kRefused + refusal);
        EXPECT_EQ(Line({s.Entry(6).action, s.Entry(6).user, s.person->tries, s.Entry(6).reason}),
                  Line({"signature refused", known, 0, refusal}));
        EXPECT_EQ(s.Found(), "");
    }
}

TEST(Signing, EndsWithTheThirdRefusal) {
    Session s;
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "sato", "wrong")), kRefused + "the password is wrong");
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "sato", "right")), "entry 7");
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "")), kRefused + "the password is wrong");
    EXPECT_FALSE(s.signing.HasEnded());
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "mori", "right")), kRefused + "the name is not that of the key");
    EXPECT_TRUE(s.signing.HasEnded());
    const std::string before = s.Read("t");
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "sato", "right")), kState + "refusals have ended the session");
    EXPECT_EQ(Line({s.Read("t") == before, s.person->tries, s.signing.MayBeFinal(kCabinet, 2)}), "1 3 1");
}

TEST(Signing, EndsWhereTheSignerHasAnotherKeyThanAtFirst) {
    Session s;
    s.person->Become("mori", 11);
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "Mori", "right")), "entry 6");  // nobody had signed
    s.person->Become("sato", 13);
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "right")),
              kRefused + "the key is not the one that the session began with");
    s.person->Become("mori", 11);
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "mori", "right")), kState + "refusals have ended the session");
    EXPECT_EQ(Line({s.Actions().ends_with("|signature|signature refused|"), s.person->tries}), "1 1");
}

TEST(Signing, BelievesNoTrailThatIsNotTheOneThatWasAppendedTo) {
    for (const auto& [from, to, reason] : Cases<std::string, const char*, const char*>{
             {"\"user\":\"kato", "\"user\":\"Kato", "the trail has another entry than was appended"},
             {"\"user\":\"mori", "\"user\":\"Mori", "an entry of the trail is not the one that follows"},
             {"\"user\":\"mori", "\"user\": \"mori",
              "the trail has no whole line where its last acknowledged entry should end"},
         }) {
        Session s;
        std::string text = s.Read("t");
        s.Write("t", text.replace(text.find(from), from.size(), to));
        EXPECT_EQ(Outcome(s.signing.Sign(Request(), "sato", "right")), kData + reason) << to;
        EXPECT_EQ(s.person->tries, 0);
    }
    Session s;
    const std::string whole = s.Read("t");
    qel::TrailEntry forged = s.Entry(4);
    EXPECT_EQ(s.signing.MayBeFinal(kCabinet, 2), 0);
    s.Write("t", s.Lines()[0]);
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "sato", "right")),
              kData + "entries are missing: the trail ends before entry 5, which was acknowledged");
    forged.number = 6;
    forged.user = "ota";
    forged.object = ByteSigner(14).PublicKey();
    forged.previous = s.trail.Last().hash;
    std::string changed = ByteSigner(1).Line(forged);
    changed.replace(changed.find("ota"), 3, "eda");
    for (const std::string& line : {ByteSigner(2).Line(forged), changed}) {
        s.Write("t", whole + line);
        EXPECT_EQ(Outcome(s.signing.Sign(Request(), "sato", "right")),
                  kData +
                      "entries are missing or foreign: what comes after entry 5 does not follow it, or nobody who "
                      "may has signed it");
    }
    s.Write("t", whole);
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "sato", "right")), "entry 6");
}

TEST(Signing, WritesNothingForWhatNobodyIsToBlameFor) {
    Session s;
    const std::string before = s.Read("t");
    EXPECT_EQ(Outcome(s.signing.Sign(Request(""), "sato", "right")),
              kData + "a statement needs a meaning of 1 to 256 bytes that can be shown");
    s.person->isBroken = true;
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "sato", "right")),
              kData + "the person's key has made a signature that is not right");
    EXPECT_EQ(s.Read("t"), before);
    const TrailFolder folder;
    qel::Trail closed(folder.Settings(), std::make_shared<ByteSigner>(1));
    qel::Signing signing(closed, s.person, {});
    EXPECT_EQ(Outcome(signing.Sign(Request(), "sato", "right")), kData + "the trail is not open");
    qel::Signing nobody(s.trail, nullptr, {});
    EXPECT_EQ(Outcome(nobody.Sign(Request(), "sato", "right")), kState + "no person's key is open");
}

TEST(Signing, ReturnsWhenItsEntryIsAcknowledgedHoweverTheTrailIsFlushed) {
    for (const qel::TrailFlush flush : {qel::TrailFlush::kEach, qel::TrailFlush::kGroup, qel::TrailFlush::kCaller}) {
        People people;
        people.Do("kato registers");
        qel::Trail trail(people.Settings(flush), std::make_shared<ByteSigner>(1));
        ASSERT_EQ(trail.Open(), 1);
        qel::Signing signing(trail, std::make_shared<QuickPerson>("sato", 13), {});
        EXPECT_EQ(Outcome(signing.Sign(Request(), "sato", "wrong")), kRefused + "the password is wrong");
        EXPECT_EQ(trail.Last().number, 6);
        EXPECT_EQ(Outcome(signing.Sign(Request(), "sato", "right")), "entry 7");
        EXPECT_EQ(trail.Last().number, 7);
        EXPECT_EQ(Outcome(signing.Sign(Request(), "right")), "entry 8");
    }
}

// While somebody types, others append: nothing is locked.
TEST(Signing, CountsForNothingWhereAnotherProgramWasQuicker) {
    Session s;
    qel::Trail other(s.Settings(), std::make_shared<ByteSigner>(1));
    ASSERT_EQ(other.Open(), 1);
    qel::TrailRecord end = Record("person key ended", ByteSigner(13).PublicKey());
    end.user = "sato";
    s.person->meanwhile = [&] { EXPECT_TRUE(other.Append(end)) << qel::LastFailure().text; };
    EXPECT_EQ(Outcome(s.signing.Sign(Request(), "sato", "right")),
              kRefused + "another program was quicker: the key has ended");
    EXPECT_EQ(Line({s.Entry(7).action, s.Found(), s.signing.MayBeFinal(kCabinet, 2)}), "signature ended 7 0");
    EXPECT_FALSE(s.signing.HasEnded());
}

TEST(Signing, MayBeFinalAsAllProgramsHaveSigned) {
    qel::SigningRules two;
    two.approvals = 2;
    for (const auto& [steps, why] : Cases<const char*, const char*>{
             {"", "1 of 2 approvals are there"},
             {"nakano approved", ""},
             {"sato approved", "1 of 2 approvals are there"},
             {"nakano:11 approved", "1 of 2 approvals are there"},
             {"nakano:11 approved, nakano approved", ""},
             {"nakano approved, mori rejected", "the version was rejected"},
             {"nakano approved, mori registers abd", "the version was changed after it was registered"},
         }) {
        Session s("sato", 13, two);
        ASSERT_EQ(Outcome(s.signing.Sign(Request(), "sato", "right")), "entry 6");
        s.Do(steps);
        EXPECT_EQ(s.signing.MayBeFinal(kCabinet, 2), *why == '\0') << steps;
        EXPECT_EQ(qel::LastFailure().text, why) << steps;
    }
    Session s;
    EXPECT_EQ(s.signing.MayBeFinal(kCabinet, 3), 0);
    EXPECT_EQ(qel::LastFailure().text, "the version was not registered");
    EXPECT_EQ(Line({s.signing.MayBeFinal("x", 2), qel::LastFailure().kind == qel::FailureKind::kData}), "0 1");
}

TEST(SignatureBlock, HasTheSignaturesThatCountAndSaysWhatIsMissing) {
    People people;
    people.Do("mori begins abd, mori registers, nakano reviewed, mori approved, sato:12 approved");
    const qel::TrailEntry entry = people.Entry(6);
    qel::RecordedVersion version{.version = 2,
                                 .state = qel::RecordedState::kRecorded,
                                 .user = "mori",
                                 .time = entry.time,
                                 .reason = "why\n",
                                 .size = 3,
                                 .sha256 = HashOf("abc"),
                                 .entry = 6,
                                 .entryHash = people.Entry(7).previous};
    const auto lines = [&](const qel::SigningRules& rules = {}) {
        const auto block = qel::ReadSignatureBlock(people.trail, kCabinet, version, rules);
        std::string text = block ? "" : qel::LastFailure().text;
        for (const std::string& line : block ? block->Lines() : std::vector<std::string>()) text += line + '|';
        return text;
    };
    const std::string registered = "entry 6, " + qel::TrailTimeText(entry.time) + ", mori: registered, why?|",
                      signedAt = qel::TrailTimeText(people.Entry(1).time - 60'000),
                      reviewed = "entry 7, " + signedAt + ", nakano: reviewed, Mori Akiko|";
    const std::string places = "version 2 of " + kCabinet + "|SHA-256 " + version.sha256 +
                               "|hash of entry 6: " + version.entryHash + "|trail " + entry.trailId + "|installation " +
                               ByteSigner(1).Key().Fingerprint() + '|';
    EXPECT_EQ(lines(), registered + reviewed + "not final: 0 of 1 approvals are there|" + places);
    qel::PersonStatement other = people.Of("sato");
    other.sha256 = HashOf("abd");
    people.Put(other, Signed(other, 13));  // a finding, which spoils nothing
    people.Do("sato approved");
    const std::string approved = "entry 11, " + signedAt + ", sato: approved, Mori Akiko|";
    EXPECT_EQ(lines(), registered + reviewed + approved + places);
    version.state = qel::RecordedState::kChanged;
    const std::string changed =
        "changed since the first entry|not final: the version is not what was recorded|" + places;
    EXPECT_EQ(lines(), registered + reviewed + approved + changed);
    version.state = qel::RecordedState::kRecorded;
    people.Do("mori registers abd");
    EXPECT_EQ(lines(), registered + reviewed + approved + changed);
    version.entryHash = HashOf("another trail");
    EXPECT_EQ(lines(), "the version's entry is not in the trail");
    version.entry = 0;
    EXPECT_EQ(lines(), "the version was not recorded");
}
