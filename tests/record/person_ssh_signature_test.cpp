#include "qellib10/record/person_ssh_signature.h"

#include "../support/output_of.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/person_agent.h"
#include "qellib10/record/signing.h"
#include "qellib10/record/ssh_wire.h"
#include "signing_folder.h"

namespace {

using qel::SshWriter;

const std::string kMessage = "what is signed", kSpace(qel::kStatementNamespace);

std::string In(const TempFolder& folder, const std::string& command) {
    return OutputOf("cd '" + folder.Posix().native() + "' && { " + command + "; } 2>/dev/null");
}

// What an SSHSIG has, apart.
struct Parts {
    std::string key, signature, hash = "sha512", space = kSpace;

    std::string Blob() const {
        const SshWriter all = SshWriter().Raw("SSHSIG").Number(1).String(key).String(space).String("").String(hash);
        return SshWriter(all).String(signature).Bytes();
    }
    std::string KeyText() const { return std::string(qel::SshReader(key).String()) + ' ' + qel::EncodeBase64(key); }
};

// A security key that says what it is made to say.
struct Device {
    std::uint8_t flags = 5;
    std::string application = "ssh:", signedApplication = application;

    qel::PersonPublicKey Key() const {
        qel::PersonPublicKey key;
        key.key = qel::SecurityKey{ByteSigner(5).Key().bytes, application};
        return key;
    }
    qel::PersonSignature Sign(std::string_view bytes) const {
        const auto hash = [](std::string_view text) {
            const qel::Sha256Digest digest = qel::Sha256(text);
            return std::string(reinterpret_cast<const char*>(digest.data()), digest.size());
        };
        const SshWriter message =
            SshWriter().Raw(hash(signedApplication)).Byte(flags).Number(0x80000007).Raw(hash(bytes));
        return {.bytes = ByteSigner(5).Sign(message.Bytes()), .flags = flags, .counter = 0x80000007};
    }
    Parts Signed() const { return Signed(Sign(qel::BytesToSign(kSpace, kMessage))); }
    Parts Signed(const qel::PersonSignature& made) const { return {Key().Blob(), qel::SignatureBlob(Key(), made)}; }
};

// As ssh-keygen signs with the key in a file.
Parts SignedByKeygen(const TempFolder& folder, const std::string& key, const std::string& options = "") {
    folder.Write("message", kMessage);
    const std::string sign = "ssh-keygen -Y sign -f " + key + " -n " + kSpace + ' ' + options + " <message";
    const std::string blob = qel::DecodeBase64(In(folder, sign + " | sed /---/d | tr -d '\\n'"));
    qel::SshReader reader(std::string_view(blob).substr(10));
    Parts parts;
    parts.key = reader.String();
    parts.space = reader.String();
    reader.ExpectString("");
    parts.hash = reader.String();
    parts.signature = reader.String();
    return parts;
}

struct Sample {
    std::string what, keyText, blob;
    bool isOurs, isTheirs;  // who accepts it
};

bool IsAccepted(const std::string& keyText, const std::string& blob) {
    try {
        const auto read = qel::PersonSshSignature::OfBlob(blob, kSpace);
        return read.key.Text() == keyText && qel::IsSignatureOf(read, kSpace, kMessage) && read.Blob(kSpace) == blob;
    } catch (const qel::DataError&) {
        return false;
    }
}

// For each sample 1 if ssh-keygen accepts it, else 0.
std::string KeygensAnswers(const TempFolder& folder, const std::vector<Sample>& samples) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
        folder.Write("keys." + std::to_string(i), "mori " + samples[i].keyText + '\n');
        folder.Write(
            "sig." + std::to_string(i),
            "-----BEGIN SSH SIGNATURE-----\n" + qel::EncodeBase64(samples[i].blob) + "\n-----END SSH SIGNATURE-----\n");
    }
    folder.Write("message", kMessage);
    return In(folder, "for i in $(seq 0 " + std::to_string(samples.size() - 1) +
                          "); do ssh-keygen -Y verify -f keys.$i -I mori -n " + kSpace +
                          " -s sig.$i <message >/dev/null && printf 1 || printf 0; done");
}

// The samples of a test: those with changed parts are derived from good ones.
class Samples {
public:
    std::vector<Sample> all;

