#include "../tools/result_of.h"
#include "qellib10/record/key_file_signer.h"
#include "qellib10/record/person_key.h"
#include "recorded_folder.h"
#include "signing_folder.h"

namespace {

// A cabinet with a version of mori in an archive, and the tool run there.
struct SigningFolder : RecordedFolder {
    SigningFolder() {
        EXPECT_EQ(ResultOf("ssh-keygen -q -t ed25519 -N '' -f '" + Posix("key").native() + '\''), "0 ");
        const auto signer = std::make_shared<qel::KeyFileSigner>();
        EXPECT_EQ(signer->Load(Name("key")), 1);
        Archive archive(*this, qel::TrailFlush::kEach, signer);
        EXPECT_TRUE(archive.Open() && RegisterIn(archive, "one")) << qel::LastFailure().text;
    }
    std::string Qel(const std::string& arguments) const {
        return ResultOf("cd '" + Posix().native() + "' && " QELLIB10_QEL " " + arguments);
    }
    // The descriptor 3 has the passwords.
    std::string With(const std::string& passwords, const std::string& arguments) const {
        Write("passwords", passwords);
        return Qel(arguments + " --password-fd 3 3<passwords");
    }
    std::string Sign(const std::string& password, const std::string& more = "") const {
        return With(password + '\n',
                    "sign t --cabinet c --person k --signer-key key --head-file h --user sato --meaning approved " +
                        std::string(more.find("--version") == std::string::npos ? "--version 1 " : "") + more);
    }
    void Announce() const {
        const auto signer = std::make_shared<qel::KeyFileSigner>();
        qel::Trail trail(Settings(), signer);
        qel::PersonKey key;
        ASSERT_TRUE(signer->Load(Name("key")) != 0 && trail.Open() != 0 && key.Open(Name("k")) != 0);
        qel::TrailRecord record = Record("person key added", key.PublicKey());
        record.user = "sato";
        ASSERT_TRUE(trail.Append(record));
    }
};

}  // namespace

// Each password costs half a second: six in all.
TEST(QelSign, APersonSignsAndVerifyFindsWhatTheRulesDoNotAllow) {
    const SigningFolder folder;
    EXPECT_TRUE(
        folder.With("old", "key make k --user sato --name 'Sato Ken'").starts_with("0 sato, Sato Ken\nSHA256:"));
    EXPECT_EQ(folder.Qel("key make k --user sato --name 'Sato Ken' </dev/null").substr(0, 2), "1 ");
    const std::string change = "key password t --person k --user sato --head-file h --signer-key key";
    EXPECT_EQ(folder.With("old\nnew\n", change), "1 qel: k: the key was not announced for this user, or has ended\n");
    EXPECT_NE(folder.Qel("key show k --json").find("\"user\": \"sato\""), std::string::npos);
    EXPECT_EQ(folder.Sign("new"), "1 qel: the key was not announced for this user\n");
    folder.Announce();
    EXPECT_TRUE(folder.With("old\nnew\n", change).starts_with("0 entry 7 "));
    EXPECT_EQ(folder.Entry(7).action + ' ' + folder.Entry(7).user, "password changed sato");
    EXPECT_EQ(folder.With("", change), "1 qel: there is no password to read\n");
    EXPECT_EQ(folder.With("old\nx\n", change), "1 qel: k: the password is wrong\n");
    EXPECT_EQ(folder.Entry(8).action + ' ' + folder.Entry(8).reason, "signature refused the password is wrong");
    EXPECT_EQ(folder.Sign("old"), "1 qel: the password is wrong\n");
    folder.Write("job", "x");
    EXPECT_TRUE(folder.Sign("new", "--report job").starts_with("0 entry 10 "));
    EXPECT_EQ(qel::ReadPersonStatement(folder.Entry(10).statement)->reportSha256, HashOf("x"));
    EXPECT_EQ(folder.Sign("new", "--version 2").substr(0, 2), "2 ");

    const std::string verify = "trail verify t --head-file h ";
    const std::string rest = "trail " + folder.Entry(1).trailId;
    EXPECT_TRUE(folder.Qel(verify).starts_with("0 1 signature: 0 findings\n10 entries: consistent\n" + rest));
    EXPECT_TRUE(folder.Qel(verify + "--approval-needs-review")
                    .starts_with("21 t: entry 10: signature: order: the version is approved before it was reviewed, "
                                 "sato\n1 signature: 1 finding\n"));
    const std::string json = folder.Qel(verify + "--json --approval-needs-review");
    EXPECT_NE(json.find("\"finding\": \"order\""), std::string::npos) << json;

    folder.Add("two");
    EXPECT_EQ(folder.Sign("new", "--version 2").substr(0, 3), "16 ") << "a version that nobody has recorded";
}

