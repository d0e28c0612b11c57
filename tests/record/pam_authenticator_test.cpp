#include "qellib10/record/pam_authenticator.h"

#include <cstdlib>

#include "../support/test.h"
#include "../tools/result_of.h"
#include "qellib10/platform/failure.h"
#include "qellib10/platform/pam/pam_check.h"

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

    std::string modules;
};

}  // namespace

TEST(PamAuthenticator, LetsInWhoeverTheServiceLetsInByThePassword) {
    const Services services;
    if (!std::filesystem::exists(services.modules + "pam_wrapper")) GTEST_SKIP() << "needs libpam-wrapper";
    if (qel::AskPam("plain", "mori", "violet").text == "the library was built without PAM")
        GTEST_SKIP() << "needs libpam0g-dev";
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
