#include <filesystem>
#include <functional>

#include "../support/cases.h"
#include "../support/output_of.h"
#include "forged_trail.h"
#include "recorded_folder.h"

namespace {

// An archive "a" with the trail "a/t", a cabinet of two versions, a sealed file and a report; its head file "h"
// outside.
class Archive : public TempFolder {
public:
    Archive() {
        std::filesystem::create_directories(Posix("a/sub"));
        qel::Trail trail(Settings("t", "h"), std::make_shared<ByteSigner>(1));
        EXPECT_EQ(trail.Open(), 1);
        Register(trail, "one");
        Register(trail, "two");
        Write("a/s", "data");
        EXPECT_EQ(Run("$Q seal a/s >/dev/null"), "");
        Write("a/sub/p", "%PDF-1.4");
        Record(trail, qel::trail_kind::kFileSealed, "s");
        Record(trail, qel::trail_kind::kReportPrinted, "sub/p");
    }

    qel::TrailSettings Settings(const std::string& trail, const std::string& head) const {
        return {.path = Name("a/" + trail), .headPath = Name(head)};
    }
    // Ends the trail and goes on in "a/t2", whose head file is "h2".
    void Continue(int key = 2) const {
        qel::TrailSettings settings = Settings("t2", "h2");
        settings.continues = Name("a/t");
        settings.continuesHeadPath = Name("h");
        qel::Trail trail(settings, std::make_shared<ByteSigner>(key));
        EXPECT_EQ(trail.Open(), 1) << qel::LastFailure().text;
    }
    void Register(qel::Trail& trail, const std::string& bytes, const std::string& cabinet = "a/c") const {
        qel::RecordedCabinet made(trail, {.cabinetPath = Name(cabinet), .recordPath = Name(cabinet + "r")});
        Write("version", bytes);
        EXPECT_TRUE(made.Open() != 0 && made.Register(Name("version"), "mori", "why")) << qel::LastFailure().text;
    }
    void Record(qel::Trail& trail, std::string_view action, const std::string& file) const {
        qel::TrailRecord record = ::Record(action, file);
        const std::string bytes = Read("a/" + file);
        record.size = bytes.size();
        record.sha256 = HashOf(bytes);
        EXPECT_TRUE(trail.Append(record));
    }
    // A trail of somebody else in a folder of the archive, which records another version.
    void AddForeign(const std::string& folder) const {
        std::filesystem::create_directories(Posix("a/" + folder));
        qel::Trail trail(Settings(folder + "x", "x"), std::make_shared<ByteSigner>(9));
        EXPECT_EQ(trail.Open(), 1);
        Register(trail, "three");
    }
    // One that says that it continues another one, and records "a/y".
    void Claim(const std::string& name, int key, const std::string& before) const {
        qel::TrailEntry entry;
        static_cast<qel::TrailRecord&>(entry) = ::Record(qel::trail_kind::kTrailContinued, ByteSigner(key).PublicKey());
        entry.before = before;
        entry.number = 1;
        entry.previous = std::string(64, '0');
        entry.trailId = std::string(32, static_cast<char>('0' + key));
        entry.time = 1'800'000'000'000;
        entry.bootId = "c163102d-1e66-48ff-9173-6b35d61f6c99";
        std::string text = ByteSigner(key).Line(entry);
        entry.previous = HashOf(text.substr(0, text.size() - 1));
        static_cast<qel::TrailRecord&>(entry) = ::Record(qel::trail_kind::kFileSealed, "y");
        entry.number = 2;
        const std::string bytes = Posix("a/y").native();
        if (std::filesystem::exists(bytes)) {
            entry.size = Read("a/y").size();
            entry.sha256 = HashOf(Read("a/y"));
        }
        text += ByteSigner(key).Line(entry);
        Write("a/" + name, text);
    }
    // How a trail is named that ends with the last line of "a/t".
    std::string EndOfTrail() const {
        const std::vector<std::string> lines = LinesOf(Read("a/t"));
        const std::string& last = lines.back();
        const qel::TrailEntry entry = qel::ReadEntry(last.substr(0, last.size() - 1)).entry;
        return entry.trailId + ' ' + std::to_string(lines.size()) + ' ' + HashOf(last.substr(0, last.size() - 1));
    }
    void Trust(std::initializer_list<int> keys) const {
        std::string text;
        for (const int key : keys) text += "i " + ByteSigner(key).PublicKey() + '\n';
        Write("trust", text);
    }
    std::string Run(const std::string& commands) const {
        return OutputOf("cd '" + Posix().native() + "' && export Q=" QELLIB10_QEL " && { " + commands + "; } 2>&1");
    }
    // The status, and the names of all findings.
    std::string Findings(const std::string& command) const {
        return Run(
            "$Q " + command +
            " --json >j; echo $?; sed -n 's/^ *\"finding\": \"\\(.*\\)\".*/\\1/p' j | sort | uniq | tr '\\n' '|'");
    }
};

struct Change {
    const char* what;
    std::function<void(const Archive&)> make;
    const char* known;
    const char* found;
};

void ExpectFound(const std::string& command, const Change& change) {
    const Archive archive;
    change.make(archive);
    EXPECT_EQ(archive.Findings(command + change.known), change.found) << change.what;
}

std::function<void(const Archive&)> By(const char* commands) {
    return [=](const Archive& in) { EXPECT_EQ(in.Run(commands), ""); };
}

}  // namespace