// Four passwords.
TEST(QelKey, KeysOfPeopleAndOfTheInstallationChangeByEntries) {
    const SigningFolder folder;
    EXPECT_EQ(ResultOf("ssh-keygen -q -t ed25519 -N '' -f '" + folder.Posix("other").native() + '\''), "0 ");
    const std::string entry = " t --head-file h --by kato --reason because --signer-key ",
                      sato = entry + "key --person k --user sato", name = " --name 'Sato Ken'",
                      other = entry + "key --public-key other.pub";
    const auto before = folder.Lines().size();
    for (const auto& [passwords, arguments, answer] : Cases<const char*, std::string, std::string>{
             {"old", "key reset" + sato + name, "8 qel: k: no key was announced for this user\n"},
             {"\n", "key add" + sato + name, "1 qel: a password cannot be empty\n"},
             {"old", "key add" + entry + "key --person k --user " + std::string(257, 'x') + name, "2 "},
             {"old", "key add" + sato + name, "0 entry "},
             {"new", "key add" + sato + name, "8 qel: k: the file of a person's key exists already\n"},
             {"new", "key reset" + sato + name, "0 entry "},
             {nullptr, "key end" + sato + " --json", "0 {\n  \"entry\": "},
             {nullptr, "key end" + sato, "8 qel: k: the user has no key\n"},
             {nullptr, "key revoke-installation --from 1" + other,
              "8 qel: other.pub: the key was never one of this trail\n"},
             {nullptr, "key add-installation" + other, "0 entry "},
             {nullptr, "key add-installation" + other, "8 qel: other.pub: the key was announced already\n"},
             {nullptr, "key end-installation" + other, "0 entry "},
             {nullptr, "key end-installation" + other, "8 qel: other.pub: the key may not sign\n"},
             {nullptr, "key add-installation" + other, "0 entry "},
             {nullptr, "key revoke-installation --from 1" + entry + "other --public-key other.pub",
              "8 qel: other.pub: a key cannot revoke itself"},
             {nullptr, "key revoke-installation --from 99" + other,
              "8 qel: other.pub: a key is revoked from an entry on: the number of one that is there\n"},
             {nullptr, "key revoke-installation --from 7" + other, "0 entry "},
             {nullptr, "key add-installation" + other,
              "8 qel: other.pub: a key that was revoked cannot be announced again\n"},
             {nullptr, "key end" + entry + "other --person k --user sato",
              "1 qel: t: the signer's key may not sign this trail"},
             {nullptr, "key add-installation" + entry + "key --public-key k",
              "8 qel: k: is no public key of the kind ssh-ed25519\n"},
             {nullptr, "key end x --head-file y --by kato --reason because --signer-key key --person k --user sato",
              "5 qel: x: is missing\n"},
         }) {
        const std::string found = passwords != nullptr ? folder.With(passwords, arguments) : folder.Qel(arguments);
        EXPECT_TRUE(found.starts_with(answer)) << arguments << '\n' << found;
    }
    std::string entered;
    for (std::size_t number = before + 1; number <= folder.Lines().size(); ++number) {
        const qel::TrailEntry made = folder.Entry(number);
        entered += made.user + ' ' + made.action + ' ' + made.after.substr(0, 11) + ' ' + made.reason + '|';
    }
    EXPECT_EQ(entered,
              "kato person key changing ssh-ed25519 because|sato person key added Sato Ken because|"
              "kato person key changing ssh-ed25519 because|sato person key ended  because|"
              "sato person key added Sato Ken because|kato person key changing  because|sato person key ended  because|"
              "kato key added  because|kato key ended  because|kato key added  because|kato key revoked 7 because|");
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
}
