#include <chrono>

#include "signing_folder.h"

namespace {

qel::SigningRules Rules(unsigned approvals, bool needsReview = false, bool authorMayApprove = false) {
    qel::SigningRules rules;
    rules.approvals = approvals;
    rules.approvalNeedsReview = needsReview;
    rules.authorMayApprove = authorMayApprove;
    return rules;
}

}  // namespace

TEST(Signatures, AreWrongWhereTheKeyIs) {
    for (const auto& [steps, found] : Cases<const char*, const char*>{
             {"mori registers, mori author, nakano reviewed, sato approved", ""},
             {"sato approved", ""},
             {"sato:12 approved", "unknown 6"},
             {"sato:14 approved", "unknown 6"},
             {"mori -11, mori author", "ended 7"},
             {"mori author, mori -11", ""},
             {"mori -11, mori +11, mori author", "key 7 ended 8"},
             {"sato +14, sato:14 approved, sato approved", ""},
             {"sato +11, sato:11 approved", "key 6 unknown 7"},
             {"mori -11, sato +11", "key 7"},
             {"mori +11", "key 6"},
             {"sato -11, mori author", "key 6"},
             {"mori -11, mori -11", "key 7"},
             {"? +14", "malformed 6"},
             {"Sato:13 approved, Sato +13", "key 7"},
             {"SATO -13, sato approved", "ended 7"},
             {"ota +14 Mori_Akiko, ota:14 approved", ""},
             {"ota +14 Sato_Ken, ota:14 approved", "name 7"},
         }) {
        People people;
        people.Do("kato registers");
        people.Do(steps);
        EXPECT_EQ(people.Found(), found) << steps;
        EXPECT_EQ(people.Findings(people.CheckWithHead()), "") << steps;
    }
    People people;
    qel::TrailRecord record = Record("person key added", "ssh-rsa AAAA");
    EXPECT_TRUE(people.trail.Append(record));
    EXPECT_EQ(people.Found(), "malformed 5");
}

TEST(Signatures, HaveThePlaceAndTheSignerOfTheirEntry) {
    People people;
    people.Do("mori registers, sato:12 approved");
    qel::SignatureReport report;
    ASSERT_EQ(qel::CheckSignatures(people.Name("t"), {}, report), 1);
    ASSERT_EQ(report.findings.size(), 1u);
    const qel::SignatureFinding& finding = report.findings.front();
    const qel::TrailEntry entry = people.Entry(finding.entry);
    const std::string text = people.Read("t");
    EXPECT_EQ(finding.byte, text.rfind('\n', text.size() - 2) + 1);
    EXPECT_EQ(finding.size, entry.size);
    EXPECT_EQ(finding.sha256, entry.sha256);
    EXPECT_EQ(finding.signer, ByteSigner(1).Key().Fingerprint());
}

TEST(Signatures, AreWrongWhereTheRulesAreNotKept) {
    const qel::SigningRules usual, two = Rules(2), reviewed = Rules(1, true), lax = Rules(1, false, true);
    qel::SigningRules together, strict, satoMay;
    together.reviewerMayApprove = true;
    strict.authorMayReview = false;
    satoMay.mayGive = [](std::string_view user, std::string_view meaning, std::int64_t) {
        return meaning != "approved" || user == "sato";
    };
    qel::SigningRules never;
    never.mayGive = [](std::string_view, std::string_view, std::int64_t time) {
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        return std::chrono::milliseconds(time) < now - std::chrono::seconds(30);  // as what is signed, not its entry
    };
    for (const auto& [rules, steps, found] : Cases<qel::SigningRules, const char*, const char*>{
             {usual, "kato registers, mori author, mori approved", "same 7"},
             {lax, "mori registers, mori author, mori approved", ""},
             {usual, "mori registers, mori approved", "same 6"},
             {usual, "mori begins, ? recovers, mori approved", "same 7"},
             {usual, "mori begins, sato recovers, sato approved", ""},
             {usual, "mori registers, sato registers, mori approved", "same 7"},
             {usual, "mori begins, sato begins, sato registers, mori approved", ""},
             {usual, "kato registers, mori approved, mori author", "same 7"},
             {usual, "kato registers, mori reviewed, mori approved", "same 7"},
             {usual, "kato registers, mori approved, mori reviewed", "same 7"},
             {together, "kato registers, mori reviewed, mori approved", ""},
             {usual, "mori registers, mori reviewed", ""},
             {strict, "mori registers, mori reviewed", "same 6"},
             {usual, "kato registers, mori approved, mori approved", ""},
             {two, "kato registers, mori approved, mori approved", "same 7"},
             {two, "kato registers, mori approved, sato approved", ""},
             {two, "kato registers, sato:12 approved, sato approved", "unknown 6"},  // the wrong one counts for nothing
             {reviewed, "kato registers, mori approved, sato reviewed", "order 6"},
             {reviewed, "kato registers, sato:12 reviewed, mori approved", "unknown 6 order 7"},
             {reviewed, "kato registers, sato reviewed, mori approved", ""},
             {never, "kato registers, mori author", "allowed 6"},
             {satoMay, "kato registers, mori author, nakano approved, sato approved", "allowed 7"},
             {usual, "sato approved, mori registers abd, nakano reviewed", "register 5 version 7"},
             {usual, "mori begins, sato approved, mori registers, sato approved", "register 6"},
             {usual, "mori registers abd, mori registers abc, sato approved", "version 6 version 7"},
             {usual, "mori approved, mori registers", "register 5"},
             {usual, "mori registers abd, sato approved", "version 6"},
             {usual, "Mori registers, mori approved", "same 6"},
             {two, "mori registers, sato approved, Sato:13 approved", "same 7"},
         }) {
        People people;
        people.Do(steps);
        EXPECT_EQ(people.Found(rules), found) << steps;
    }
}