TEST(QelVerifyTree, ComparesAnArchiveWithItsTrail) {
    const char* const head = "--head-file h";
    for (const Change& change :
         {Change{"nothing", By("true"), head, "0\n"},
          Change{"nothing known", By("true"), "", "11\nnot anchored|"},
          Change{"a byte of a version", By("sed -i s/two/twO/ a/c"), head, "27\nchanged|version changed|"},
          Change{"no cabinet", By("rm a/c"), head, "29\nversion missing|"},
          Change{"a version added", By("echo 3 >x; $Q cabinet add a/c x >/dev/null"), head, "16\nnever recorded|"},
          Change{"a copy of the cabinet", By("cp a/c a/d"), head, "16\nnever recorded|"},
          Change{"a name in a renewal record", By("sed -i s/mori/abet/ a/cr"), head, "40\nrenewal differs|"},
          Change{"the last renewal record",
                 [](const Archive& in) { in.Write("a/cr", in.Read("a/cr").substr(0, in.Read("a/cr").size() / 2)); },
                 head, "15\nmissing|"},
          Change{"a renewal record more", By("cat a/cr >>a/cr2; cat a/cr2 >>a/cr; rm a/cr2"), head,
                 "16\nnever recorded|"},
          Change{"bytes after the latest version", By("printf CVH1x >>a/c"), head, "8\ninconsistent|"},
          Change{"the same where a registering was interrupted",
                 [](const Archive& in) {
                     qel::Trail trail(in.Settings("t", "h"), std::make_shared<ByteSigner>(1));
                     EXPECT_EQ(trail.Open(), 1);
                     qel::TrailRecord start = ::Record(qel::trail_kind::kRegistering, "version");
                     start.cabinet = qel::ReadEntry(WithoutEnd(LinesOf(in.Read("a/t"))[1])).entry.cabinet;
                     start.cabinetVersion = 3;
                     start.size = 5;
                     start.sha256 = HashOf("three");
                     EXPECT_TRUE(trail.Append(start)) << qel::LastFailure().text;
                     qel::RecordedCabinet made(trail, {.cabinetPath = in.Name("a/c"), .recordPath = in.Name("a/cr")});
                     EXPECT_EQ(made.Open(), 1);
                     EXPECT_EQ(in.Run("printf CVH1x >>a/c"), "");
                 },
                 head, "0\n"},
          Change{"sealed again", By("echo x >>a/s; $Q seal --new a/s >/dev/null 2>&1"), head,
                 "30\nchanged|file changed|"},
          Change{"another report", By("echo x >>a/sub/p"), head, "30\nfile changed|"},
          Change{"a file removed", By("rm -r a/sub"), head, "31\nfile missing|"},
          Change{"another one sealed", By("echo x >a/y; $Q seal a/y >/dev/null"), head, "32\nseal never recorded|"},
          Change{"another PDF", By("cp a/sub/p a/q"), head, "33\nprint never recorded|"},
          Change{"a PDF after a byte", By("{ echo; cat a/sub/p; } >a/q"), head, "33\nprint never recorded|"},
          Change{"something with its suffix", By("echo x >a/q.PDF"), head, "33\nprint never recorded|"},
          Change{"a sealed cabinet without versions",
                 [](const Archive& in) {
                     {
                         qel::Trail trail(in.Settings("t", "h"), std::make_shared<ByteSigner>(1));
                         qel::RecordedCabinet made(trail, {.cabinetPath = in.Name("a/d"), .recordPath = in.Name("dr")});
                         EXPECT_TRUE(trail.Open() != 0 && made.Open() != 0);
                     }
                     EXPECT_EQ(in.Run("$Q seal a/d >/dev/null"), "");
                 },
                 head, "32\nseal never recorded|"},
          Change{"the archive in a folder", By("mkdir b; mv a b/old; mv b a; cp -r a/old/sub a/old/s a/old/c a"), head,
                 "33\nnever recorded|print never recorded|seal never recorded|"},
          Change{"another job", By("echo '<printjob/>' >a/q"), head, "33\nprint never recorded|"},
          Change{"a link to a cabinet", By("mv a/c c; ln -s ../c a/c"), head, "34\nnot a file|version missing|"},
          Change{"a pipe", By("mkfifo a/q"), head, "34\nnot a file|"},
          Change{"an entry", By("sed -i 2s/why/WHY/ a/t"), head,
                 "33\nchanged|inconsistent|never recorded|print never recorded|seal never recorded|"},
          Change{"a line of another key, for a cabinet that was changed",
                 [](const Archive& in) {
                     in.Run("sed -i s/two/twO/ a/c");
                     Lines lines = LinesOf(in.Read("a/t"));
                     SignAgain(lines, 4, 9, [](auto& entry) { entry.sha256 = HashOf("twO"); });
                     in.Write("a/t", in.Read("a/t") + lines[4]);
                 },
                 head, "27\nchanged|clock|inconsistent|unknown signer|version changed|"},
          Change{"a line of another key that records another file",
                 [](const Archive& in) {
                     in.Run("echo x >>a/sub/p");
                     Lines lines = LinesOf(in.Read("a/t"));
                     lines.push_back(lines.back());
                     SignAgain(lines, lines.size() - 1, 9, [&](auto& entry) {
                         entry.previous = HashOf(WithoutEnd(lines[lines.size() - 2]));
                         ++entry.number;
                         entry.size = in.Read("a/sub/p").size();
                         entry.sha256 = HashOf(in.Read("a/sub/p"));
                     });
                     in.Write("a/t", Joined(lines));
                 },
                 head, "30\nfile changed|unknown signer|"},
          Change{"the last entry", By("sed -i '$d' a/t"), head, "33\nmissing|print never recorded|"},
          Change{"no trail", By("rm a/t"), head, "15\nmissing|"},
          Change{"no trail that is known as one", By("sed -i 's/^./ /' a/t"), head, "15\nmissing|"},
          Change{"its allowed signers", By("$Q trail signers a/t >a/allowed_signers"), head, "0\n"},
          Change{"other allowed signers",
                 By("echo \"i $(ssh-keygen -q -t ed25519 -N '' -f k && cat k.pub)\" "
                    ">a/allowed_signers"),
                 head, "37\nallowed signers|"},
          Change{"another trail", By("true"), "--trail 00000000000000000000000000000000",
                 "33\nnever recorded|other trail|print never recorded|seal never recorded|unknown signer|"},
          Change{"an early key",
                 By("sed -n 's/.*\"object\":\"\\(ssh-ed25519 [^\"]*\\)\".*/i valid-after=\"20990101Z\" \\1/p' a/t >k"),
                 "--trust k", "33\nkey not yet valid|never recorded|print never recorded|seal never recorded|"},
          Change{"a trail of somebody else", [](const Archive& in) { in.AddForeign(""); }, head,
                 "16\nnever recorded|not anchored|"},
          Change{"the same in a folder, for its own files", [](const Archive& in) { in.AddForeign("sub/"); }, head,
                 "33\nnever recorded|not anchored|print never recorded|version missing|"},
          Change{"continued", [](const Archive& in) { in.Continue(); }, "--head-file h2", "0\n"},
          Change{"continued by the same key, which is one line of its allowed signers",
                 [](const Archive& in) {
                     in.Continue(1);
                     in.Write("a/allowed_signers", "installation " + ByteSigner(1).PublicKey() + '\n');
                 },
                 "--head-file h2", "0\n"},
          Change{"the old one removed",
                 [](const Archive& in) {
                     in.Continue();
                     in.Run("mv a/t old");
                 },
                 "--head-file h2", "35\nnever recorded|print never recorded|seal never recorded|trail before missing|"},
          Change{"the old one elsewhere",
                 [](const Archive& in) {
                     in.Continue();
                     in.Run("mv a/t old");
                 },
                 "--head-file h2 --before old", "0\n"},
          Change{"the old one goes on",
                 [](const Archive& in) {
                     in.Continue();
                     qel::Trail trail(in.Settings("t", "h"), std::make_shared<ByteSigner>(1));
                     EXPECT_TRUE(trail.Open() != 0 && trail.Append(::Record("late")));
                 },
                 "--head-file h2", "36\nother trail before|"},
          Change{"the old one is shorter",
                 [](const Archive& in) {
                     in.Continue();
                     in.Run("sed -i '$d' a/t");
                 },
                 "--head-file h2", "36\nmissing|other trail before|print never recorded|"}})
        ExpectFound("verify a ", change);
}

