#include "stamp_folder.h"

#include "qellib10/platform/error.h"
#include "qellib10/record/trail_doubts.h"

namespace kind = qel::trail_kind;

namespace {

qel::TrailRecord OfKey(std::string_view action, int key, const std::string& from = "") {
    qel::TrailRecord record = Record(action, ByteSigner(key).PublicKey());
    record.after = from;
    return record;
}

std::string Named(std::initializer_list<int> keys) {
    std::string allowed;
    for (const int key : keys) allowed += "inst " + ByteSigner(key).PublicKey() + '\n';
    return allowed;
}

}  // namespace

TEST(RevokedKey, SignsNothingMore) {
    StampFolder trail;
    ASSERT_TRUE(trail.Append({"a"}));
    auto second = std::make_shared<ByteSigner>(2);
    qel::Trail first(trail.Settings(), std::make_shared<ByteSigner>(1)), other(trail.Settings(), second);
    ASSERT_EQ(first.Open(), 1);
    ASSERT_TRUE(first.Append(OfKey(kind::kKeyAdded, 2)));
    const std::string whole = trail.Read("t");
    trail.PutBack(whole);
    trail.Add(OfKey(kind::kKeyRevoked, 1, "3"));
    EXPECT_EQ(other.Open(), 0) << "by itself, written past Append";
    trail.PutBack(whole);
    ASSERT_EQ(other.Open(), 1);
    for (const char* const from : {"", "0", "01", "-1", "x", "5", "99999999999999999999"})
        EXPECT_FALSE(other.Append(OfKey(kind::kKeyRevoked, 1, from))) << from;
    qel::TrailRecord unexplained = OfKey(kind::kKeyRevoked, 1, "3");
    unexplained.reason = "";
    EXPECT_FALSE(other.Append(unexplained));
    EXPECT_TRUE(other.Append(OfKey(kind::kKeyRevoked, 1, "3")));
    EXPECT_FALSE(other.Append(OfKey(kind::kKeyAdded, 1))) << "it cannot come back";
    EXPECT_FALSE(first.Append(Record("b")));
    EXPECT_FALSE(trail.Append({"b"}));
    EXPECT_FALSE(other.Append(OfKey(kind::kKeyRevoked, 2, "3"))) << "the last one";
}

// Key 1 has started the trail and was stolen; it was safe until entry 7.
TEST(RevokedKey, LeavesOnlyEntriesThatWereThereBefore) {
    const Authority& tsa = Authority::Only();
    StampFolder trail;
    trail.Start();
    trail.Add(OfKey(kind::kKeyAdded, 2));
    trail.Add(Record("a"));
    trail.Write("before.tsr", trail.Answer());
    trail.Add(trail.Stamp(trail.Read("before.tsr")));
    const std::string hash3 = HashOf(trail.Lines()[2].substr(0, trail.Lines()[2].size() - 1));
    trail.Add(Record("b"), 2);
    trail.Add(Record("c"));
    const std::string hash6 = trail.Hash();
    trail.Add(Record("the thief's"));
    trail.Add(OfKey(kind::kKeyAdded, 3));
    trail.Add(Record("the thief's"), 3);
    trail.Write("later.tsr", tsa.Answer(trail.RequestOf(), "tsa", "2 minutes"));
    const std::string hash9 = trail.Hash();
    trail.Add(OfKey(kind::kKeyRevoked, 1, "7"), 2);
    trail.Add(Record("d"), 2);
    trail.Add(Record("e"), 3);
    trail.Add(Record("f"), 1);
    trail.Write("both", Named({1, 2}));
    trail.Write("three", Named({1, 2, 3}));
    const std::string id = qel::TrailReader().Open("") == 0 ? trail.Entry(1).trailId : "";
    const std::string key = ByteSigner(1).Key().Fingerprint(), both = trail.Name("both"), ca = tsa.Ca();
    const std::string later = "revoked 7 revoked 8 revoked 9 signer 12 revoked 13";
    const std::string unproven = "revoked 1 revoked 2 revoked 3 revoked 4 ", all = unproven + "revoked 5 revoked 6 ";
    using Anchors = qel::TrailAnchors;
    for (const auto& [what, anchors, findings] : Cases<const char*, Anchors, std::string>{
             {"key 1 alone says that key 2 is right",
              {.trailId = id, .key = key},
              all + "revoked 7 revoked 8 revoked 9 revoked 10 revoked 11 signer 12 revoked 13"},
             {"key 2 is known: its entry 5 shows those before",
              {.trailId = id, .trustFile = both},
              "revoked 6 revoked 7 revoked 8 signer 9 signer 12 revoked 13"},
             {"a stamp of entry 3", {.trailId = id, .key = key, .tsaCa = ca}, "revoked 4 revoked 6 " + later},
             {"both",
              {.trailId = id, .trustFile = both, .tsaCa = ca},
              "revoked 6 revoked 7 revoked 8 signer 9 signer 12 revoked 13"},
             {"the hash of the last one before", {.head = hash6}, later},
             {"the hash of the thief's",
              {.head = hash9},
              all + "revoked 7 revoked 8 revoked 9 revoked 10 revoked 11 signer 12 revoked 13"},
             {"a stamp kept elsewhere",
              {.tsaCa = ca, .stamp = trail.Name("before.tsr")},
              "revoked 4 revoked 6 " + later},
             {"a stamp of the thief's",
              {.trustFile = both, .tsaCa = ca, .stamp = trail.Name("later.tsr")},
              "revoked 6 revoked 7 revoked 8 signer 9 signer 12 revoked 13"},
             {"the thief's key is known as good",
              {.trailId = id, .trustFile = trail.Name("three")},
              "revoked 6 revoked 7 revoked 8 revoked 13"},
         })
        EXPECT_EQ(trail.Findings(trail.Check(anchors)), findings) << what;
    std::string broken = trail.Read("t");
    broken.replace(broken.find("\"b\""), 3, "\"B\"");
    trail.Write("t", broken);
    EXPECT_EQ(trail.Findings(trail.Check({.head = hash6})).substr(0, 20), "revoked 1 revoked 2 ")
        << "no chain, no proof";
}

