#include "forged_trail.h"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "../support/output_of.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/ssh_wire.h"

namespace kind = qel::trail_kind;

namespace {

void Replace(std::string& text, const std::string& from, const std::string& to) {
    const std::size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
}

// Another signature for the last line: @p blob makes it of the bytes of the entry.
void SignLast(Lines& lines, const std::function<std::string(const std::string& part)>& blob) {
    std::string& line = lines.back();
    const std::size_t at = line.find(",\"sig\":\"");
    line = line.substr(0, at) + ",\"sig\":\"" + qel::EncodeBase64(blob(line.substr(0, at) + '}')) + "\"}\n";
}

std::string SignedWith(std::string_view nameSpace, std::string_view hash, const std::string& part) {
    ByteSigner signer(1);
    const std::string digest = hash == "sha512"
                                   ? std::string(reinterpret_cast<const char*>(qel::Sha512(part).data()), 64)
                                   : std::string(reinterpret_cast<const char*>(qel::Sha256(part).data()), 32);
    const std::string toSign =
        qel::SshWriter().Raw("SSHSIG").String(nameSpace).String("").String(hash).String(digest).Bytes();
    const auto bytes = signer.Sign(toSign);
    const std::string inner = qel::SshWriter().String("ssh-ed25519").String(std::span<const std::byte>(bytes)).Bytes();
    return qel::SshWriter()
        .Raw("SSHSIG")
        .Number(1)
        .String(signer.Key().Blob())
        .String(nameSpace)
        .String("")
        .String(hash)
        .String(inner)
        .Bytes();
}

std::string Armoured(const std::string& part) {
    const std::string text = qel::EncodeBase64(SignedWith("qellib10-entry", "sha512", part));
    return "-----BEGIN SSH SIGNATURE-----\n" + text + "\n-----END SSH SIGNATURE-----\n";
}

// A trail of four entries, whom to trust, and what is known of it.
class Sample : public TrailFolder {
public:
    Sample() {
        EXPECT_TRUE(Append({"a\"\\\n\x7F\xC3\xA9", "b", "c"}));
        Write("allowed",
              "# the installation\ninst namespaces=\"qellib10-entry\" " + ByteSigner(1).PublicKey() + " x\n");
        id = Entry(1).trailId;
        head = HashOf(WithoutEnd(Lines().back()));
        key = ByteSigner(1).Key().Fingerprint();
    }
    qel::TrailAnchors Known() const {
        return {.trailId = id, .trustFile = Name("allowed"), .head = head, .headFile = Name("h")};
    }
    /// Exit status and output, without the folder's name.
    std::string Qel(const std::string& arguments) const {
        return OutputOf("cd '" + Posix().native() + "' && " QELLIB10_QEL " trail " + arguments + " 2>&1; echo $?");
    }
    bool IsAcceptedByScript() const {
        return OutputOf("cd '" + Posix().native() + "' && sh " QELLIB10_CHECK_TRAIL " t allowed " + head +
                        " >/dev/null 2>&1; echo $?") == "0\n";
    }
    std::string id, head, key;
};

}  // namespace

