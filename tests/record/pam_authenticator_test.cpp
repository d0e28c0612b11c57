#include "qellib10/record/pam_authenticator.h"

#include <cstdlib>

#include "../support/test.h"
#include "../tools/result_of.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/pam/pam_check.h"
#include "qellib10/record/person_agent.h"
#include "qellib10/record/person_key.h"
#include "qellib10/record/signing.h"
#include "signing_folder.h"

namespace {

// Services of the tests' own.
struct Services : TempFolder {
    Services() {
        Write("passwords", "mori:violet:plain\nsame:same:shown\nabe:indigo:other\n");
        modules = "/usr/lib/" + ResultOf("printf %s $(uname -m)").substr(2) + "-linux-gnu/";
        const std::string matrix = modules + "pam_wrapper/pam_matrix.so passdb=" + Posix("passwords").native();
        const auto add = [&](const char* name, const std::string& auth, const std::string& account) {
            Write(name, auth + "account required " + account + '\n');
        };
        const std::string ask = "auth required " + matrix + '\n';
        add("plain", ask, matrix);
        add("other", ask, "pam_permit.so");
        add("chatty", "auth required " + matrix + " verbose\n", "pam_permit.so");
        add("twice", ask + ask, "pam_permit.so");
        add("renamed", ask + "auth required " + modules + "pam_wrapper/pam_set_items.so\n", "pam_permit.so");
        add("shown", "auth required " + matrix + " echo\n", matrix);
        add("open", "auth required pam_permit.so\n", "pam_permit.so");
        add("closed", ask, "pam_deny.so");
        for (const char* const code : {"new_authtok_reqd", "authtok_expired", "acct_expired", "perm_denied"})
            add(code, ask, "pam_debug.so acct=" + std::string(code));
        for (const char* const code : {"maxtries", "authinfo_unavail", "system_err"})
            add(code, "auth required pam_debug.so auth=" + std::string(code) + '\n', "pam_permit.so");
        add("expired_at_once", "auth required pam_debug.so auth=acct_expired\n", "pam_permit.so");
    }

    /// Why no test can use them; empty if one can.
    std::string Missing() const {
        if (!std::filesystem::exists(modules + "pam_wrapper")) return "needs libpam-wrapper";
        const bool isWithout = qel::AskPam("plain", "mori", "violet").text == "the library was built without PAM";
        return isWithout ? "needs libpam0g-dev" : "";
    }
    /// What a PamAuthenticator does, with a service from here.
    qel::Authenticator Asking(const std::string& service) const {
        return [service, folder = Posix().native()](std::string_view user, std::string_view password) {
            return qel::AsResult("PamAuthenticator", [&] {
                       const qel::PamAnswer answer = qel::AskPam(service, std::string(user), password, folder);
                       return answer.isRight ? 1 : qel::Refuse(answer.kind, service, answer.text);
                   }) != 0;
        };
    }

    std::string modules;
};

// A trail in which mori, whose account has the password "violet", is to sign what sato has registered.
struct Signers : People {
    Signers() { Do("sato registers"); }
    void Announce(const qel::PersonSigner& person) {
        qel::TrailRecord record = Record("person key added", person.PublicKey());
        record.user = person.User();
        record.after = person.PrintedName();
        EXPECT_TRUE(trail.Append(record)) << qel::LastFailure().text;
    }
    std::string Sign(const std::shared_ptr<qel::PersonSigner>& person, std::string_view password) {
        qel::Signing signing(trail, person, {});
        const qel::SigningRequest request{
            .cabinet = kCabinet, .cabinetVersion = 2, .size = 3, .sha256 = HashOf("abc"), .meaning = "approved"};
        return signing.Sign(request, "mori", password) ? "signed" : qel::LastFailure().text;
    }
};

}  // namespace

