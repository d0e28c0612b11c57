#include "trail_folder.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "../support/output_of.h"
#include "../support/run_at_once.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/key_file_signer.h"
#include "qellib10/record/pam_authenticator.h"
#include "qellib10/record/person_agent.h"
#include "qellib10/record/ssh_agent_signer.h"
#include "qellib10/record/ssh_wire.h"
#include "qellib10/record/text_forms.h"

namespace {

// Runs a command in the folder. @return its output
std::string In(const TempFolder& folder, const std::string& command) {
    return OutputOf("cd '" + folder.Posix().native() + "' && " + command);
}

// A key "key" as ssh-keygen makes it.
class KeyFolder : public TrailFolder {
public:
    KeyFolder() { In(*this, "ssh-keygen -q -t ed25519 -N '' -C inst -f key && cut -d' ' -f1,2 key.pub >plain.pub"); }
    std::string PublicKey() const { return Read("plain.pub").substr(0, Read("plain.pub").size() - 1); }
    std::string Fingerprint() const { return In(*this, "ssh-keygen -lf key.pub | cut -d' ' -f2 | tr -d '\\n'"); }
};

// An agent that gives the same answer to every question.
class OddAgent {
public:
    OddAgent(const TempFolder& folder, std::string answer) : m_answer(std::move(answer)) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        folder.Posix("odd").native().copy(address.sun_path, sizeof address.sun_path - 1);
        m_socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        ::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        ::listen(m_socket, 5);
        m_thread = std::thread([this] {
            for (int line = ::accept(m_socket, nullptr, nullptr); line >= 0;
                 line = ::accept(m_socket, nullptr, nullptr)) {
                std::array<char, 1024> question;
                if (::recv(line, question.data(), question.size(), 0) > 0)
                    ::send(line, m_answer.data(), m_answer.size(), MSG_NOSIGNAL);
                if (m_answer.empty())
                    ::recv(line, question.data(), question.size(), 0);  // until the other one gives up
                ::close(line);
            }
        });
    }
    ~OddAgent() {
        ::shutdown(m_socket, SHUT_RDWR);
        m_thread.join();
        ::close(m_socket);
    }

private:
    std::string m_answer;
    int m_socket = -1;
    std::thread m_thread;
};

std::string Framed(const std::string& bytes) { return qel::SshWriter().String(bytes).Bytes(); }

}  // namespace

