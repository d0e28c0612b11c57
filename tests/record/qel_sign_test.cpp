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
    EXPECT_EQ(folder.With("old\nnew\n", "key password k"), "0 ");
    EXPECT_EQ(folder.With("", "key password k"), "1 qel: there is no password to read\n");
    EXPECT_EQ(folder.With("old\nx\n", "key password k"), "1 qel: k: the password is wrong\n");
    EXPECT_NE(folder.Qel("key show k --json").find("\"user\": \"sato\""), std::string::npos);
    EXPECT_EQ(folder.Sign("new"), "1 qel: the key was not announced for this user\n");
    folder.Announce();
    EXPECT_EQ(folder.Sign("old"), "1 qel: the password is wrong\n");
    folder.Write("job", "x");
    EXPECT_TRUE(folder.Sign("new", "--report job").starts_with("0 entry 7 "));
    EXPECT_EQ(qel::ReadPersonStatement(folder.Entry(7).statement)->reportSha256, HashOf("x"));
    EXPECT_EQ(folder.Sign("new", "--version 2").substr(0, 2), "2 ");

    const std::string verify = "trail verify t --head-file h ";
    const std::string rest = "trail " + folder.Entry(1).trailId;
    EXPECT_TRUE(folder.Qel(verify).starts_with("0 1 signature: 0 findings\n7 entries: consistent\n" + rest));
    EXPECT_TRUE(folder.Qel(verify + "--approval-needs-review")
                    .starts_with("21 t: entry 7: signature: order: the version is approved before it was reviewed, "
                                 "sato\n1 signature: 1 finding\n"));
    const std::string json = folder.Qel(verify + "--json --approval-needs-review");
    EXPECT_NE(json.find("\"finding\": \"order\""), std::string::npos) << json;

    folder.Add("two");
    EXPECT_EQ(folder.Sign("new", "--version 2").substr(0, 3), "16 ") << "a version that nobody has recorded";
}