    void Add(const char* what, const Parts& parts, bool isOurs, bool isTheirs) {
        all.push_back({what, parts.KeyText(), parts.Blob(), isOurs, isTheirs});
    }
    void AddOfEachKind(const Parts& good, const std::string& otherKey) {
        Add("good", good, true, true);
        Add("a byte more", {good.key, good.signature + 'x'}, false, false);
        Add("another hash said", {good.key, good.signature, "sha256"}, false, false);
        all.push_back({"another key", otherKey, good.Blob(), false, false});
        const std::string blob = good.Blob();
        for (std::size_t bit = 0; bit < 8 * blob.size(); ++bit) {
            std::string changed = blob;
            changed[bit / 8] ^= static_cast<char>(1 << bit % 8);
            EXPECT_FALSE(IsAccepted(good.KeyText(), changed)) << bit;
            if (bit % 27 == 0) all.push_back({"a bit", good.KeyText(), changed, false, false});
        }
    }
    // @param good with 33 bytes of r
    void AddOfEcdsa(const Parts& good, const std::string& r, const std::string& s) {
        const auto pair = [&](const std::string& first, const std::string& second) {
            const std::string both = SshWriter().String(first).String(second).Bytes();
            return Parts{good.key, SshWriter().String("ecdsa-sha2-nistp256").String(both).Bytes()};
        };
        const auto point = [&](const std::string& bytes) {
            return Parts{good.key.substr(0, 35) + SshWriter().String(bytes).Bytes(), good.signature};
        };
        const std::string x = good.key.substr(40, 32), y = good.key.substr(72);
        Add("a zero more", pair('\0' + r, s), false, true);
        Add("a negative number", pair(r.substr(1), s), false, false);
        Add("r is 0", pair("", s), false, false);
        Add("exchanged", pair(s, r), false, false);
        Add("a compressed point", point('\2' + x), false, false);
        Add("a point off the curve", point('\4' + x + x), false, false);
        Add("a point in another form", point(std::string(1, y.back() & 1 ? '\7' : '\6') + x + y), false, false);
    }
    void AddOfDevice() {
        for (const auto& [what, device, isOurs, isTheirs] : Cases<const char*, Device, bool, bool>{
                 {"more flags", {.flags = 0x45}, true, true},
                 {"not verified", {.flags = 1}, false, true},
                 {"nobody there", {.flags = 4}, false, true},
                 {"no application", {.application = ""}, false, true},
                 {"another application's", {.signedApplication = "ssh:x"}, false, false},
             })
            Add(what, device.Signed(), isOurs, isTheirs);
        qel::PersonSignature raised = Device{.flags = 1}.Sign(qel::BytesToSign(kSpace, kMessage));
        raised.flags = 5;
        Add("a flag added", Device().Signed(raised), false, false);
    }
};

// A device whose owner logs on as sato.
struct DevicePerson : qel::PersonSigner {
    std::string User() const override { return "sato"; }
    std::string PrintedName() const override { return "Sato"; }
    std::string PublicKey() const override { return device.Key().Text(); }
    qel::PersonSignature Sign(std::string_view bytes, std::string_view) override { return device.Sign(bytes); }

    Device device;
};

const qel::SigningRequest kRequest = {
    .cabinet = kCabinet, .cabinetVersion = 2, .size = 3, .sha256 = HashOf("abc"), .meaning = "approved"};

// A PKCS #11 token with a P-256 key, and a program that answers what its PIN is.
void MakeToken(const TempFolder& folder) {
    folder.Write("token.conf", "directories.tokendir = " + folder.Posix("tokens").native() + "\nlog.level = ERROR\n");
    folder.Write("pin", "#!/bin/sh\necho 1234\n");
    In(folder,
       "mkdir tokens; chmod +x pin; export SOFTHSM2_CONF=$PWD/token.conf; "
       "softhsm2-util --init-token --free --label lab --pin 1234 --so-pin 1234 && "
       "openssl genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out token.pem && "
       "softhsm2-util --import token.pem --token lab --label token --id 01 --pin 1234");
}

}  // namespace