// The shell script and the library say the same of every trail; the rows have what the library finds.
TEST(TrailCheck, AgreesWithTheScriptOnChangedTrails) {
    const auto none = [](Lines&) {};
    const auto at = [](std::size_t i, const char* from, const char* to) {
        return [=](Lines& l) { Replace(l[i], from, to); };
    };
    using Change = std::function<void(Lines&)>;
    for (const auto& [what, change, findings] : Cases<const char*, Change, const char*>{
             {"nothing", none, ""},
             {"a text", at(2, "\"b\"", "\"B\""), "changed 3 order 4"},
             {"the last text", at(3, "\"c\"", "\"C\""), "changed 4 missing 4 missing 5"},
             {"exchanged", [](Lines& l) { std::swap(l[1], l[2]); }, nullptr},
             {"exchanged, chained",
              [](Lines& l) {
                  std::swap(l[1], l[2]);
                  Chain(l);
              },
              nullptr},
             {"one removed", [](Lines& l) { l.erase(l.begin() + 2); }, "order 3 order 3 missing 4"},
             {"one removed, chained",
              [](Lines& l) {
                  l.erase(l.begin() + 2);
                  Chain(l);
              },
              nullptr},
             {"one twice", [](Lines& l) { l.insert(l.begin() + 2, l[2]); }, nullptr},
             {"the first removed", [](Lines& l) { l.erase(l.begin()); }, nullptr},
             {"cut at a line", [](Lines& l) { l.pop_back(); }, "missing 4 missing 4"},
             {"cut in a line", [](Lines& l) { l.back().resize(200); }, "cut 4 missing 4 missing 4"},
             {"no last line end", [](Lines& l) { l.back().pop_back(); }, "cut 4 missing 4 missing 4"},
             {"nothing left", [](Lines& l) { l.clear(); }, "missing 1 missing 1 loose"},
             {"an empty line", [](Lines& l) { l[1] += '\n'; }, nullptr},
             {"a zero byte at the end", [](Lines& l) { l[3].insert(l[3].size() - 1, 1, '\0'); }, nullptr},
             {"a zero byte in a text", [](Lines& l) { l[2].insert(l[2].find("\"b\"") + 1, 1, '\0'); }, nullptr},
             {"a carriage return", [](Lines& l) { l[3].insert(l[3].size() - 1, 1, '\r'); }, nullptr},
             {"a blank", at(3, ",\"prev\"", ", \"prev\""), nullptr},
             {"a blank at the start", at(3, "{\"format\"", " {\"format\""), nullptr},
             {"an escape of a letter", at(3, "\"c\"", "\"\\u0063\""), nullptr},
             {"an escape in capitals", at(1, "\\u000a", "\\u000A"), nullptr},
             {"a short escape", at(1, "\\u000a", "\\n"), nullptr},
             {"a leading zero", at(3, "\"number\":4", "\"number\":04"), nullptr},
             {"another format", at(3, "\"format\":1", "\"format\":2"), nullptr},
             {"another key", at(3, "\"reason\"", "\"Reason\""), nullptr},
             {"one more key", at(3, ",\"prev\"", ",\"x\":\"\",\"prev\""), nullptr},
             {"a hash in capitals",
              [](Lines& l) {
                  const std::size_t from = l[3].find("\"prev\":\"") + 8;
                  for (std::size_t i = from; i < from + 64; ++i) l[3][i] = static_cast<char>(std::toupper(l[3][i]));
              },
              nullptr},
             {"bits in Base64 that mean nothing",
              [](Lines& l) {
                  std::string& line = l[3];
                  ++line[line.find("==\"}") - 1];
              },
              nullptr},
             {"Base64 without its end", at(3, "==\"}", "\"}"), nullptr},
             {"the signature of another entry",
              [](Lines& l) {
                  const std::size_t sig = l[3].find(",\"sig\"");
                  l[3] = l[3].substr(0, sig) + l[2].substr(l[2].find(",\"sig\""));
              },
              "changed 4 missing 4 missing 5"},
             {"signed for another purpose",
              [](Lines& l) {
                  SignLast(l, [](const std::string& p) { return SignedWith("qellib10-signature", "sha512", p); });
              },
              nullptr},
             {"signed over another hash",
              [](Lines& l) {
                  SignLast(l, [](const std::string& p) { return SignedWith("qellib10-entry", "sha256", p); });
              },
              nullptr},
             {"armoured", [](Lines& l) { SignLast(l, Armoured); }, nullptr},
             {"bytes after the signature",
              [](Lines& l) {
                  SignLast(l, [](const std::string& p) { return SignedWith("qellib10-entry", "sha512", p) + "ab"; });
              },
              nullptr},
             {"signed again, the same", [](Lines& l) { SignAgain(l, 3, 1, [](auto&) {}); }, ""},
             {"another time before", [](Lines& l) { SignAgain(l, 3, 1, [](auto& e) { e.time -= 60'000; }); },
              "clock 4 missing 4 missing 5"},
             {"another trail", [](Lines& l) { SignAgain(l, 3, 1, [](auto& e) { e.trailId = std::string(32, '0'); }); },
              "other 4 missing 4 missing 5"},
             {"another number", [](Lines& l) { SignAgain(l, 3, 1, [](auto& e) { e.number = 5; }); }, nullptr},
             {"by somebody else", [](Lines& l) { SignAgain(l, 3, 2, [](auto&) {}); }, "signer 4 missing 4 missing 5"},
             {"a high number by somebody else",
              [](Lines& l) { SignAgain(l, 3, 2, [](auto& e) { e.number = 1'000'000; }); },
              "order 4 signer 4 missing 4 missing 5"},
             {"all by somebody else", [](Lines& l) { SignAgain(l, 0, 2, [](auto&) {}); }, nullptr},
             {"too long", [](Lines& l) { l[3].insert(l[3].find("\"c\"") + 1, 65'536, 'x'); }, nullptr},
             {"one more by somebody else",
              [](Lines& l) {
                  l.push_back(l[3]);
                  SignAgain(l, 4, 2, [&](auto& e) { e.number = 5, e.previous = HashOf(WithoutEnd(l[3])); });
              },
              "signer 5"},
         }) {
        SCOPED_TRACE(what);
        const Sample sample;
        Lines lines = sample.Lines();
        change(lines);
        sample.Write("t", Joined(lines));
        const std::string found = sample.Findings(sample.Check(sample.Known()));
        if (findings != nullptr) {
            EXPECT_EQ(found, findings);
        } else {
            EXPECT_NE(found, "");
        }
        EXPECT_EQ(sample.IsAcceptedByScript(), found.empty());
    }
}

// Validity of the key, which both read from the same file.
TEST(TrailCheck, AgreesWithSshKeygenOnWhomToTrust) {
    constexpr std::int64_t kTime = 1'800'000'000'999;  // 2027-01-15T08:00:00.999Z
    const std::string key = ByteSigner(1).PublicKey() + '\n';
    for (const auto& [allowed, findings] : Cases<std::string, const char*>{
             {"inst " + key, ""},
             {"!x,inst " + key, ""},
             {"a,b cert-authority " + key + "inst " + key, ""},
             {"inst cert-authority " + key, "signer 1 loose"},
             {"\"a b\" namespaces=\"x,qellib10-*\" " + key, ""},
             {"inst namespaces=\"*,!qellib10-entry\" " + key, "signer 1 loose"},
             {"inst namespaces=\"qellib10-signature\" " + key, "signer 1 loose"},
             {"inst namespaces=\"qellib10-entr?\",valid-after=\"20270115080000Z\" " + key, ""},
             {"inst valid-after=\"20270115080001Z\" " + key, "early 1 loose"},
             {"inst valid-before=\"20270115080000Z\" " + key, ""},
             {"inst valid-before=\"20270115075959Z\" " + key, "ended 1 loose"},
             {"inst valid-before=\"202701150759Z\" " + key + "inst valid-after=\"20270115Z\" " + key, ""},
             {"inst " + ByteSigner(2).PublicKey() + '\n', "signer 1 loose"},
         }) {
        SCOPED_TRACE(allowed);
        Sample sample;
        Lines lines = sample.Lines();
        lines.resize(1);
        SignAgain(lines, 0, 1, [](auto& entry) { entry.time = kTime; });
        sample.Write("t", lines[0]);
        sample.Write("allowed", allowed);
        sample.head = HashOf(WithoutEnd(lines[0]));
        EXPECT_EQ(sample.Findings(sample.Check({.trailId = sample.id, .trustFile = sample.Name("allowed")})), findings);
        EXPECT_EQ(sample.IsAcceptedByScript(), *findings == '\0');
    }
    for (const char* const allowed : {"inst", "inst valid-before=\"20270115\" ssh-ed25519 A", "inst x ssh-ed25519 AAAA",
                                      "inst valid-after=\"20271315Z\" ssh-ed25519 A", "\"inst ssh-ed25519 AAAA"}) {
        const Sample sample;
        sample.Write("allowed", allowed);
        qel::TrailReport report;
        EXPECT_EQ(qel::CheckTrail(sample.Name("t"), {.trustFile = sample.Name("allowed")}, report), 0) << allowed;
        EXPECT_NE(qel::LastFailure().text.find("line 1 of the allowed signers"), std::string::npos);
    }
}

// The same content in another form: nothing after the last line would notice it.
TEST(TrailCheck, ALineHasOneForm) {
    const Sample sample;
    const std::string line = WithoutEnd(sample.Lines().at(3));
    EXPECT_TRUE(qel::ReadEntry(line).IsSigned());
    for (const auto& [from, to] : Cases<const char*, const char*>{
             {"\"c\"", "\"\\u0063\""},
             {"\"number\":4", "\"number\":04"},
             {"\"size\":0", "\"size\":00"},
             {"\"size\":0", "\"size\":-0"},
             {"\"size\":0", "\"size\":0.0"},
             {"\"size\":0", "\"size\": 0"},
             {"\"size\":0,", "\"size\":0,\"size\":0,"},
             {"\"size\":0,\"sha256\":\"\"", "\"sha256\":\"\",\"size\":0"},
             {"Z\",\"clock\"", "+00:00\",\"clock\""},
             {"\"}", "\" }"},
         }) {
        std::string other = line;
        Replace(other, from, to);
        EXPECT_THROW(qel::ReadEntry(other), qel::DataError) << to;
    }
    for (const char* const after : {" ", "\r", "x", "}"}) EXPECT_THROW(qel::ReadEntry(line + after), qel::DataError);
}

TEST(TrailCheck, SaysWhatIsKnownFromElsewhere) {
    const Sample sample;
    const std::string half = "{\"format\":1,";
    const std::string text = sample.Read("t");
    qel::TrailEntry last = sample.Entry(4);
    last.number = 1'000'000;
    const std::string high = ByteSigner(2).Line(last);
    last.number = 5;
    const std::string next = ByteSigner(2).Line(last);
    const std::string other = ByteSigner(2).Key().Fingerprint();
    for (const auto& [anchors, added, findings] : Cases<qel::TrailAnchors, std::string, const char*>{
             {{}, "", "loose"},
             {{.trailId = sample.id}, "", "loose"},
             {{.trustFile = sample.Name("allowed")}, "", "loose"},
             {{.key = sample.key}, "", "loose"},
             {{.atLeast = 4}, "", "loose"},
             {{.trailId = sample.id, .key = sample.key}, "", ""},
             {{.trailId = sample.id, .trustFile = sample.Name("allowed")}, "", ""},
             {{.trailId = std::string(32, '0'), .key = sample.key}, "", "other 1 loose"},
             {{.trailId = sample.id, .trustFile = sample.Name("allowed"), .key = other},
              "",
              "signer 1 signer 2 signer 3 signer 4 loose"},
             {{.key = other}, "", "signer 1 signer 2 signer 3 signer 4 loose"},
             {{.head = sample.head}, "", ""},
             {{.head = std::string(64, '0')}, "", "missing 5 loose"},
             {{.headFile = sample.Name("h")}, "", ""},
             {{.atLeast = 5}, "", "missing 5 loose"},
             {{}, half, "cut 5 loose"},
             {{.trailId = sample.id, .key = sample.key}, half, "cut 5"},
             {{.headFile = sample.Name("h")}, half, "writing"},
             {{.headFile = sample.Name("h")}, high.substr(0, 400), "cut 5"},
             {{.headFile = sample.Name("h")}, next.substr(0, 400), "writing"},
             {{.headFile = sample.Name("h")}, std::string(5, '\0'), "cut 5"},
             {{.headFile = sample.Name("h")}, "x", "cut 5"},
             {{.head = sample.head}, half, "writing"},
             {{.atLeast = 4}, half, "writing loose"},
             {{.atLeast = 5}, half, "cut 5 missing 5 loose"},
             {{.key = sample.key, .atLeast = 9}, high, "order 5 order 5 signer 5 missing 5 loose"},
         }) {
        sample.Write("t", text + added);
        EXPECT_EQ(sample.Findings(sample.Check(anchors)), findings)
            << anchors.trailId << anchors.key << anchors.atLeast;
    }
}

// Readers stop where the first finding is, unless a later entry is known: its hash is that of all before it.
TEST(TrailCheck, WhatCountsEndsBeforeTheFirstFinding) {
    const Sample sample;
    const Lines whole = sample.Lines();
    const std::string three = HashOf(WithoutEnd(whole[2]));
    using Change = std::function<void(Lines&)>;
    for (const auto& [what, change, anchors, number] : Cases<const char*, Change, qel::TrailAnchors, std::size_t>{
             {"nothing", [](Lines&) {}, {}, 4},
             {"a line of another key after what is known",
              [](Lines& l) {
                  l.push_back(l[3]);
                  SignAgain(l, 4, 2, [](auto& entry) { ++entry.number; });
              },
              {.headFile = sample.Name("h")},
              4},
             {"of another key from the third on",
              [](Lines& l) { SignAgain(l, 2, 2, [](auto&) {}); },
              {.headFile = sample.Name("h")},
              2},
             {"a changed one before what is known",
              [](Lines& l) { Replace(l[1], "boottime", "bootTime"); },
              {.head = sample.head},
              1},
             {"the last one torn", [](Lines& l) { l[3].resize(9); }, {.head = three}, 3},
             {"of another key, and known all the same",
              [](Lines&) {},
              {.trustFile = sample.Name("none"), .head = three},
              3},
             {"of another trail", [](Lines&) {}, {.trailId = std::string(32, '0')}, 0},
             {"no entry", [](Lines& l) { l.clear(); }, {}, 0}}) {
        sample.Write("none", "i namespaces=\"qellib10-entry\" " + ByteSigner(2).PublicKey() + '\n');
        Lines lines = whole;
        change(lines);
        sample.Write("t", Joined(lines));
        const qel::TrailReceipt last = sample.Check(anchors).rightUpTo;
        EXPECT_EQ(last.number, number) << what;
        EXPECT_EQ(last.hash, number > 0 ? HashOf(WithoutEnd(lines.at(number - 1))) : "") << what;
    }
}

TEST(TrailCheck, KeysAreThoseThatTrustedEntriesAnnounce) {
    const Sample sample;
    const auto add = [&](int signer, std::string_view action, int key) {
        Lines lines = sample.Lines();
        qel::TrailEntry entry = sample.Entry(lines.size());
        static_cast<qel::TrailRecord&>(entry) = Record(action, key != 0 ? ByteSigner(key).PublicKey() : "");
        ++entry.number;
        entry.previous = HashOf(WithoutEnd(lines.back()));
        sample.Write("t", Joined(lines) + ByteSigner(signer).Line(entry));
        return sample.Findings(sample.Check({.trailId = sample.id, .key = sample.key}));
    };
    EXPECT_EQ(add(1, kind::kKeyAdded, 2), "");
    EXPECT_EQ(add(2, "x", 0), "");
    EXPECT_EQ(add(1, kind::kKeyEnded, 2), "");
    EXPECT_EQ(add(2, kind::kKeyAdded, 3), "ended 8");
    EXPECT_EQ(add(3, "x", 0), "ended 8 signer 9") << "nobody trusted has announced it";
    EXPECT_EQ(add(3, kind::kKeyAdded, 3), "ended 8 signer 9 signer 10") << "it cannot announce itself";
}

TEST(TrailCheck, HostileFilesGiveABoundedFinding) {
    using S = const Sample&;
    for (const auto& [what, make, findings] : Cases<const char*, std::function<void(S)>, const char*>{
             {"no line end", [](S s) { s.Write("t", std::string(200'000, 'x')); }, "malformed 1 loose"},
             {"gigabytes that are not there", [](S s) { std::filesystem::resize_file(s.Posix("t"), 50'000'000'000); },
              "malformed 5 loose"},
             {"a zero byte", [](S s) { s.Write("t", std::string("\0\n", 2)); }, "malformed 1 loose"},
             {"a pipe",
              [](S s) {
                  std::filesystem::remove(s.Posix("t"));
                  ::mkfifo(s.Posix("t").c_str(), 0600);
              },
              nullptr},
             {"a device",
              [](S s) {
                  std::filesystem::remove(s.Posix("t"));
                  std::filesystem::create_symlink("/dev/zero", s.Posix("t"));
              },
              nullptr},
             {"a folder",
              [](S s) {
                  std::filesystem::remove(s.Posix("t"));
                  std::filesystem::create_directory(s.Posix("t"));
              },
              nullptr},
             {"no file", [](S s) { std::filesystem::remove(s.Posix("t")); }, nullptr},
         }) {
        const Sample sample;
        make(sample);
        qel::TrailReport report;
        const int read = qel::CheckTrail(sample.Name("t"), {}, report);
        EXPECT_EQ(read != 0 ? sample.Findings(report) : "refused", findings != nullptr ? findings : "refused") << what;
    }
    const Sample sample;
    std::string lines;
    for (int i = 0; i < 5000; ++i) lines += "x\n";
    sample.Write("t", lines);
    EXPECT_EQ(sample.Check().findings.size(), 1000u);
}

TEST(QelTrail, ListsAndVerifies) {
    const Sample sample;
    const std::string end = "trail " + sample.id + ", last entry " + sample.head + '\n';
    const std::string last = "entry 4, nothing later known\n" + end;
    const std::string loose = "4 entries: consistent, not anchored: ";
    for (const auto& [arguments, expected] : Cases<std::string, std::string>{
             {"verify t",
              loose + "no key is given that is known from elsewhere: anybody can make such a trail\n" + last + "11\n"},
             {"verify t --trust allowed",
              loose + "the trail's ID is not given: it may be another trail of the same keys\n" + last + "11\n"},
             {"verify t --key " + sample.key + " --trail " + sample.id, "4 entries: consistent\n" + last + "0\n"},
             {"verify t --head-file h --at-least 5", "t: entry 5, byte " + std::to_string(sample.Read("t").size()) +
                                                         ": missing: entry 5 is missing\n4 entries: 1 finding\n" + end +
                                                         "15\n"},
             {"verify t --head-file none", "qel: none: file not found\n5\n"},
             {"verify none", "qel: none: file not found\n5\n"},
             {"verify t --trust t", "qel: t: line 1 of the allowed signers: has no key\n1\n"},
             {"show t 5", "qel: t: has no entry 5\n15\n"},
             {"show t " + sample.head + " | sed -n '2p;/^hash/p'", "number: 4\nhash: " + sample.head + "\n0\n"},
         }) {
        EXPECT_EQ(sample.Qel(arguments), expected) << arguments;
    }
    const std::string list = sample.Qel("list t");
    EXPECT_NE(list.find(": a\"\\??\xC3\xA9\n"), std::string::npos) << list;
    EXPECT_EQ(OutputOf("cd '" + sample.Posix().native() +
                       "' && " QELLIB10_QEL " trail list t --json | grep -c '\"user\":\"mori\"'"),
              "3\n");
    EXPECT_NE(sample.Qel("verify t --json --head " + sample.head).find("\"anchored\": true"), std::string::npos);
    EXPECT_NE(sample.Qel("verify t --json --at-least 9").find("\"lastMissing\": 9"), std::string::npos);
    EXPECT_NE(OutputOf("cd '" + sample.Posix().native() +
                       "' && QELLIB10_ALLOWED_SIGNERS=allowed " QELLIB10_QEL " trail verify t --trail " + sample.id)
                  .find("4 entries: consistent\n"),
              std::string::npos);
    sample.Write("t", sample.Read("t") + "{");
    EXPECT_NE(sample.Qel("list t").find("qel: t: the trail ends within a line\n"), std::string::npos);
    EXPECT_NE(sample.Qel("verify t --head-file h").find("another entry is still being written\n"), std::string::npos);
    Lines lines = sample.Lines();
    for (const auto& [change, status] : Cases<std::function<void(Lines&)>, const char*>{
             {[](Lines& l) { Replace(l[3], "\"c\"", "\"d\""); }, "6"},
             {[](Lines&) {}, "7"},
             {[](Lines& l) { l.erase(l.begin() + 1); }, "8"},
             {[](Lines& l) { Replace(l[1], "\"format\":1", "\"format\":2"); }, "9"},
             {[](Lines& l) { SignAgain(l, 3, 2, [](auto&) {}); }, "12"},
             {[](Lines& l) { SignAgain(l, 3, 1, [](auto& e) { e.time -= 60'000; }); }, "14"},
             {[](Lines& l) { SignAgain(l, 3, 1, [](auto& e) { e.trailId = std::string(32, '0'); }); }, "25"},
         }) {
        Lines changed = lines;
        if (*status != '7') changed.pop_back();
        change(changed);
        sample.Write("t", Joined(changed));
        const std::string answer = sample.Qel("verify t --key " + sample.key);
        EXPECT_EQ(answer.substr(answer.rfind('\n', answer.size() - 2) + 1), std::string(status) + '\n') << answer;
    }
}
