#include "stamp_folder.h"

#include "qellib10/record/key_file_signer.h"

namespace kind = qel::trail_kind;

namespace {

bool IsAccepted(const std::string& answer, const std::string& request) {
    return qel::CheckStamp(answer, request, Authority::Only().Ca()).has_value();
}

}  // namespace

// Ours and openssl say the same of every answer, but where the table says what openssl lets pass.
TEST(TimeStamp, AgreesWithOpensslOnAnswers) {
    const Authority& tsa = Authority::Only();
    StampFolder trail;
    trail.Start();
    const std::string first = trail.RequestOf();
    trail.Add(Record("a"));
    const std::string request = trail.RequestOf(), again = trail.RequestOf(2);
    const std::string good = tsa.Answer(request);
    const std::string now = std::to_string(std::time(nullptr)), in2020 = "1579046400", in2021 = "1610668800";
    const std::string other = tsa.Query(trail.Hash() + " -sha256"), sha512 = tsa.Query(trail.Hash() + trail.Hash());
    enum Side { kNeither, kBoth, kOpenssl };
    for (const auto& [what, answer, asked, time, side] :
         Cases<const char*, std::string, std::string, std::string, Side>{
             {"good", good, request, now, kBoth},
             {"another entry", tsa.Answer(first), request, now, kNeither},
             {"an older request", tsa.Answer(again), request, now, kNeither},
             {"of another authority", tsa.Answer(request, "foreign"), request, now, kNeither},
             {"ended since", tsa.Answer(request, "short", "2020-01-15 00:00:00"), request, in2020, kBoth},
             {"ended by then", tsa.Answer(request, "short", "2021-01-15 00:00:00"), request, in2021, kNeither},
             {"not for stamps", tsa.SignedAgain(good, "plain"), request, now, kNeither},
             {"for more than stamps", tsa.SignedAgain(good, "both"), request, now, kNeither},
             {"signed again", tsa.SignedAgain(good, "tsa"), request, now, kBoth},
             {"refused", tsa.Answer(request, "tsa", "", "strict"), request, now, kNeither},
             {"without the certificate", tsa.Answer(other), other, now, kNeither},
             {"over SHA-512", tsa.Answer(sha512), sha512, now, kOpenssl},
             {"empty", "", request, now, kNeither},
             {"the request", request, request, now, kNeither},
             {"its start", good.substr(0, good.size() - 1), request, now, kNeither},
             {"bytes after it", good + "x", request, now, kOpenssl},
             {"signed over SHA-1", tsa.Answer(request, "tsa", "", "weak"), request, now, kOpenssl},
         }) {
        EXPECT_EQ(IsAccepted(answer, asked), side == kBoth) << what << ": " << qel::LastFailure().text;
        EXPECT_EQ(tsa.IsVerified(answer, asked, time), side != kNeither) << what << ' ' << answer.size();
    }
    EXPECT_FALSE(IsAccepted(std::string(46'081, 'x'), request));
    EXPECT_NE(qel::LastFailure().text.find("longer than 46080 bytes"), std::string::npos);
    const auto stamp = qel::CheckStamp(good, request, tsa.Ca());
    ASSERT_TRUE(stamp);
    EXPECT_EQ(stamp->sha256, trail.Hash());
    EXPECT_NEAR(static_cast<double>(stamp->time), 1000.0 * std::stod(now), 60'000.0);
    EXPECT_EQ(stamp->accuracy, 1000);
}

TEST(TimeStamp, NoChangedBitMakesWhatOpensslRefuses) {
    StampFolder trail;
    trail.Start();
    const std::string request = trail.RequestOf(), good = Authority::Only().Answer(request);
    const auto stamp = qel::CheckStamp(good, request, Authority::Only().Ca());
    const std::string now = std::to_string(std::time(nullptr));
    ASSERT_TRUE(stamp);
    int accepted = 0;
    for (std::size_t bit = 0; bit < 8 * good.size(); ++bit) {
        std::string changed = good;
        changed[bit / 8] ^= static_cast<char>(1 << bit % 8);
        const auto read = qel::CheckStamp(changed, request, Authority::Only().Ca());
        if (!read) continue;  // those that nothing signs: versions, and names of algorithms that are known without
        EXPECT_EQ(read->time, stamp->time) << bit;
        EXPECT_TRUE(++accepted % 8 != 0 || Authority::Only().IsVerified(changed, request, now)) << bit;
    }
    EXPECT_LT(accepted, 150);
    for (std::size_t size = 0; size < good.size(); ++size) EXPECT_FALSE(IsAccepted(good.substr(0, size), request));
    for (std::size_t size = 0; size < request.size(); ++size) EXPECT_FALSE(IsAccepted(good, request.substr(0, size)));
}

TEST(TimeStamp, AnEntrysStampIsChecked) {
    const Authority& tsa = Authority::Only();
    StampFolder trail;
    trail.Start();
    trail.Add(Record("a"));
    const qel::TrailRecord ofA = trail.Stamp(trail.Answer());
    trail.Add(Record("b"));
    const std::string start = trail.Read("t"), request = trail.RequestOf(), answer = tsa.Answer(request);
    const qel::TrailRecord good = trail.Stamp(answer);
    const auto at = [&](const char* when) { return trail.Stamp(tsa.Answer(request, "tsa", when)); };
    const auto with = [&](const std::function<void(qel::TrailRecord&)>& change) {
        qel::TrailRecord record = good;
        change(record);
        return record;
    };
    for (const auto& [what, record, checked, unchecked] :
         Cases<const char*, qel::TrailRecord, const char*, const char*>{
             {"good", good, "3", ""},
             {"of an entry before", ofA, "2", ""},
             {"of another number", with([](auto& r) { r.object = "2"; }), "stamp 40", "stamp 4"},
             {"of no number", with([](auto& r) { r.object = "03"; }), "stamp 40", "stamp 4"},
             {"of another place", with([&](auto& r) { r.size = ofA.size; }), "stamp 40", "stamp 4"},
             {"of a later place", with([&](auto& r) { r.size = 1'000'000; }), "stamp 40", "stamp 4"},
             {"of another hash", with([&](auto& r) { r.sha256 = ofA.sha256; }), "stamp 40", "stamp 4"},
             {"of another entry", with([&](auto& r) { r.statement = ofA.statement; }), "stamp 40", "stamp 4"},
             {"no Base64", with([](auto& r) { r.statement.pop_back(); }), "stamp 40", "stamp 4"},
             {"nothing", with([](auto& r) { r.statement = ""; }), "stamp 40", "stamp 4"},
             {"of others", trail.Stamp(tsa.Answer(request, "foreign")), "stamp 40", ""},
             {"too early", at("10 minutes ago"), "stamp 40", "stamp 4"},
             {"early", at("2 minutes ago"), "3", ""},
             {"late", at("2 minutes"), "3", ""},
             {"too late", at("10 minutes"), "stamp 40", "stamp 4"},
         }) {
        trail.PutBack(start);
        trail.Add(record);
        EXPECT_EQ(trail.Findings(trail.Check({.head = trail.Hash()})), unchecked) << what;
        const qel::TrailReport report = trail.Check({.head = trail.Hash(), .tsaCa = tsa.Ca()});
        EXPECT_EQ(trail.Findings(report) + std::to_string(report.stamped), checked) << what;
    }
}

TEST(QelStamp, AsksAppendsAndVerifies) {
    const Authority& tsa = Authority::Only();
    StampFolder folder;
    ASSERT_EQ(OutputOf("ssh-keygen -q -t ed25519 -N '' -f '" + folder.Posix("key").native() + "'"), "");
    auto signer = std::make_shared<qel::KeyFileSigner>();
    ASSERT_EQ(signer->Load(folder.Name("key")), 1);
    qel::Trail trail(folder.Settings(), signer);
    ASSERT_TRUE(trail.Open() != 0 && trail.Append(Record("a")));
    const auto qel = [&](const std::string& arguments) {
        return OutputOf("cd '" + folder.Posix().native() + "' && " QELLIB10_QEL " " + arguments + " 2>&1; echo $?");
    };
    const std::string ca = " --tsa-ca '" + qel::ToPosixPath(tsa.Ca()) + "'";
    const std::string other = " --tsa-ca '" + qel::ToPosixPath(tsa.Ca("other.pem")) + "'";
    const std::string append = "stamp t --request q --answer a --signer-key key --head-file h --user mori";
    EXPECT_EQ(qel("stamp t --request q --entry 3"), "qel: t: the trail has no entry 3\n15\n");
    EXPECT_EQ(qel("stamp t --request first --entry 1") + qel("stamp t --request q"), "0\n0\n");
    EXPECT_EQ(qel("stamp t --request q"), "qel: q: exists; --force replaces it\n1\n");
    folder.Write("a", tsa.Answer(folder.Read("q")));
    EXPECT_EQ(qel(append + other).substr(0, 38), "qel: a: the time stamp is not accepted");
    EXPECT_EQ(qel(append + " --tsa-ca q"), "qel: q: it is no file of certificates, or one of them is damaged\n1\n");
    EXPECT_EQ(qel("stamp t --request first --answer a --signer-key key --head-file h" + ca),
              "qel: a: the time stamp is not accepted: message imprint mismatch\n17\n");
    EXPECT_EQ(qel(append + ca).substr(0, 22), "entry 3: time stamp of");
    EXPECT_EQ(folder.Entry(3).user + folder.Entry(3).object, "mori2");
    const std::string verified = qel("trail verify t --head-file h" + ca);
    EXPECT_NE(verified.find("3 entries: consistent\nentry 2 was there at 20"), std::string::npos) << verified;
    EXPECT_NE(qel("trail verify t --json --stamp a" + ca).find("\"stamped\": 2,"), std::string::npos);
    EXPECT_EQ(qel("trail verify t --head-file h --stamp q" + ca),
              "qel: q: it is no answer of a time stamping authority\n1\n");
    EXPECT_NE(qel("trail verify t --head-file h" + other).find(": time stamp: "), std::string::npos);
    EXPECT_TRUE(qel("trail verify t --head-file h" + other).ends_with("\n17\n"));
    // By hand, as the page says.
    EXPECT_EQ(
        OutputOf("cd '" + folder.Posix().native() +
                 "' && sed -n '3s/.*\"statement\":\"\\([^\"]*\\)\".*/\\1/p' t | base64 -d >s.tsr && openssl ts -verify "
                 "-digest $(sed -n 2p t | tr -d '\\n' | sha256sum | cut -c -64) -in s.tsr -CAfile '" +
                 qel::ToPosixPath(tsa.Ca()) + "' 2>&1 | tail -1"),
        "Verification: OK\n");
    folder.Write("t", folder.Lines()[0]);
    EXPECT_TRUE(qel("trail verify t --stamp a" + ca).ends_with("\n15\n"));
    EXPECT_EQ(qel("stamp none --request q --answer a --signer-key key --head-file h" + ca),
              "qel: none: is missing\n5\n");
}