TEST(PamAuthenticator, LetsInWhoeverTheServiceLetsInByThePassword) {
    const Services services;
    if (!services.Missing().empty()) GTEST_SKIP() << services.Missing();
    ::setenv("PAM_USER", "abe", 1);  // the module pam_set_items reads it
    const std::string wrong = "name or password are wrong", expired = "the password has expired and has to be changed";
    using Kind = qel::FailureKind;
    for (const auto& [service, user, password, kind, text] :
         Cases<const char*, const char*, std::string, Kind, std::string>{
             {"plain", "mori", "violet", Kind::kNone, ""},
             {"PLAIN", "mori", "violet", Kind::kNone, ""},
             {"missing", "mori", "violet", Kind::kState, "there is no service of this name that can be read"},
             {"plain", "mori", "indigo", Kind::kRefused, wrong},
             {"plain", "mori", "", Kind::kRefused, wrong},
             {"plain", "mori", std::string("violet\0", 7), Kind::kRefused, wrong},
             {"plain", "mori", std::string(600, 'x'), Kind::kRefused, wrong},
             {"plain", "nobody", "violet", Kind::kRefused, wrong},
             {"plain", "", "violet", Kind::kRefused, wrong},
             {"chatty", "mori", "violet", Kind::kNone, ""},
             {"chatty", "mori", "indigo", Kind::kRefused, wrong},
             {"plain", "abe", "indigo", Kind::kRefused, "the account may not be used here"},
             {"twice", "mori", "violet", Kind::kState, "the service asks for more than a name and a password"},
             {"shown", "same", "same", Kind::kState, "the service has not asked for the password"},
             {"open", "mori", "violet", Kind::kState, "the service has not asked for the password"},
             {"renamed", "mori", "violet", Kind::kState, "the service has let in another user than the one named"},
             {"closed", "mori", "violet", Kind::kRefused, "the account may not be used here"},
             {"new_authtok_reqd", "mori", "violet", Kind::kRefused, expired},
             {"new_authtok_reqd", "mori", "indigo", Kind::kRefused, wrong},
             {"authtok_expired", "mori", "violet", Kind::kRefused, expired},
             {"acct_expired", "mori", "violet", Kind::kRefused, "the account has expired"},
             {"perm_denied", "mori", "violet", Kind::kRefused, "the account may not be used here"},
             {"expired_at_once", "mori", "violet", Kind::kRefused, wrong},
             {"maxtries", "mori", "violet", Kind::kRefused, wrong},
             {"authinfo_unavail", "mori", "violet", Kind::kState, "the system's passwords cannot be read now"},
             {"system_err", "mori", "violet", Kind::kState, "the system cannot check passwords: PAM has status 4"},
             {"", "mori", "violet", Kind::kArgument, "this cannot be the name of a service"},
             {"../plain", "mori", "violet", Kind::kArgument, "this cannot be the name of a service"},
         }) {
        SCOPED_TRACE(std::string(service) + ' ' + user + ' ' + password);
        const qel::PamAnswer answer = qel::AskPam(service, user, password, services.Posix().native());
        EXPECT_EQ(answer.isRight, kind == Kind::kNone);
        EXPECT_EQ(answer.kind, kind);
        EXPECT_EQ(answer.text, text);
    }
    EXPECT_FALSE(qel::PamAuthenticator("missing")("mori", "violet"));
    EXPECT_EQ(qel::LastFailure().kind, Kind::kState);
}

// Two passwords of the sealed key: a second.
TEST(PamAuthenticator, GuardsAKeyInAnAgentWhileASealedKeyHasAPasswordOfItsOwn) {
    const Services services;
    if (!services.Missing().empty()) GTEST_SKIP() << services.Missing();
    Signers people;
    const auto sealed = std::make_shared<qel::PersonKey>();
    ASSERT_EQ(sealed->Make(people.Name("k"), "mori", "Mori Akiko", "a signing word"), 1) << qel::LastFailure().text;
    people.Announce(*sealed);
    EXPECT_TRUE(services.Asking("plain")("mori", "violet"));
    EXPECT_EQ(people.Sign(sealed, "violet"), "the password is wrong") << "it is the account's";
    EXPECT_FALSE(services.Asking("plain")("mori", "a signing word"));
    EXPECT_EQ(people.Sign(sealed, "a signing word"), "signed");

    const std::string in = "cd '" + people.Posix().native() + "' && ";
    ASSERT_EQ(ResultOf(in + "ssh-keygen -q -t ed25519 -N '' -f key && ssh-agent -a agent >agent.env && "
                            "SSH_AUTH_SOCK=agent ssh-add -q key"),
              "0 ");
    const std::string print = ResultOf(in + "ssh-keygen -lf key.pub | cut -d' ' -f2 | tr -d '\\n'").substr(2);
    const std::string expired = "the password has expired and has to be changed";
    bool isAnnounced = false;
    for (const auto& [service, password, outcome, entered] : Cases<const char*, const char*, std::string, std::string>{
             {"plain", "indigo", "name or password are wrong", "signature refused name or password are wrong"},
             {"new_authtok_reqd", "violet", expired, "signature refused " + expired},
             {"missing", "violet", "the password cannot be checked: there is no service of this name that can be read",
              "signature refused " + expired},
             {"plain", "violet", "signed", "signature "},
         }) {
        const auto agent = std::make_shared<qel::PersonAgent>(services.Asking(service));
        EXPECT_EQ(agent->Connect(people.Name("agent"), print, "mori", "Mori Akiko"), 1) << qel::LastFailure().text;
        if (!std::exchange(isAnnounced, true)) people.Announce(*agent);
        EXPECT_EQ(people.Sign(agent, password), outcome);
        const qel::TrailEntry last = people.Entry(people.Lines().size());
        EXPECT_EQ(last.action + ' ' + last.reason, entered);
    }
    EXPECT_EQ(ResultOf(in + ". ./agent.env >output; ssh-agent -k >output"), "0 ");
    EXPECT_EQ(people.Found(), "");
}