// Where the two differ, ours is stricter: one form for each signature, SHA-512, three kinds of key, and a person whom
// the device has verified.
TEST(PersonSshSignature, IsAcceptedIfSshKeygenAcceptsItAndItHasTheOneForm) {
    const TempFolder folder;
    In(folder,
       "for b in 256 384; do ssh-keygen -q -t ecdsa -b $b -N '' -f p$b; done; "
       "ssh-keygen -q -t ed25519 -N '' -f ed; ssh-keygen -q -t ecdsa -N '' -f other");
    Parts ecdsa;
    std::string r, s;
    for (int tries = 0; tries < 200 && !r.starts_with('\0'); ++tries) {  // half of them have such an r
        ecdsa = SignedByKeygen(folder, "p256");
        qel::SshReader reader(ecdsa.signature);
        reader.ExpectString("ecdsa-sha2-nistp256");
        qel::SshReader pair(reader.String());
        r = pair.String();
        s = pair.String();
    }
    Samples samples;
    const std::string other = SignedByKeygen(folder, "other").KeyText();
    for (const Parts& good : {SignedByKeygen(folder, "ed"), ecdsa, Device().Signed()}) {
        samples.AddOfEachKind(good, other);
        EXPECT_EQ(qel::PersonPublicKey::OfText(good.KeyText()).Text(), good.KeyText());
        EXPECT_THROW(qel::PersonPublicKey::OfText("ssh-rsa" + good.KeyText().substr(11)), qel::DataError);
    }
    samples.AddOfEcdsa(ecdsa, r, s);
    samples.AddOfDevice();
    samples.Add("SHA-256", SignedByKeygen(folder, "p256", "-Ohashalg=sha256"), false, true);
    samples.Add("another curve", SignedByKeygen(folder, "p384"), false, true);
    samples.Add("another namespace", SignedByKeygen(folder, "p256", "-n qellib10-entry"), false, false);
    samples.Add("of a key in a file", {Device().Key().Blob(), SignedByKeygen(folder, "ed").signature}, false, false);

    const std::string theirs = KeygensAnswers(folder, samples.all);
    ASSERT_EQ(theirs.size(), samples.all.size());
    for (std::size_t i = 0; i < theirs.size(); ++i) {
        const auto& [what, keyText, blob, isOurs, isTheirs] = samples.all[i];
        EXPECT_EQ(Line({IsAccepted(keyText, blob), theirs[i] == '1'}), Line({isOurs, isTheirs})) << what << keyText;
    }
}

TEST(PersonSshSignature, OfAKeyInAnAgentOrADeviceCountsInATrail) {
    People people;
    people.Do("kato registers");
    MakeToken(people);
    In(people,
       "ssh-keygen -q -t ecdsa -N '' -f p256; ssh-keygen -q -t ed25519 -N '' -f ed; "
       "export SOFTHSM2_CONF=$PWD/token.conf SSH_ASKPASS=$PWD/pin SSH_ASKPASS_REQUIRE=force; "
       "ssh-agent -a agent >agent.env && export SSH_AUTH_SOCK=agent && ssh-add -q p256 ed && "
       "ssh-add -q -s /usr/lib/*/softhsm/libsofthsm2.so && ssh-add -L | grep ' token$' >token.pub");
    const auto announced = [&](qel::PersonSigner& person) {
        qel::TrailRecord record = Record("person key added", person.PublicKey());
        record.user = person.User();
        return people.trail.Append(record).has_value();
    };
    for (const std::string key : {"p256", "ed", "token"}) {
        const std::string print = In(people, "ssh-keygen -lf " + key + ".pub | cut -d' ' -f2 | tr -d '\\n'");
        const auto person =
            std::make_shared<qel::PersonAgent>([](std::string_view, std::string_view p) { return p == "right"; });
        ASSERT_EQ(person->Connect(people.Name("agent"), print, key, "Mori Akiko"), 1) << qel::LastFailure().text;
        EXPECT_EQ(person->PublicKey() + '\n', In(people, "cut -d' ' -f1,2 " + key + ".pub"));
        ASSERT_TRUE(announced(*person)) << qel::LastFailure().text;
        qel::Signing signing(people.trail, person, {});
        EXPECT_FALSE(signing.Sign(kRequest, key, "wrong"));
        EXPECT_EQ(qel::LastFailure().text, "the password is wrong");
        EXPECT_TRUE(signing.Sign(kRequest, key, "right")) << qel::LastFailure().text;
    }
    In(people, ". ./agent.env >/dev/null; ssh-agent -k >/dev/null");

    const auto owner = std::make_shared<DevicePerson>();
    ASSERT_TRUE(announced(*owner));
    qel::Signing signing(people.trail, owner, {});
    owner->device.flags = 1;
    EXPECT_FALSE(signing.Sign(kRequest, "sato", ""));
    EXPECT_EQ(qel::LastFailure().text, "the person's key has made a signature that is not right");
    owner->device.flags = 5;
    EXPECT_TRUE(signing.Sign(kRequest, "sato", "")) << qel::LastFailure().text;
    EXPECT_EQ(people.Found(), "");

    owner->device.flags = 1;
    const qel::PersonStatement statement = people.Of("sato");
    const std::string part = qel::SignedPart(statement);
    people.Put(statement,
               qel::StatementText(part, {owner->device.Key(), owner->device.Sign(qel::BytesToSign(kSpace, part))}));
    EXPECT_EQ(people.Found(), "malformed " + std::to_string(people.trail.Last().number));
    // Entries are signed by keys of the kind ssh-ed25519 alone.
    EXPECT_FALSE(people.trail.Append(Record("key added", owner->PublicKey())));
}