TEST(Signatures, AreWrongWhereTheEntryIs) {
    using S = qel::PersonStatement&;
    for (const auto& [what, change, found] : Cases<const char*, void (*)(S), const char*>{
             {"the same", [](S) {}, ""},
             {"another user", [](S s) { s.user = "mori"; }, "entry 6"},
             {"another cabinet", [](S s) { s.cabinet[1] = 'F'; }, "entry 6"},
             {"another version", [](S s) { s.cabinetVersion = 3; }, "entry 6"},
             {"another size", [](S s) { s.size = 4; }, "entry 6"},
             {"another hash", [](S s) { s.sha256 = HashOf("abd"); }, "entry 6"},
         }) {
        People people;
        people.Do("kato registers");
        qel::PersonStatement statement = people.Of("sato");
        const std::string text = Signed(statement, 13);
        change(statement);
        people.Put(statement, text);
        EXPECT_EQ(people.Found(), found) << what;
    }
    People people;
    people.Do("kato registers");
    qel::PersonStatement statement = people.Of("sato");
    std::string text = Signed(statement, 13);
    people.Put(statement, text);
    people.Put(statement, text);
    text.replace(text.find("approved"), 8, "rejected");
    people.Put(statement, text);
    people.Put(statement, text + ' ');
    people.Put(statement, "");
    statement.trailId = std::string(32, '0');
    statement.nonce = std::string(32, '0');
    people.Put(statement, Signed(statement, 13));
    statement = people.Of("sato");
    statement.time -= 24 * 3'600'000;
    people.Put(statement, Signed(statement, 13));
    EXPECT_EQ(people.Found(), "repeated 7 changed 8 malformed 9 malformed 10 trail 11 entry 12");
}

TEST(Signatures, AreCheckedPastALineThatIsNoEntry) {
    People people;
    people.Do("kato registers, mori author, mori approved");
    const std::vector<std::string> lines = people.Lines();
    const std::string two = lines[0] + lines[1];
    people.Write("t", two + "x\n" + lines[3] + lines[4] + lines[5] + lines[6]);
    EXPECT_EQ(people.Found(), "malformed 3 same 7");
    people.Write("t", two + std::string(70'000, 'x') + lines[2]);
    EXPECT_EQ(people.Found(), "malformed 3");
    people.Write("t", two + lines[2] + lines[3] + lines[4] + lines[5] + lines[6].substr(0, 100));
    qel::SignatureReport report;
    EXPECT_EQ(qel::CheckSignatures(people.Name("t"), {}, report), 1);
    EXPECT_EQ(Line({report.entries, report.signatures, report.findingCount}), "6 1 0");
    EXPECT_EQ(qel::CheckSignatures(people.Name("no"), {}, report), 0);
    EXPECT_EQ(qel::LastFailure().kind, qel::FailureKind::kFile);
}