// Anybody can put files into an archive, and write into a trail of their own which other one it continues.
TEST(QelVerifyTree, BelievesOnlyChainsThatAreKnownFromElsewhere) {
    const std::string byId = "--trust trust --trail $(sed -n '1s/.*\"trail\":\"\\([0-9a-f]*\\).*/\\1/p' a/t)";
    const auto sealed = [](const Archive& in) { in.Run("echo x >a/y; $Q seal a/y"); };
    const auto claim = [=](const Archive& in) {
        sealed(in);
        in.Trust({1, 2});
        in.Claim("x", 9, in.EndOfTrail());
    };
    const auto continued = [](const Archive& in) {
        in.Run("cp h old; sed -n '$p' a/t | tr -d '\\n' | sha256sum | cut -c -64 | tr -d '\\n' >last");
        in.Trust({1, 2});
        in.Continue();
    };
    for (const Change& change :
         {Change{"an older copy, and its file",
                 [](const Archive& in) {
                     in.Trust({1});
                     const std::string old = in.Read("a/sub/p");
                     in.Run("cp a/t a/z; echo x >>a/sub/p");
                     qel::Trail trail(in.Settings("t", "h"), std::make_shared<ByteSigner>(1));
                     EXPECT_EQ(trail.Open(), 1);
                     in.Record(trail, qel::trail_kind::kReportPrinted, "sub/p");
                     in.Write("a/sub/p", old);
                 },
                 byId.c_str(), "41\nfile changed|trail copy|"},
          Change{"its ID, and a line of nobody",
                 [](const Archive& in) {
                     in.Continue();
                     in.Run("head -1 a/t >a/zz; echo x >>a/zz");
                 },
                 "--head-file h2", "41\nmalformed|trail copy|"},
          Change{"two that continue each other",
                 [=](const Archive& in) {
                     in.Claim("x", 8, std::string(32, '9') + " 1 " + std::string(64, '0'));
                     in.Claim("x2", 9, std::string(32, '8') + " 1 " + std::string(64, '0'));
                 },
                 "--head-file h", "36\nmissing|not anchored|other trail before|trail before missing|"},
          Change{"one that continues it", claim, "--head-file h", "32\nnot anchored|seal never recorded|"},
          Change{"the same by its ID", claim, byId.c_str(), "32\nseal never recorded|unknown signer|"},
          Change{"what is known of the old one", continued, "--head-file old", "11\nnot anchored|"},
          Change{"an entry of the old one", continued, "--head $(cat last)", "11\nnot anchored|"},
          Change{"the ID of the old one, and a file of the present one",
                 [=](const Archive& in) {
                     continued(in);
                     sealed(in);
                     qel::Trail trail(in.Settings("t2", "h2"), std::make_shared<ByteSigner>(2));
                     EXPECT_EQ(trail.Open(), 1);
                     in.Record(trail, qel::trail_kind::kFileSealed, "y");
                 },
                 byId.c_str(), "11\nnot anchored|"},
          Change{"another one's files in a folder",
                 [=](const Archive& in) {
                     sealed(in);
                     in.Claim("sub/x", 9, "");
                     in.Run("mv a/y a/sub/y");
                 },
                 "--head-file h", "33\nnot anchored|print never recorded|seal never recorded|"}})
        ExpectFound("verify a ", change);
}