TEST(KeyFile, SignsAsSshKeygenDoes) {
    const KeyFolder folder;
    qel::KeyFileSigner signer;
    ASSERT_EQ(signer.Load(folder.Name("key")), 1) << qel::LastFailure().text;
    EXPECT_EQ(signer.PublicKey(), folder.PublicKey());
    const qel::SshPublicKey key = qel::SshPublicKey::OfText(signer.PublicKey());
    EXPECT_EQ(key.Fingerprint(), folder.Fingerprint());
    for (const std::string& message : {std::string(), std::string("a\0b", 3), std::string(100'000, 'x')}) {
        folder.Write("message", message);
        In(folder, "ssh-keygen -q -Y sign -f key -n qellib10-entry message 2>/dev/null && sed -i '/---/d' message.sig");
        std::string theirs = folder.Read("message.sig");
        std::erase(theirs, '\n');
        const qel::SshSignature ours{key, signer.Sign(qel::BytesToSign("qellib10-entry", message))};
        EXPECT_EQ(qel::EncodeBase64(ours.Blob("qellib10-entry")), theirs);
        EXPECT_TRUE(qel::IsSignatureOf(ours, "qellib10-entry", message));
        EXPECT_FALSE(qel::IsSignatureOf(ours, "qellib10-signature", message));
        std::filesystem::remove(folder.Posix("message.sig"));
    }
}

TEST(KeyFile, AMadeOneIsSshKeygens) {
    const TrailFolder folder;
    qel::KeyFileSigner made, loaded;
    for (const char* const comment : {"", "titrator 7", "a longer one"}) {
        ASSERT_EQ(made.Make(folder.Name("made"), comment), 1) << qel::LastFailure().text;
        ASSERT_EQ(loaded.Load(folder.Name("made")), 1) << qel::LastFailure().text;
        EXPECT_EQ(made.Sign("x"), loaded.Sign("x"));
        const std::string key = made.PublicKey();
        EXPECT_EQ(In(folder, "ssh-keygen -y -f made"), (*comment == 0 ? key : key + ' ' + comment) + '\n');
        EXPECT_EQ(made.Make(folder.Name("made"), ""), 0);  // it stays
        EXPECT_EQ(In(folder, "ssh-keygen -y -f made && rm made").substr(0, key.size()), key);
    }
    EXPECT_EQ(made.Make(folder.Name("made"), "two\nlines"), 0);
    EXPECT_FALSE(std::filesystem::exists(folder.Posix("made")));
}

TEST(KeyFile, IsRefusedUnlessItIsThisUsersAloneAndWhole) {
    using F = const KeyFolder&;
    const auto edit = [](const char* script) {
        return [=](F f) { In(f, std::string("sed -i '") + script + "' key && chmod 600 key"); };
    };
    for (const auto& [what, damage] : Cases<const char*, std::function<void(F)>>{
             {"others may read it", [](F f) { ::chmod(f.Posix("key").c_str(), 0640); }},
             {"the owner may only read it", [](F f) { ::chmod(f.Posix("key").c_str(), 0400); }},
             {"a link", [](F f) { In(f, "mv key k && ln -s k key"); }},
             {"no file", [](F f) { In(f, "rm key"); }},
             {"a pipe", [](F f) { In(f, "rm key && mkfifo -m 600 key"); }},
             {"a passphrase", [](F f) { In(f, "ssh-keygen -q -p -N secret -f key >/dev/null"); }},
             {"another kind", [](F f) { In(f, "rm key && ssh-keygen -q -t ecdsa -N '' -f key"); }},
             {"a public key", [](F f) { In(f, "cp key.pub key && chmod 600 key"); }},
             {"a line missing", edit("3d")},
             {"no first line", edit("1d")},
             {"other characters", edit("2s/./-/")},
             {"another byte of the seed", edit("5s/A/B/")},
             {"too long", [](F f) { In(f, "yes | head -c 20000 >>key"); }},
         }) {
        const KeyFolder folder;
        damage(folder);
        qel::KeyFileSigner signer;
        EXPECT_EQ(Line({signer.Load(folder.Name("key")), signer.PublicKey()}), "0 ") << what;
        EXPECT_THROW(signer.Sign("x"), qel::DataError);
    }
    // Each byte of the file changed in turn: it is refused, or still the same key.
    const KeyFolder folder;
    const std::string whole = folder.Read("key");
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string text = whole;
        text[i] ^= 1;
        try {
            EXPECT_EQ(qel::ReadPrivateKey(text).publicKey.Text(), folder.PublicKey()) << i;
        } catch (const qel::DataError&) {
        }
    }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// In a process of its own, whose heap nothing else has used.
TEST(KeyFile, LeavesNoCopyInMemory) {
    const KeyFolder folder;
    EXPECT_EQ(InChild([&] {
                  // On the stack, as all that is read in hexadecimal digits: the heap is what is searched.
                  const std::string file = In(folder, "sed '/^-/d' key | base64 -d | od -An -v -tx1 | tr -d ' \\n'");
                  std::array<std::byte, 32> seed;
                  qel::Unhex(std::string_view(file).substr(file.find("00000040") + 8, 64), seed);
                  const auto copies = [&] {
                      std::ifstream maps("/proc/self/maps");
                      for (std::string line; std::getline(maps, line);) {
                          if (!line.ends_with("[heap]")) continue;
                          std::uintptr_t from = 0, to = 0;
                          if (std::sscanf(line.c_str(), "%lx-%lx", &from, &to) != 2) return 99;
                          int found = 0;
                          for (; from + seed.size() <= to; ++from)
                              found += std::memcmp(reinterpret_cast<const void*>(from), seed.data(), seed.size()) == 0;
                          return found;
                      }
                      return 98;
                  };
                  if (copies() != 0) return 1;
                  {
                      qel::KeyFileSigner signer;
                      if (signer.Load(folder.Name("key")) == 0 || signer.Sign("x") == std::array<std::byte, 64>{})
                          return 2;
                      if (copies() != 1) return 3;  // the one in use
                  }
                  if (copies() != 0) return 4;
                  In(folder, "chmod 600 key && printf 'x' >>key");
                  qel::KeyFileSigner signer;
                  return signer.Load(folder.Name("key")) != 0 ? 5 : copies() != 0 ? 6 : 0;
              }),
              0);
}
#endif

TEST(Agent, SignsATrailWithoutGivingTheKey) {
    const KeyFolder folder;
    In(folder,
       "ssh-keygen -q -t ecdsa -N '' -f other; ssh-keygen -q -t ed25519 -N '' -f second; "
       "ssh-agent -a agent >agent.env && SSH_AUTH_SOCK=agent ssh-add -q other key 2>/dev/null");
    const std::string end = ". ./agent.env >/dev/null; ssh-agent -k >/dev/null";
    const auto signer = std::make_shared<qel::SshAgentSigner>();
    EXPECT_EQ(signer->Connect(folder.Name("agent"), "SHA256:" + std::string(43, 'x')), 0);
    EXPECT_EQ(qel::LastFailure().text, "the agent does not have this key");
    EXPECT_THROW(signer->Sign("x"), qel::DataError);
    ASSERT_EQ(signer->Connect(folder.Name("agent"), folder.Fingerprint()), 1) << qel::LastFailure().text;
    EXPECT_EQ(signer->PublicKey(), folder.PublicKey());
    EXPECT_EQ(qel::SshAgentSigner().Connect(folder.Name("agent")), 1) << "the only one of its kind";
    std::string asked;
    qel::PersonAgent person([&](std::string_view user, std::string_view password) {
        asked += user;
        return password == "right";
    });
    EXPECT_EQ(Line({person.Connect(folder.Name("agent"), "", "mori", "Mori"),
                    person.Connect(folder.Name("agent"), folder.Fingerprint(), "mori ", "Mori"), person.PublicKey()}),
              "0 0 ");
    ASSERT_EQ(person.Connect(folder.Name("agent"), folder.Fingerprint(), "mori", "Mori"), 1);
    EXPECT_EQ(person.PublicKey(), folder.PublicKey());
    EXPECT_THROW(person.Sign("x", "wrong"), qel::WrongPassword);
    EXPECT_TRUE(
        qel::IsSignedBy(qel::SshPublicKey::OfText(folder.PublicKey()).bytes, "x", person.Sign("x", "right").bytes));
    EXPECT_EQ(asked, "morimori");
    qel::PersonAgent elsewhere(qel::PamAuthenticator("no/service"));
    ASSERT_EQ(elsewhere.Connect(folder.Name("agent"), folder.Fingerprint(), "mori", "Mori"), 1);
    try {
        elsewhere.Sign("x", "right");
        ADD_FAILURE();
    } catch (const qel::WrongPassword&) {
        ADD_FAILURE() << "nobody has guessed";
    } catch (const qel::DataError& why) {
        EXPECT_STREQ(why.what(), "the password cannot be checked: this cannot be the name of a service");
    }
    qel::Trail trail(folder.Settings(), signer);
    ASSERT_EQ(trail.Open(), 1) << qel::LastFailure().text;
    EXPECT_TRUE(trail.Append(Record("a")));
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
    In(folder, "SSH_AUTH_SOCK=agent ssh-add -q second 2>/dev/null");
    EXPECT_EQ(qel::SshAgentSigner().Connect(folder.Name("agent")), 0) << "which one?";
    In(folder, "SSH_AUTH_SOCK=agent ssh-add -q -d key 2>/dev/null");
    const std::string before = folder.Read("t") + folder.Read("h");
    EXPECT_FALSE(trail.Append(Record("b")));
    EXPECT_EQ(qel::LastFailure().text, "the agent refused");
    In(folder, end);
    EXPECT_FALSE(trail.Append(Record("c"))) << "the agent has gone";
    EXPECT_EQ(folder.Read("t") + folder.Read("h"), before);
}

TEST(Agent, OddAnswersAreRefusedInTime) {
    using qel::SshWriter;
    const std::string key = ByteSigner(1).Key().Blob();
    const std::string keys = SshWriter().Byte(12).Number(1).String(key).String("").Bytes();
    for (const auto& [what, answer, reason] : Cases<const char*, std::string, const char*>{
             {"none", "", "the agent does not respond in time"},
             {"a longer one announced", std::string("\x7F\xFF\xFF\xFF", 4), "the agent's answer is empty or too long"},
             {"an empty one", std::string(4, '\0'), "the agent's answer is empty or too long"},
             {"half of one", Framed(keys).substr(0, 30), "the agent ended the connection"},
             {"a refusal", Framed("\x05"), "the agent refused"},
             {"another kind", Framed("\x06"), "the agent's answer is of another kind than asked for"},
             {"more keys announced", Framed(SshWriter().Byte(12).Number(0xFFFFFFFF).String(key).String("").Bytes()),
              "a key, "},
             {"bytes after the keys", Framed(keys + "x"), "a key, "},
             {"a long name announced", Framed(SshWriter().Byte(12).Number(1).Number(0xFFFFFFF0).Bytes()), "a key, "},
         }) {
        const TempFolder folder;
        const OddAgent agent(folder, answer);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(qel::SshAgentSigner(std::chrono::milliseconds(200)).Connect(folder.Name("odd")), 0) << what;
        EXPECT_TRUE(qel::LastFailure().text.starts_with(reason)) << qel::LastFailure().text;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << what;
    }
    const TempFolder folder;
    const OddAgent agent(folder, Framed(keys));
    qel::SshAgentSigner signer;
    EXPECT_EQ(signer.Connect(folder.Name("odd")), 1);
    EXPECT_THROW(signer.Sign("x"), qel::DataError) << "keys are no signature";
    EXPECT_EQ(qel::SshAgentSigner().Connect(folder.Name("nobody")), 0);
}

TEST(SshWire, HasOneFormForEachText) {
    for (const auto& [text, bytes] : Cases<std::string, const char*>{{"", ""},
                                                                     {"YQ==", "a"},
                                                                     {"YWI=", "ab"},
                                                                     {"YWJj", "abc"},
                                                                     {"YR==", nullptr},
                                                                     {"YWJ=", nullptr},
                                                                     {"YQ=", nullptr},
                                                                     {"YQ", nullptr},
                                                                     {"Y===", nullptr},
                                                                     {"====", nullptr},
                                                                     {"YQ==YQ==", nullptr},
                                                                     {"YW Jj", nullptr},
                                                                     {"YWJ\n", nullptr},
                                                                     {"YW-_", nullptr},
                                                                     {std::string("YWJ\0", 4), nullptr}}) {
        if (bytes == nullptr) {
            EXPECT_THROW(qel::DecodeBase64(text), qel::DataError) << text;
        } else {
            EXPECT_EQ(qel::DecodeBase64(text), bytes);
            EXPECT_EQ(qel::EncodeBase64(bytes), text);
        }
    }
    const qel::SshSignature signature{ByteSigner(1).Key(), ByteSigner(1).Sign("x")};
    const std::string blob = signature.Blob("n");
    for (std::size_t size = 0; size < blob.size(); ++size)
        EXPECT_THROW(qel::SshSignature::OfBlob(std::string_view(blob).substr(0, size), "n"), qel::DataError) << size;
    EXPECT_THROW(qel::SshSignature::OfBlob(blob + 'x', "n"), qel::DataError);
}

TEST(SshWire, HasOneFormForEachWholeNumber) {
    const std::string zero(1, '\0');
    for (const auto& [digits, isRead] : Cases<std::string, bool>{
             {"", true},
             {"\x7F", true},
             {zero + "\x80", true},
             {zero + std::string(4, '\xFF'), true},
             {zero, false},
             {zero + "\x7F", false},
             {zero + zero + "\x80", false},
             {"\x80", false},  // negative
             {"\x01\x02\x03\x04\x05", false},
         }) {
        const std::string bytes = qel::SshWriter().String(digits).Bytes();
        std::array<std::byte, 4> number = {};
        if (isRead) {
            qel::SshReader(bytes).Integer(number);
            EXPECT_EQ(qel::SshWriter().Integer(number).Bytes(), bytes);
        } else {
            EXPECT_THROW(qel::SshReader(bytes).Integer(number), qel::DataError) << qel::EncodeBase64(digits);
        }
    }
}