TEST(RevokedKey, CannotComeBackOrTakeOver) {
    const auto findings = [](std::initializer_list<std::pair<qel::TrailRecord, int>> entries) {
        StampFolder trail;
        trail.Start(9);
        for (const auto& [record, key] : entries) trail.Add(record, key);
        return trail.Findings(
            trail.Check({.trailId = trail.Entry(1).trailId, .key = ByteSigner(9).Key().Fingerprint()}));
    };
    const auto add = [](int key) { return OfKey(kind::kKeyAdded, key); };
    const auto revoke = [](int key, const char* from) { return OfKey(kind::kKeyRevoked, key, from); };
    EXPECT_EQ(findings({{add(1), 9}, {Record("a"), 1}, {revoke(1, "3"), 9}, {add(1), 9}}), "revoked 3 malformed 5");
    EXPECT_EQ(findings({{add(1), 9}, {Record("a"), 1}, {Record("b"), 9}, {revoke(1, "5"), 9}}), "") << "9 has seen it";
    EXPECT_EQ(findings({{add(1), 9}, {OfKey(kind::kKeyEnded, 1), 9}, {revoke(1, "2"), 9}}), "") << "after its end";
    EXPECT_EQ(findings({{add(1), 9}, {add(2), 1}, {Record("a"), 2}, {revoke(1, "3"), 9}, {revoke(9, "1"), 2}}),
              "revoked 3 revoked 4 signer 6")
        << "what it has announced";
    EXPECT_EQ(findings({{add(1), 9}, {add(2), 1}, {add(3), 2}, {revoke(1, "3"), 9}, {Record("a"), 3}}),
              "revoked 3 revoked 4 signer 6");
    EXPECT_EQ(findings({{add(1), 9}, {add(2), 1}, {revoke(1, "3"), 9}, {OfKey(kind::kKeyEnded, 2), 9}}), "revoked 3")
        << "it is ended by whoever does not know that it counts for nothing";
    EXPECT_EQ(
        findings(
            {{add(1), 9}, {Record("a"), 1}, {Record("b"), 9}, {OfKey(kind::kKeyEnded, 7), 1}, {revoke(1, "5"), 9}}),
        "malformed 5 revoked 5")
        << "nonsense after it makes nothing doubtful";
    EXPECT_EQ(findings({{add(1), 9}, {add(2), 9}, {revoke(9, "4"), 1}, {revoke(1, "4"), 9}}).substr(0, 9), "revoked 1");
    EXPECT_EQ(findings({{add(1), 9}, {Record("a"), 1}, {Record("b"), 9}, {revoke(1, "4"), 9}, {revoke(1, "3"), 9}}),
              "revoked 3")
        << "the earlier one counts";
    EXPECT_EQ(findings({{add(1), 9}, {Record("a"), 1}, {revoke(1, "3"), 1}, {Record("b"), 1}}), "malformed 4")
        << "by itself, written past Append: it stays good";
}

// Somebody may exchange the file after its first reading, so that a revoked key's entries look like another key's.
TEST(RevokedKey, ATrailThatIsExchangedBetweenItsReadingsIsRefused) {
    StampFolder trail;
    trail.Start();
    trail.Add(Record("a"));
    const std::string text = trail.Read("t");
    std::string changed = text, cut = LinesOf(text).front();
    changed.replace(text.find("mori"), 4, "abet");
    qel::Sha256Sum sum;
    for (const std::string& line : LinesOf(text)) sum.Add(qel::Sha256(line.substr(0, line.size() - 1)));
    const qel::TrailState state{text.size(), sum.End()};
    for (const auto& [bytes, isSame] :
         Cases<std::string, bool>{{text, true}, {text + "x\n", true}, {changed, false}, {cut, false}, {"", false}}) {
        trail.Write("t", bytes);
        const qel::GuardedFile file(trail.Name("t"), qel::GuardedFile::Use::kRead);
        qel::TrailTrust trust("", {});
        const auto read = [&] { qel::FindDoubtful(file, state, trust, {}, [](const auto&) { return true; }); };
        if (isSame) {
            EXPECT_NO_THROW(read()) << bytes;
        } else {
            EXPECT_THROW(read(), qel::DataError) << bytes;
        }
    }
}