// However the same folder and trail are named, and with a list of what was there.
TEST(QelVerifyTree, FindsTheSameHoweverItIsCalled) {
    const auto forge = By("echo x >a/y; $Q seal a/y >/dev/null");
    const auto list = [](const std::function<void(const Archive&)>& then) {
        return [=](const Archive& in) {
            in.Run("$Q verify a --head-file h --save-list l");
            then(in);
        };
    };
    for (const Change& change :
         {Change{"the trail is named, too", forge, "a/t a --head-file h", "32\nintact|seal never recorded|"},
          Change{"the same after the folder", forge, "a ./a/t --head-file h", "32\nintact|seal never recorded|"},
          Change{"only some files, and the trail", By("true"), "a/c a/s a/cr a/t --head-file h", "0\nintact|"},
          Change{"the same after other files were put there",
                 By("sed -i s/two/twO/ a/c; echo x >>a/sub/p; cp a/s a/c2; $Q seal a/s >/dev/null"),
                 "./a//c a/s a/c2 $PWD/a/sub/p a/t --head-file h",
                 "32\nchanged|file changed|intact|renamed|seal never recorded|unknown|version changed|"},
          Change{"the same in the folder",
                 By("sed -i s/two/twO/ a/c; cd a; $Q verify c t --head-file ../h >../j; test $? = 27"),
                 "a/cr a/t --head-file h", "0\nintact|"},
          Change{"only some files, and a trail elsewhere", By("mkdir b; mv a/c a/s a/sub b; mkdir a/sub"),
                 "b/c b/s b/sub/p a/t --head-file h",
                 "33\nintact|never recorded|print never recorded|seal never recorded|"},
          Change{"one that continues, alone", [](const Archive& in) { in.Continue(); }, "a/t2 --head-file h2",
                 "0\nintact|"},
          Change{"one of two folders has no trail", By("cp -r a a2; rm a2/t"), "a a2 --head-file h", "15\nmissing|"},
          Change{"a folder of archives", By("mkdir b; mv a b/a; cp -r b a"), "a --head-file h", "0\n"},
          Change{"slashes, and a trail in a folder", [](const Archive& in) { in.AddForeign("sub/"); },
                 ".//a/./ --head-file h", "33\nnever recorded|not anchored|print never recorded|version missing|"},
          Change{"a list, the trail as it was", list(By("true")), "a --against l", "11\nnot anchored|"},
          Change{"a list, another trail", list([](const Archive& in) {
                     in.Run("rm a/t h");
                     qel::Trail trail(in.Settings("t", "h"), std::make_shared<ByteSigner>(3));
                     EXPECT_EQ(trail.Open(), 1);
                     in.Record(trail, qel::trail_kind::kFileSealed, "s");
                     in.Record(trail, qel::trail_kind::kReportPrinted, "sub/p");
                     in.Run("rm a/c a/cr");
                 }),
                 "a --against l", "15\nchanged|missing|"}})
        ExpectFound("verify ", change);
}

