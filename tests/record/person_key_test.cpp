#include "qellib10/record/person_key.h"

#include <sys/stat.h>

#include <filesystem>

#include "../support/test.h"
#include "qellib10/platform/crypto/digest.h"
#include "qellib10/record/person_key_format.h"
#include "qellib10/record/text_forms.h"

namespace {

constexpr qel::PasswordCost kCheap = {.passes = 1, .memory = 8 << 10};  // for what is not read from a file

qel::SecretBytes Seed(int byte) {
    qel::SecretBytes seed(32);
    for (std::byte& b : seed.Bytes()) b = static_cast<std::byte>(byte);
    return seed;
}

qel::PersonKeyFile Mori(int seed = 1) {
    qel::PersonKeyFile file;
    file.user = "mori";
    file.name = "Mori \"A\" \xE6\xA3\xAE";
    file.key.bytes = qel::PublicKeyOf(Seed(seed).Bytes());
    return file;
}

// The sum is made right again, as somebody does who changes a file on purpose.
std::string Changed(std::string text, const std::string& from, const std::string& to) {
    text.replace(text.find(from), from.size(), to);
    const std::size_t end = text.rfind(",\"sha256\"");
    return text.substr(0, end) + ",\"sha256\":\"" + qel::Hex(qel::Sha256(text.substr(0, end))) + "\"}\n";
}

bool IsRead(const std::string& text) {
    try {
        return qel::PersonKeyFile::OfText(text).Text() == text;
    } catch (const qel::DataError&) {
        return false;
    }
}

std::string Outcome(qel::PersonKey& key, std::string_view password) {
    try {
        const auto made = key.Sign("x", password);
        return qel::IsSignedBy(qel::SshPublicKey::OfText(key.PublicKey()).bytes, "x", made.bytes) ? "signed"
                                                                                                  : "wrong bytes";
    } catch (const qel::WrongPassword&) {
        return "wrong password";
    } catch (const qel::DataError&) {
        return "damaged";
    }
}

}  // namespace

TEST(PersonKeyFile, IsRefusedWithAnyBitChangedAndAnyLengthCut) {
    const std::string text = Mori().Text();
    ASSERT_TRUE(IsRead(text));
    for (std::size_t bit = 0; bit < 8 * text.size(); ++bit) {
        std::string changed = text;
        changed[bit / 8] ^= static_cast<char>(1 << bit % 8);
        EXPECT_FALSE(IsRead(changed)) << bit;
    }
    for (std::size_t size = 0; size < text.size(); ++size) EXPECT_FALSE(IsRead(text.substr(0, size))) << size;
    EXPECT_FALSE(IsRead(text + '\n'));
}

TEST(PersonKeyFile, IsRefusedForWhatNoWriterMakesAlsoWithARightSum) {
    const std::string text = Mori().Text();
    for (const auto& [from, to, isRead] : Cases<const char*, const char*, bool>{
             {"\"passes\":3", "\"passes\":3", true},
             {"\"passes\":3", "\"passes\":8", true},
             {"\"passes\":3", "\"passes\":2", false},
             {"\"passes\":3", "\"passes\":9", false},
             {"\"passes\":3", "\"passes\":03", false},
             {"\"memory\":268435456", "\"memory\":1073741824", true},
             {"\"memory\":268435456", "\"memory\":268435455", false},
             {"\"memory\":268435456", "\"memory\":1073741825", false},
             {"\"memory\":268435456", "\"memory\":9007199254740993", false},
             {"\"personkey\":1", "\"personkey\":2", false},
             {"\"user\":\"mori\"", "\"user\":\"nakano\"", true},  // its header is another: see below
             {"\"user\":\"mori\"", "\"user\":\"\"", false},
             {"\"user\":\"mori\"", "\"user\":\"mori \"", false},  // no statement can name this user
             {"\"user\":\"mori\"", "\"user\":\"a\\u000ab\"", false},
             {"\"user\":\"mori\"", "\"user\": \"mori\"", false},
             {"ssh-ed25519", "ssh-rsa", false},
         }) {
        EXPECT_EQ(IsRead(Changed(text, from, to)), isRead) << to;
    }
}

