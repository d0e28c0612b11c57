#include "qellib10/store/user_store.h"

#include <grp.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <thread>

#include "../support/child_process.h"
#include "../support/failing_memory.h"
#include "../support/test.h"
#include "qellib10/platform/database/database.h"
#include "qellib10/platform/failure.h"
#include "qellib10/store/logon_turn.h"
#include "qellib10/user/system_setting.h"

namespace {

using qel::LogonRequest;
using qel::UserStore;

// A store whose clock does not move and whose hashes cost next to nothing.
class UserStoreTest : public testing::Test {
protected:
    UserStoreTest() {
        m_settings.cost = {1, 8192};
        m_settings.clock = [this] { return m_now; };
    }
    std::unique_ptr<UserStore> Open() {
        auto store = std::make_unique<UserStore>(m_folder.Path("users.db"), m_settings);
        store->Connect();
        return store;
    }
    void Damage(const char* sql) {
        qel::Database(m_folder.Posix("users.db"), qel::DatabaseOpening::kExisting).Run(sql);
    }
    unsigned ModeOf(const char* name) {
        return static_cast<unsigned>(std::filesystem::status(m_folder.Posix(name)).permissions());
    }

    TempFolder m_folder;
    std::chrono::sys_seconds m_now{std::chrono::hours(400'000)};
    qel::UserStoreSettings m_settings;
};

CUserInfo Record(const char* name, const char* password, int manager = 0) {
    CUserInfo user;
    user.SetUsername(name);
    user.SetPassword(password);
    CFunctionSecurity security;
    security.AddFunctionInfo(CFunctionInfo(5, "Print", 3));
    security.AddFunctionInfo(CFunctionInfo(-2, "\x83\x5C", 0));
    security.SetManagerParameter(manager);
    user.SetSecurity(security);
    return user;
}

}  // namespace

TEST_F(UserStoreTest, AccountsStayAsTheyWereEntered) {
    auto store = Open();
    EXPECT_EQ(ModeOf("users.db"), 0600u);
    for (const auto& [name, password, answer] : Cases<const char*, const char*, int>{
             {"Admin", "", 0},
             {"Admin", "first", 1},
             {"Other", "first", 0},
         }) {
        EXPECT_EQ(store->CreateFirstAdministrator(name, password), answer);
    }
    EXPECT_EQ(Line({store->AddUser(Record("miller", "pw", 1)), store->AddUser(Record("bob", ""))}), "1 1");
    for (const std::string& name : {std::string("MILLER"), std::string(), std::string("a\nb"), std::string(65, 'x')}) {
        EXPECT_EQ(store->AddUser(Record(name.c_str(), "pw")), 0) << name;
    }

    store = Open();
    EXPECT_EQ(store->GetUserCount(), 3);
    EXPECT_EQ(Line({store->GetUserName(1), store->GetUserName(3), store->GetUserName(-1)}), "bob  ");
    CUserInfo user;
    EXPECT_EQ(Line({store->GetUserInfo("Miller", &user), user.GetManagerFlag()}), "1 1");
    EXPECT_EQ(Line({user.GetUsername(), user.GetPassword()}), "miller ");
    user.SetManagerFlag(0);
    EXPECT_EQ(user.GetFunctionSecurity(5), 3);  // kept below the privilege
    EXPECT_EQ(user.GetSecurity().GetFunctionName(-2), "\x83\x5C");

    for (const char* const password : {"", "new"}) {  // an empty one changes nothing
        user.SetPassword(password);
        EXPECT_EQ(store->SaveFunctionSecurity(user), 1);
        EXPECT_EQ(store->Logon("MILLER", "pw"), *password == '\0' ? 1 : 0);
    }
    EXPECT_EQ(store->Logon("miller", "new"), 1);
    EXPECT_EQ(store->GetLogonUsername(), "miller");
    EXPECT_EQ(store->Logon("bob", ""), 0);  // has no password yet

    EXPECT_EQ(store->DeleteUser("admin"), 0) << "the last administrator";
    EXPECT_EQ(store->SaveFunctionSecurity(Record("admin", "")), 0) << "the last administrator";
    EXPECT_EQ(store->DeleteUser("miller"), 1);
    EXPECT_EQ(Line({store->DeleteUser("miller"), store->SaveFunctionSecurity(user)}), "0 0");
    EXPECT_EQ(store->GetLogonUsername(), "");
    EXPECT_EQ(store->GetUserCount(), 2);
    CUserInfo eve = Record("eve", "");
    eve.SetUserID(user.GetUserID());
    EXPECT_EQ(Line({store->AddUser(eve), store->GetLogonUsername()}), "1 ") << "miller was logged on, not eve";
}

TEST_F(UserStoreTest, FiveWrongPasswordsLockAUser) {
    auto store = Open();
    store->CreateFirstAdministrator("admin", "first");
    store->AddUser(Record("bob", "pw"));
    store.reset();  // forked children must not have it
    std::vector<std::unique_ptr<ChildProcess>> guesses;
    for (int i = 0; i < 8; ++i) {
        guesses.push_back(std::make_unique<ChildProcess>([&] { return Open()->Logon("bob", "wrong"); }));
    }
    for (const auto& guess : guesses) EXPECT_EQ(guess->Wait(), 0);
    store = Open();
    EXPECT_EQ(store->Logon("bob", "pw"), 0) << "eight guesses side by side";
    m_now += std::chrono::minutes(5);
    EXPECT_EQ(store->Logon("bob", "pw"), 1);  // the count starts again
    for (int i = 0; i < 5; ++i) EXPECT_EQ(store->Logon("bob", "wrong"), 0);
    for (const auto& [later, password, expected] : Cases<int, const char*, int>{
             {299, "pw", 0},
             {1, "wrong", 0},
             {299, "pw", 0},
             {1, "pw", 1},
             {0, "wrong", 0},
             {0, "pw", 1},
         }) {
        m_now += std::chrono::seconds(later);
        EXPECT_EQ(store->Logon("bob", password), expected) << later << password;
    }
    for (int i = 0; i < 5; ++i) store->Logon("bob", "wrong");
    m_now -= std::chrono::hours(9);  // the clock was wrong
    EXPECT_EQ(store->Logon("bob", "pw"), 1);
    for (int i = 0; i < 5; ++i) store->Logon("bob", "wrong");
    EXPECT_EQ(store->SaveFunctionSecurity(Record("bob", "new")), 1);
    EXPECT_EQ(store->Logon("bob", "new"), 1);
    m_settings.lock.length = std::chrono::seconds::max();
    store = Open();
    for (int i = 0; i < 5; ++i) store->Logon("bob", "wrong");
    m_now += std::chrono::days(10'000);
    EXPECT_EQ(store->Logon("bob", "new"), 0) << "locked for ever";
    Damage("UPDATE attempts SET refused = 9223372036854775807, locked_until = 0");
    EXPECT_EQ(Line({store->Logon("bob", "wrong"), store->Logon("bob", "new")}), "0 0") << "more than can be counted";
    Damage("UPDATE users SET manager = 4294967296");
    CUserInfo damaged;
    EXPECT_EQ(Line({store->GetUserInfo("bob", &damaged), qel::LastFailure().text}),
              "0 an account has too large a number");
}

TEST_F(UserStoreTest, AGuessWhoseProgramWasKilledIsReportedByTheNextAttempt) {
    Open()->CreateFirstAdministrator("admin", "first");
    Open()->AddUser(Record("bob", "pw"));
    std::string reported;
    bool isKilled = true;
    m_settings.lock.mostRefused = 1;
    m_settings.record = [&](const qel::AccountChange& change) {
        if (isKilled) ::_exit(3);
        reported += Line({static_cast<int>(change.event), change.account, change.reason}) + '|';
        return true;
    };
    EXPECT_EQ(InChild([&] { return Open()->Logon("bob", "wrong"); }), 3);
    isKilled = false;
    EXPECT_EQ(Open()->Logon("bob", "pw"), 0);
    EXPECT_EQ(reported, "1 bob an earlier attempt that was not recorded|3 bob |1 bob |");
    m_now += std::chrono::minutes(5);
    reported.clear();
    EXPECT_EQ(Open()->Logon("bob", "pw"), 1);
    EXPECT_EQ(reported, "0 bob |");
}

TEST(PasswordRules, AskForLengthKindsAndNotTheName) {
    using Fault = qel::PasswordFault;
    qel::PasswordRules rules;
    rules.leastCharacters = 6;
    rules.leastKinds = 2;
    rules.isNameRefused = rules.isOneCharacterRefused = true;
    for (const auto& [password, fault] : Cases<std::string, Fault>{
             {"", Fault::kImpossible},
             {std::string(1025, 'x'), Fault::kImpossible},
             {"ab12!", Fault::kTooShort},
             {"a1\x83\x5C\x83\x5C\x83\x5C", Fault::kTooShort},  // five characters of eight bytes
             {"a1\x83\x5C\x83\x5C\x83\x5C\x83\x5C", Fault::kNone},
             {"zzzzzz", Fault::kTooFewKinds},
             {"zxcvbn", Fault::kTooFewKinds},
             {"zxcvbN", Fault::kNone},
             {"zxcvb1", Fault::kNone},
             {"MORI-77", Fault::kHasName},
             {"xAKIKOx1", Fault::kHasName},
             {"mori.a", Fault::kHasName},  // a part of the name
             {"kato-a", Fault::kNone},     // words of two characters are in many passwords
         }) {
        EXPECT_EQ(FindPasswordFault(rules, "mori.a-71", "Mori Akiko", password.c_str()), fault) << password;
        EXPECT_EQ(qel::FindPasswordFault({}, "mori.a-71", "", password.c_str()) == Fault::kNone,
                  fault != Fault::kImpossible);
    }
    rules.leastKinds = 1;
    EXPECT_EQ(FindPasswordFault(rules, "mori", "", "zzzzzz"), Fault::kOneCharacter);
}

TEST_F(UserStoreTest, PasswordsGrowOldAndAreNotTakenAgain) {
    using Fault = qel::PasswordFault;
    using Status = qel::LogonStatus;
    constexpr int kDay = 24 * 3600;
    Open()->CreateFirstAdministrator("admin", "first");
    Open()->AddUser(Record("bob", "pw0"));
    const std::string before = m_folder.Read("users.db");
    EXPECT_EQ(before.find("earlier_passwords"), std::string::npos) << "no rule, other bytes";
    const auto bare = m_settings;
    m_settings.passwords.greatestAge = std::chrono::days(90);
    m_settings.passwords.leastAge = std::chrono::days(1);
    m_settings.passwords.history = 3;
    m_settings.passwords.mustChangeAtFirstUse = true;
    const auto store = Open();
    EXPECT_EQ(m_folder.Read("users.db"), before);
    int number = 0;
    struct Step {
        int later;             // seconds
        const char* password;  // present, as typed
        const char* other;     // to change to; null for a logon
        Status status;         // of the logon
        Fault fault;           // of the change
    };
    for (const Step& step : {
             Step{0, "pw0", nullptr, Status::kLoggedOn, {}},  // its age counts from now on
             Step{90 * kDay, "pw0", nullptr, Status::kLoggedOn, {}},
             Step{1, "wrong", nullptr, Status::kRefused, {}},
             Step{0, "pw0", nullptr, Status::kPasswordExpired, {}},
             Step{-80 * kDay, "pw0", nullptr, Status::kPasswordExpired, {}},  // the clock was set back
             Step{-80 * kDay, "pw0", nullptr, Status::kPasswordExpired, {}},  // to before it was set
             Step{160 * kDay, "wrong", "pw1", {}, Fault::kNotVerified},
             Step{0, "pw0", "", {}, Fault::kImpossible},
             Step{0, "pw0", "pw0", {}, Fault::kUsedBefore},
             Step{0, "pw0", "pw1", {}, Fault::kNone},
             Step{0, "pw0", nullptr, Status::kRefused, {}},
             Step{0, "pw1", nullptr, Status::kLoggedOn, {}},
             Step{kDay - 1, "pw1", "pw2", {}, Fault::kTooEarly},
             Step{1, "pw1", "pw2", {}, Fault::kNone},
             Step{kDay, "pw2", "pw0", {}, Fault::kUsedBefore},
             Step{0, "pw2", "pw3", {}, Fault::kNone},
             Step{kDay, "pw3", "pw1", {}, Fault::kUsedBefore},
             Step{0, "pw3", "pw0", {}, Fault::kNone},
             Step{-1, "pw0", nullptr, Status::kPasswordExpired, {}},  // set later than now: nobody knows its age
             Step{0, "pw0", "pw4", {}, Fault::kNone},
         }) {
        SCOPED_TRACE(++number);
        m_now += std::chrono::seconds(step.later);
        if (step.other == nullptr) {
            EXPECT_EQ(store->Logon("Bob", step.password) != 0, step.status == Status::kLoggedOn);
            EXPECT_EQ(store->GetLogonStatus(), step.status);
        } else {
            EXPECT_EQ(store->ChangePassword("Bob", step.password, step.other) != 0, step.fault == Fault::kNone);
            EXPECT_EQ(store->GetPasswordFault(), step.fault) << qel::LastFailure().text;
        }
    }

    // Somebody else sets it: also that is not one of the last, and is to be changed.
    EXPECT_EQ(Line({store->SaveFunctionSecurity(Record("bob", "pw0")), store->AddUser(Record("ann", "a"))}), "0 1");
    EXPECT_EQ(store->SaveFunctionSecurity(Record("bob", "pw5")), 1);
    EXPECT_EQ(Line({store->Logon("bob", "pw5"), store->GetLogonStatus() == Status::kPasswordToChange}), "0 1");
    int asked = 0;
    store->SetLogonPrompt([&](LogonRequest& request) {
        request.username = "bob";
        if (++asked < 4) request.password = asked < 3 ? "wrong" : "pw5";
        if (request.status == Status::kPasswordToChange) request.newPassword = asked < 6 ? "pw4" : "pw6";
        EXPECT_EQ(request.fault, asked > 4 ? Fault::kUsedBefore : Fault::kNone) << asked;
        return true;
    });
    EXPECT_EQ(Line({store->LogonWithDialog(), asked}), "1 6");
    asked = 0;
    store->SetLogonPrompt([&](LogonRequest& request) {
        request.username = ++asked % 2 == 1 ? "ann" : "nobody";
        request.password = "a";
        return true;
    });
    EXPECT_EQ(Line({store->LogonWithDialog(), asked}), "0 4") << "the count begins again once";

    // A change that cannot be recorded leaves the password and those before it.
    m_settings.record = [](const qel::AccountChange&) { return false; };
    m_now += std::chrono::days(1);
    EXPECT_EQ(Open()->ChangePassword("bob", "pw6", "pw7"), 0);
    EXPECT_EQ(store->ChangePassword("bob", "pw6", "pw5"), 0) << "still one of the last";
    EXPECT_EQ(store->Logon("bob", "pw6"), 1);

    // A program without these rules opens the file; what it sets counts from the next logon.
    m_settings = bare;
    EXPECT_EQ(Line({Open()->SaveFunctionSecurity(Record("bob", "pw8")), Open()->Logon("bob", "pw8")}), "1 1");
    EXPECT_EQ(Line({store->Logon("bob", "pw8"), store->DeleteUser("bob"), store->CheckIntegrity()}), "1 1 1");
    Damage("UPDATE passwords SET set_at = -1");
    EXPECT_EQ(store->Logon("ann", "a"), 0);
    EXPECT_EQ(qel::LastFailure().text, "a password has a time that does not exist");
}

TEST_F(UserStoreTest, RightPasswordsAtOnceAllLogOnBesideWrongOnesThatDoNotLock) {
    m_settings.cost = {};  // as it usually is: long enough that all would be checked at once
    auto store = Open();
    store->CreateFirstAdministrator("admin", "first");
    store->AddUser(Record("bob", "pw"));
    store.reset();  // forked children must not have it
    std::vector<std::unique_ptr<ChildProcess>> logons;
    for (int i = 0; i < 12; ++i) {
        const char* const password = i % 4 == 3 ? "wrong" : "pw";
        logons.push_back(std::make_unique<ChildProcess>([this, password] { return Open()->Logon("Bob", password); }));
    }
    std::string answers;
    for (const auto& logon : logons) answers += std::to_string(logon->Wait());
    EXPECT_EQ(answers, "111011101110");
    EXPECT_EQ(m_folder.Count(), 1);
}

TEST_F(UserStoreTest, AKilledLogonHoldsUpNobody) {
    auto store = Open();
    store->CreateFirstAdministrator("admin", "first");
    store.reset();
    for (int kill = 0; kill < 4; ++kill) {
        ChildProcess logon([&] {
            const auto own = Open();
            m_folder.Write("ready", "");
            for (;;) own->Logon("admin", "first");
            return 1;
        });
        while (!m_folder.Has("ready") && !logon.HasEnded()) std::this_thread::yield();
        logon.Kill();
        EXPECT_EQ(Open()->Logon("admin", "first"), 1);
        std::filesystem::remove(m_folder.Posix("ready"));
    }
    EXPECT_EQ(m_folder.Count(), 1);
}

// A store that a group of the system's accounts shares, by its name or a link.
TEST_F(UserStoreTest, AKilledLogonOfOneAccountKeepsNoOtherAccountOut) {
    constexpr uid_t kOne = 3001, kOther = 3002;
    constexpr gid_t kGroup = 3100;
    if (::geteuid() != 0) GTEST_SKIP() << "needs the right to be another";
    Open()->CreateFirstAdministrator("admin", "first");
    for (const char* const name : {"", "users.db"}) {
        ASSERT_EQ(::chown(m_folder.Posix(name).c_str(), kOne, kGroup), 0);
        ASSERT_EQ(::chmod(m_folder.Posix(name).c_str(), *name == '\0' ? 0770 : 0660), 0);
    }
    std::filesystem::create_symlink("users.db", m_folder.Posix("link.db"));
    const auto as = [](uid_t user, auto&& body) {
        return ::setgroups(0, nullptr) == 0 && ::setegid(kGroup) == 0 && ::seteuid(user) == 0 ? body() : 98;
    };
    const auto turns = [&] {
        std::vector<std::filesystem::path> found;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.Posix())) {
            if (entry.path().filename().string().find(".logon-") != std::string::npos) found.push_back(entry.path());
        }
        return found;
    };
    for (const uid_t user : {uid_t{0}, kOne}) {
        ChildProcess logon([&] {
            return as(user, [&] {
                const qel::LogonTurn turn(m_folder.Posix("link.db"), "admin");
                m_folder.Write("ready", "");
                return ::pause();
            });
        });
        while (!m_folder.Has("ready") && !logon.HasEnded()) std::this_thread::yield();
        logon.Kill();
        ASSERT_EQ(turns().size(), 1u);
        EXPECT_EQ(InChild([&] { return as(kOther, [&] { return Open()->Logon("admin", "first"); }); }), 1) << user;
        EXPECT_EQ(turns().size(), 0u);
        std::filesystem::remove(m_folder.Posix("ready"));
    }
}

TEST_F(UserStoreTest, AnUnknownUserTakesAsLongAsAWrongPassword) {
    auto store = Open();
    store->AddUser(Record("bob", "pw"));
    m_settings.cost = {2, 16 << 20};
    store = Open();
    EXPECT_EQ(store->Logon("bob", "pw"), 1);  // from now on at the new cost
    const auto cost = [&](const char* name) {
        double least = 1e9;
        for (int i = 0; i < 5; ++i) {
            const std::clock_t before = std::clock();
            EXPECT_EQ(store->Logon(name, "wrong"), 0);
            least = std::min(least, static_cast<double>(std::clock() - before));
        }
        return least;
    };
    // A look-up without a password's hash takes a hundredth; other programs on the machine make hashes differ too.
    const double ratio = cost("nobody") / cost("bob");
    EXPECT_TRUE(ratio > 0.2 && ratio < 5) << ratio;
}

TEST_F(UserStoreTest, ATokenLogsItsUserOn) {
    auto store = Open();
    store->CreateFirstAdministrator("admin", "first");
    store->AddUser(Record("bob", "pw"));
    CSystemSetting setting(store.get());
    EXPECT_EQ(Line({setting.SetAutoLogonUser("nobody"), setting.SetAutoLogon(1), setting.SetAutoLogonUser("BOB")}),
              "0 1 1");
    EXPECT_EQ(ModeOf("users.db.token"), 0600u);
    const CString token = setting.GetAutoLogonPassword();
    EXPECT_EQ(token.GetLength(), 64);
    EXPECT_EQ(setting.LogonWithoutDialog("admin", token), 0);
    store = Open();
    setting.Initialize(store.get());
    EXPECT_EQ(setting.LogonWithoutDialog(setting.GetAutoLogonUserName(), setting.GetAutoLogonPassword()), 1);
    EXPECT_EQ(setting.GetLogonUserSecurityLevel(5), 3);
    EXPECT_EQ(setting.IsAutoLogon(), 1);
    std::filesystem::permissions(m_folder.Posix("users.db.token"), std::filesystem::perms(0640));
    EXPECT_EQ(setting.GetAutoLogonPassword(), "") << "others may read it";

    EXPECT_EQ(setting.SetAutoLogonUser("bob"), 1);
    EXPECT_EQ(setting.LogonWithoutDialog("bob", token), 0) << "an earlier token";
    EXPECT_EQ(setting.DeleteUserInfo("bob"), 1);
    EXPECT_EQ(Line({setting.GetAutoLogonUserName(), setting.GetAutoLogonPassword()}), " ");
    EXPECT_EQ(Line({setting.SetAutoLogonUser("admin"), setting.DeleteUserInfo("admin")}), "1 0")
        << "the last administrator";
    EXPECT_EQ(setting.GetAutoLogonPassword().GetLength(), 64) << "so the token stays";
    m_folder.Write("users.db.token", std::string(token.View()));
    EXPECT_EQ(setting.GetAutoLogonPassword(), "") << "an earlier token";
    EXPECT_EQ(setting.SetAutoLogonUser(""), 1);
    EXPECT_FALSE(m_folder.Has("users.db.token"));
}

TEST_F(UserStoreTest, ThePromptIsAskedUpToThreeTimes) {
    auto store = Open();
    store->CreateFirstAdministrator("admin", "first");
    CSystemSetting setting(store.get());
    EXPECT_EQ(setting.LogonWithDialog(), 0);
    int asked = 0;
    store->SetLogonPrompt([&](LogonRequest& request) {
        request.username = "Admin";
        request.password = ++asked == 3 ? "first" : "wrong";
        return asked < 7;
    });
    for (const int answer : {1, 0, 0}) {  // right at last, refused three times, cancelled at once
        EXPECT_EQ(setting.LogonWithDialog(), answer);
        EXPECT_EQ(setting.IsLogon(), answer);
    }
    EXPECT_STREQ(qel::LastFailure().operation, "CSystemSetting::LogonWithDialog");
    EXPECT_EQ(asked, 7);
}

TEST_F(UserStoreTest, AFailedOperationReportsWhy) {
    std::function<void(UserStore&)> other;  // what another program does after a password was found right
    int asked = 0;                          // for the time: to count the attempt, then for the password's age
    m_settings.passwords.greatestAge = std::chrono::days(90);
    m_settings.clock = [&] {
        if (other && ++asked == 2) std::exchange(other, {})(*Open());
        return m_now;
    };
    auto store = Open();
    store->CreateFirstAdministrator("admin", "first");
    Open()->AddUser(Record("bob", "pw"));
    const auto logonBeside = [&](const char* password, std::function<void(UserStore&)> change) {
        EXPECT_EQ(store->Logon("admin", "first"), 1);
        other = std::move(change);
        asked = 0;
        return store->Logon("bob", password);
    };
    using Kind = qel::FailureKind;
    for (const auto& [operation, kind] : Cases<std::function<int()>, Kind>{
             {[&] { return store->DeleteUser("nobody"); }, Kind::kMissing},
             {[&] { return store->DeleteUser("admin"); }, Kind::kState},
             {[&] { return store->AddUser(Record("ADMIN", "pw")); }, Kind::kArgument},
             {[&] { return store->Logon("admin", "wrong"); }, Kind::kRefused},
             {[&] { return store->Logon("nobody", "wrong"); }, Kind::kRefused},
             {[&] { return store->LogonWithDialog(); }, Kind::kState},
             {[&] { return store->GetUserName(1).GetLength(); }, Kind::kMissing},
             {[&] { return store->GetUserCount(); }, Kind::kNone},
             {[&] { return UserStore(m_folder.Path("none")).GetUserCount() + 1; }, Kind::kState},
             {[&] { return logonBeside("pw", [](UserStore& own) { own.SaveFunctionSecurity(Record("bob", "new")); }); },
              Kind::kRefused},
             {[&] { return logonBeside("new", [](UserStore& own) { own.DeleteUser("bob"); }); }, Kind::kRefused},
             {[&] { return store->Logon("admin", "first"); }, Kind::kNone},
         }) {
        EXPECT_EQ(operation() == 0, kind != Kind::kNone);
        EXPECT_EQ(static_cast<int>(qel::LastFailure().kind), static_cast<int>(kind)) << qel::LastFailure().text;
    }
}

TEST_F(UserStoreTest, AReadOnlyStoreIsNeverWritten) {
    Open()->CreateFirstAdministrator("admin", "first");
    const std::string before = m_folder.Read("users.db");
    m_settings.isReadOnly = true;
    auto store = Open();
    EXPECT_EQ(Line({store->GetUserCount(), store->CheckIntegrity()}), "1 1");
    EXPECT_EQ(Line({store->Logon("admin", "first"), store->AddUser(Record("bob", "pw"))}), "0 0");
    EXPECT_EQ(m_folder.Read("users.db"), before);
    Damage("PRAGMA foreign_keys = OFF; INSERT INTO functions VALUES(9, 0, 5, 'Print', 3)");
    EXPECT_EQ(store->CheckIntegrity(), 0);
    EXPECT_EQ(qel::LastFailure().text, "there are data of a user who was deleted");
    store.reset();
    std::filesystem::remove(m_folder.Posix("users.db"));
    EXPECT_EQ(Line({Open()->IsConnected(), m_folder.Has("users.db")}), "0 0");
}

TEST_F(UserStoreTest, AChangeThatReturns1IsStored) {
    int number = 0, left = 0;
    do {
        SCOPED_TRACE(++number);
        std::filesystem::remove(m_folder.Posix("users.db"));
        auto store = Open();
        store->CreateFirstAdministrator("admin", "first");
        const CUserInfo bob = Record("bob", "pw");
        FailAllocation(number);
        const int done = store->AddUser(bob);
        left = AllocationsLeft();
        FailAllocation(0);
        EXPECT_EQ(store->GetUserCount(), 1 + done);
        EXPECT_EQ(Open()->GetUserCount(), 1 + done);
    } while (left == 0);
    EXPECT_GT(number, 10);
}

TEST_F(UserStoreTest, AChangedPasswordAndTheOneBeforeItAreOneChange) {
    m_settings.passwords.history = 2;
    int number = 1, left = 0;
    for (; left == 0; ++number) {
        SCOPED_TRACE(number);
        std::filesystem::remove(m_folder.Posix("users.db"));
        auto store = Open();
        store->CreateFirstAdministrator("admin", "pw0");
        FailAllocation(number);
        const int done = store->ChangePassword("admin", "pw0", "pw1");
        left = AllocationsLeft();
        FailAllocation(0);
        store = Open();
        EXPECT_EQ(store->Logon("admin", done != 0 ? "pw1" : "pw0"), 1);
        const qel::Database database(m_folder.Posix("users.db"), qel::DatabaseOpening::kExisting);
        qel::Query earlier(database, "SELECT count(*) FROM earlier_passwords");
        EXPECT_EQ(earlier.Step() ? earlier.Number(0) : -1, done);
    }
    EXPECT_GT(number, 10);
}

TEST_F(UserStoreTest, FilesThatAreNotAStoreAreRefused) {
    EXPECT_EQ(Open()->AddUser(Record("bob", "pw")), 1);
    Damage("UPDATE users SET passes = 4000000000, memory = 4000000000000");
    EXPECT_EQ(Open()->Logon("bob", "pw"), 0) << "would take years";
    m_settings.passwords.history = 3;
    EXPECT_EQ(Line({Open()->SaveFunctionSecurity(Record("bob", "new")), Open()->ChangePassword("bob", "new", "pw")}),
              "1 1");
    Damage("PRAGMA user_version = 2");
    const auto later = Open();
    EXPECT_EQ(qel::LastFailure().text, "the file is not a user store of this version");
    EXPECT_EQ(Line({later->IsConnected(), later->AddUser(Record("ann", "pw")), later->Logon("bob", "pw")}), "0 0 0");
    EXPECT_EQ(later->GetUserCount(), -1);
    m_folder.Write("users.db", std::string(5000, 'x'));
    EXPECT_EQ(Open()->IsConnected(), 0);
    EXPECT_EQ(m_folder.Read("users.db"), std::string(5000, 'x'));
}