// An installation has a file of those who may sign; it expects trails of folders, and not of single files.
TEST(QelVerifyTree, NeedsATrailWhereTheInstallationKnowsWhoSigns) {
    const Archive archive;
    archive.Trust({1});
    const std::string verify = "QELLIB10_ALLOWED_SIGNERS=trust $Q verify ";
    EXPECT_EQ(archive.Run(verify + "a >/dev/null; echo $?; rm a/t; " + verify + "a >/dev/null; echo $?; " + verify +
                          "a/s >/dev/null; echo $?"),
              "11\n15\n0\n");
}

// What was read is known by its inode and by what the trail says about it.
TEST(QelVerifyTree, GoesOnWithAnInterruptedRunAndLosesNoFindingOnAFullDisk) {
    for (const std::string command : {"verify a --head-file h", "trail verify a/t --head-file h --archive a"}) {
        const Archive archive;
        for (int i = 0; i < 1000 && archive.Findings(command + " --resume r") == "0\n"; ++i) {
        }
        EXPECT_EQ(archive.Findings(command + " --resume r --jobs 3"), "24\n");
        archive.Run("echo x >a/y; $Q seal a/y; sed -i s/two/twO/ a/c");
        const std::string found = archive.Findings(command);
        EXPECT_EQ(archive.Findings(command + " --resume r"), found);
        const std::string full =
            "{ trap '' XFSZ; ulimit -f 0; $Q " + command + " --resume new; echo $?; } | sed s/x/x/";
        const std::string output = archive.Run(full);
        EXPECT_NE(output.find("a/y: is sealed"), std::string::npos) << output;
        EXPECT_NE(output.find("qel: new: cannot be written"), std::string::npos) << output;
        EXPECT_TRUE(output.ends_with("\n32\n")) << output;
        archive.Run("rm a/y new; sed -i s/twO/two/ a/c");
        EXPECT_TRUE(archive.Run(full).ends_with("\n39\n"));
    }
}