TEST(PersonKeyFile, OpensForItsPasswordAloneWhateverBytesThatHas) {
    const std::string longest(qel::PersonKeyFile::kLongestPassword, 'x');
    for (const std::string& password : {std::string("a"), std::string("a\0b", 3), std::string("\0", 1), longest,
                                        std::string("p\xC3\xA4ss"), std::string("\xFF\xFE")}) {
        qel::PersonKeyFile file = Mori();
        file.Close(Seed(1), password, kCheap);
        ASSERT_TRUE(file.Open(password).has_value());
        EXPECT_EQ(file.Open(password)->View(), Seed(1).View());
        for (const std::string& other : {std::string(), password + '\0', password.substr(1), password + ' ',
                                         std::string("pa\xCC\x88ss"), longest + "x"})
            EXPECT_FALSE(file.Open(other).has_value()) << other.size();
    }
    for (const std::string& password : {std::string(), longest + "x"})
        EXPECT_THROW(Mori().Close(Seed(1), password, kCheap), qel::DataError);
}

TEST(PersonKeyFile, BindsEverythingBeforeTheSealedKey) {
    using File = qel::PersonKeyFile;
    qel::PersonKeyFile file = Mori();
    file.Close(Seed(1), "secret", kCheap);
    for (const auto& [what, change] : Cases<const char*, void (*)(File&)>{
             {"user", [](File& f) { f.user = "nakano"; }},
             {"name", [](File& f) { f.name = "Nakano"; }},
             {"key", [](File& f) { f.key = Mori(2).key; }},
             {"passes", [](File& f) { f.seal.cost.passes = 2; }},
             {"memory", [](File& f) { f.seal.cost.memory += 1024; }},
             {"salt", [](File& f) { f.seal.salt[15] ^= std::byte{1}; }},
             {"nonce", [](File& f) { f.seal.nonce[23] ^= std::byte{1}; }},
             {"sealed", [](File& f) { f.sealed[0] ^= std::byte{1}; }},
             {"tag", [](File& f) { f.sealed[47] ^= std::byte{1}; }},
         }) {
        qel::PersonKeyFile changed = file;
        change(changed);
        EXPECT_FALSE(changed.Open("secret").has_value()) << what;
    }
    qel::PersonKeyFile other = Mori(2);  // sealed by somebody who knows the password, with another seed
    other.Close(Seed(1), "secret", kCheap);
    EXPECT_THROW(other.Open("secret"), qel::DataError);
}

// Each Make, each try of a password and each half of a change costs half a second: seven in all.
TEST(PersonKey, SignsForItsPasswordAndKeepsItsKeyWhenThatChanges) {
    const TempFolder folder;
    qel::PersonKey key;
    ASSERT_EQ(key.Make(folder.Name("k"), "mori", "Mori Akiko", "old"), 1) << qel::LastFailure().text;
    EXPECT_EQ(std::filesystem::status(folder.Posix("k")).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(folder.Read("k").find("old"), std::string::npos);
    EXPECT_EQ(key.Make(folder.Name("k"), "mori", "Mori Akiko", "old"), 0);  // the file stays
    EXPECT_EQ(Outcome(key, "old"), "damaged");

    ASSERT_EQ(key.Open(folder.Name("k")), 1) << qel::LastFailure().text;
    EXPECT_EQ(Line({key.User(), key.PrintedName(), key.Fingerprint().substr(0, 7)}), "mori Mori Akiko SHA256:");
    const std::string before = folder.Read("k");
    EXPECT_EQ(key.ChangePassword("wrong", "new"), 0);
    EXPECT_EQ(qel::LastFailure().kind, qel::FailureKind::kRefused);
    EXPECT_EQ(key.ChangePassword("old", ""), 0);
    EXPECT_EQ(Line({qel::LastFailure().kind == qel::FailureKind::kData, folder.Read("k") == before}), "1 1");

    ASSERT_EQ(key.ChangePassword("old", "new"), 1) << qel::LastFailure().text;
    EXPECT_EQ(std::filesystem::status(folder.Posix("k")).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(Outcome(key, "old"), "wrong password");
    EXPECT_EQ(Outcome(key, "new"), "signed");  // of the key as it was opened before
    EXPECT_EQ(Outcome(key, ""), "wrong password");

    folder.Write("k", Changed(folder.Read("k"), "Mori Akiko", "Nakano Jun"));
    EXPECT_EQ(Outcome(key, "new"), "damaged");  // another person's by now
    qel::PersonKey renamed;
    ASSERT_EQ(renamed.Open(folder.Name("k")), 1);
    EXPECT_EQ(Outcome(renamed, "new"), "wrong password");
    folder.Write("k", before.substr(0, 100));
    EXPECT_EQ(Outcome(key, "new"), "damaged");
    ::chmod(folder.Posix("k").c_str(), 0640);
    EXPECT_EQ(Line({renamed.Open(folder.Name("k")), renamed.PublicKey()}), "0 ");
}