TEST(QelVerifyTree, ReportsWhereAFindingIsWithoutASentence) {
    const Archive archive;
    archive.Run("sed -i s/two/twO/ a/c");
    const std::string json = archive.Run("$Q verify a --head-file h --json");
    const std::string signer = ByteSigner(1).Key().Fingerprint();
    for (const std::string& member :
         {std::string("\"file\": \"a/c\""), std::string("\"status\": 27"), std::string("\"byte\": 79"),
          std::string("\"cabinetVersion\": 2"), std::string("\"entry\": 5"), "\"signer\": \"" + signer + '"',
          "\"sha256\": \"" + HashOf("two") + '"', std::string("\"size\": 3"), std::string("\"number\": 2"),
          std::string("\"size\": 82")})
        EXPECT_NE(json.find(member), std::string::npos) << member << json;
    EXPECT_EQ(archive.Findings("verify a/s --head-file h"), "32\nmissing|seal never recorded|")
        << "a file without its trail";
    {
        qel::Trail trail(archive.Settings("t", "h"), std::make_shared<ByteSigner>(1));
        EXPECT_EQ(trail.Open(), 1);
        archive.Write("a/sub/p", "%PDF-1.5");
        archive.Record(trail, qel::trail_kind::kReportPrinted, "sub/p");
    }
    archive.Write("a/sub/p", "%PDF-1.4");
    archive.Run("$Q seal a/s");
    const std::string changed = archive.Run("$Q verify a --head-file h --json");
    for (const std::string& member :
         {std::string("\"olderEntry\": 7"), std::string("an older state, which entry 7 has recorded"),
          std::string("\"sealVersion\": 2"), "\"foundSha256\": \"" + HashOf("%PDF-1.4") + '"',
          std::string("\"foundSize\": 8"), std::string("\"guid\": \"{")})
        EXPECT_NE(changed.find(member), std::string::npos) << member << changed;
}

TEST(QelRenewals, ShowTheEntryThatRecordedEach) {
    const Archive archive;
    const std::string renewals = "$Q renewals a/cr --trail a/t; echo $?";
    const std::string good = archive.Run(renewals);
    EXPECT_NE(good.find(": entry 5, "), std::string::npos) << good;
    EXPECT_TRUE(good.ends_with("\n0\n")) << good;
    archive.Write("a/cr", archive.Read("a/cr").replace(archive.Read("a/cr").rfind("mori"), 4, "abet"));
    const std::string changed = archive.Run(renewals);
    EXPECT_NE(changed.find("says something else: by mori"), std::string::npos) << changed;
    EXPECT_TRUE(changed.ends_with("\n40\n")) << changed;
    archive.Write("a/cr", archive.Read("a/cr") + archive.Read("a/cr"));
    EXPECT_NE(archive.Run(renewals).find("never recorded\n"), std::string::npos);
    qel::Trail trail(archive.Settings("t", "h"), std::make_shared<ByteSigner>(1));
    ASSERT_EQ(trail.Open(), 1);
    archive.Register(trail, "other", "a/d");
    EXPECT_TRUE(archive.Run(renewals).ends_with("; see qel --help\n2\n"));
    EXPECT_EQ(archive.Run("$Q renewals a/dr --trail a/t --cabinet a/d | sed 's/.*: entry \\([0-9]*\\).*/\\1/'"), "9\n");
}
