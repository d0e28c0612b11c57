#include "qellib10/record/recorded_users.h"

#include "qellib10/platform/database/database.h"
#include "qellib10/record/account_records.h"
#include "qellib10/store/user_store.h"
#include "trail_folder.h"

namespace {

// A store whose changes are entries of a trail.
class UsersFolder : public TrailFolder {
public:
    explicit UsersFolder(bool rules = false) : trail(Settings(), std::make_shared<ByteSigner>(1)), recorded(trail) {
        trail.Open();
        qel::UserStoreSettings settings;
        settings.cost = {1, 8192};
        settings.lock.mostRefused = 2;
        settings.passwords.mustChangeAtFirstUse = rules;
        settings.passwords.history = rules ? 2 : 0;
        settings.record = [this](const qel::AccountChange& change) { return recorded.Enter(change); };
        store = std::make_unique<qel::UserStore>(Path("users.db"), settings);
        store->Connect();
        recorded.SetReason("because");
        store->CreateFirstAdministrator("Admin", "first");
        store->Logon("admin", "first");
        m_shown = Lines().size();
    }
    // The entries since the last call.
    std::string New(bool withReason = false) {
        std::string text;
        for (; m_shown < Lines().size(); ++m_shown) {
            const qel::TrailEntry entry = Entry(m_shown + 1);
            text += entry.user + ' ' + entry.action + ' ' + entry.object;
            if (!entry.before.empty() || !entry.after.empty()) text += ' ' + entry.before + '>' + entry.after;
            if (withReason) text += ": " + entry.reason;
            text += '|';
        }
        return text;
    }

    qel::Trail trail;
    qel::RecordedUsers recorded;
    std::unique_ptr<qel::UserStore> store;

private:
    std::size_t m_shown = 0;
};

CUserInfo Bob(int level = 3, int manager = 0, const char* password = "") {
    CUserInfo user;
    user.SetUsername("Bob");
    user.SetUserFullname("B. \x90\x58");
    user.SetPassword(password);
    CFunctionSecurity security;
    security.AddFunctionInfo(CFunctionInfo(5, "Print", level));
    security.SetManagerParameter(manager);
    user.SetSecurity(security);
    return user;
}

}  // namespace

TEST(RecordedUsers, EveryChangeOfAnAccountIsAnEntryItemByItem) {
    UsersFolder folder;
    qel::UserStore& store = *folder.store;
    EXPECT_EQ(folder.Actions(),
              "trail started|account added|rights changed|rights changed|rights changed|password changed|logon|");
    EXPECT_EQ(Line({store.AddUser(Bob(3, 0, "violet"))}), "1");
    EXPECT_EQ(
        folder.New(),
        "Admin account added Bob >B. \xE6\xA3\xAE|Admin rights changed Bob: maker >0|Admin rights changed Bob: manager "
        ">0|"
        "Admin rights changed Bob: show >1|Admin rights changed Bob: function 5 Print >3|Admin password changed Bob|");
    store.SaveFunctionSecurity(Bob(4, 1));
    EXPECT_EQ(folder.New(), "Admin rights changed Bob: manager 0>1|Admin rights changed Bob: function 5 Print 3>4|");
    CUserInfo renamed = Bob(4, 1, "amber");
    renamed.SetUserFullname("Bob");
    store.SaveFunctionSecurity(renamed);
    EXPECT_EQ(folder.New(), "Admin account renamed Bob B. \xE6\xA3\xAE>Bob|Admin password changed Bob|");
    store.SetAutoLogon(1);
    store.SetAutoLogon(1);
    store.SetAutoLogonUser("bob");
    EXPECT_EQ(folder.New(), "Admin automatic logon changed  off>on|Admin automatic logon changed  >Bob|");
    store.DeleteUser("BOB");
    EXPECT_EQ(folder.New(), "Admin account removed Bob Bob>|Admin automatic logon changed  Bob>|");
    for (const char* const secret : {"violet", "amber", "first"})
        EXPECT_EQ(folder.Read("t").find(secret), std::string::npos) << secret;
}

TEST(RecordedUsers, LogonsRefusalsAndLocksAreEntriesWithoutWhatWasTyped) {
    UsersFolder folder;
    qel::UserStore& store = *folder.store;
    store.AddUser(Bob(3, 0, "violet"));
    folder.New();
    EXPECT_EQ(Line({store.Logon("bob", "violet"), store.Logout(), store.Logout()}), "1 1 1");
    EXPECT_EQ(folder.New(), "Admin logout |Bob logon |Bob logout |");
    for (const bool isAsked : {false, true}) {  // whoever leaves makes no more entries, also if nobody else comes
        if (isAsked) store.SetLogonPrompt([](qel::LogonRequest&) { return false; });
        EXPECT_EQ(Line({store.Logon("admin", "first"), isAsked ? store.LogonWithDialog() : store.Logon("", "x"),
                        store.SetAutoLogon(isAsked)}),
                  "1 0 1");
    }
    EXPECT_EQ(
        folder.New(),
        "Admin logon |Admin logout | logon refused |Admin logon |Admin logout | automatic logon changed  off>on|");
    EXPECT_EQ(Line({store.Logon("violet", "bob"), store.Logon("bob", "x"), store.Logon("bob", "y"),
                    store.Logon("bob", "violet")}),
              "0 0 0 0");
    EXPECT_EQ(folder.New(),
              " logon refused |Bob logon refused |Bob logon refused |Bob account locked |Bob logon refused |");
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
}

TEST(RecordedUsers, RefusedAndChangedPasswordsHaveTheirReason) {
    UsersFolder folder(true);
    qel::UserStore& store = *folder.store;
    store.AddUser(Bob(3, 0, "violet"));
    folder.recorded.SetReason("");
    folder.New();
    CUserInfo bob = Bob(3, 0, "amber"), admin;
    store.GetUserInfo("admin", &admin);
    admin.SetPassword("olive");
    EXPECT_EQ(Line({store.SaveFunctionSecurity(admin), store.SaveFunctionSecurity(bob)}), "1 0");
    EXPECT_EQ(qel::LastFailure().text, "it could not be recorded: a password that somebody else sets needs a reason");
    folder.recorded.SetReason("forgotten");
    EXPECT_EQ(Line({store.SaveFunctionSecurity(bob)}), "1");
    EXPECT_EQ(folder.New(true), "Admin password changed Admin: by its user|Admin password changed Bob: forgotten|");
    store.Logout();
    folder.New();
    folder.recorded.SetReason("because");
    EXPECT_EQ(Line({store.Logon("bob", "amber"), store.ChangePassword("bob", "wrong", "teal"),
                    store.ChangePassword("bob", "amber", "violet"), store.ChangePassword("Bob", "amber", "teal"),
                    store.ChangePassword("teal", "bob", "violet"), store.Logon("bob", "teal")}),
              "0 0 0 1 0 1");
    EXPECT_EQ(folder.New(true),
              "Bob logon refused : the password has to be changed at its first use|"
              " password refused Bob: name or present password are wrong, or were too often|"
              "Bob password refused Bob: the password was used before|"
              "Bob password changed Bob: by its user, at its first use|"
              " password refused : name or present password are wrong, or were too often|"
              "Bob logon : |");
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
}

TEST(RecordedUsers, NothingTakesEffectThatTheTrailRefuses) {
    UsersFolder folder;
    qel::UserStore& store = *folder.store;
    store.AddUser(Bob(3, 0, "violet"));
    store.SetAutoLogonUser("bob");
    folder.recorded.SetReason("");
    EXPECT_EQ(Line({store.SaveFunctionSecurity(Bob(9)), store.DeleteUser("bob")}), "0 0");
    EXPECT_EQ(qel::LastFailure().text.substr(0, 26), "it could not be recorded: ");
    CUserInfo kept;
    EXPECT_EQ(Line({store.GetUserInfo("bob", &kept), kept.GetFunctionSecurity(5)}), "1 3");
    const std::string head = folder.Read("h");
    folder.Write("h", "x");
    const CString token = store.GetAutoLogonPassword();
    EXPECT_EQ(Line({store.SetAutoLogonUser("admin"), store.SetAutoLogonUser("")}), "0 0");
    EXPECT_EQ(Line({store.GetAutoLogonUserName(), store.GetAutoLogonPassword()}), Line({"Bob", token}));
    EXPECT_EQ(token.GetLength(), 64);
    EXPECT_EQ(Line({store.Logon("bob", "violet"), store.GetLogonUsername()}), "0 ") << "nor is the one before still on";
    folder.Write("h", head);
}

TEST(AccountRecords, WhatIsChangedInTheStoresFileIsFound) {
    UsersFolder folder;
    folder.store->AddUser(Bob(3, 0, "violet"));
    CUserInfo left = Bob();
    left.SetUsername("Left");
    EXPECT_EQ(Line({folder.store->AddUser(left), folder.store->DeleteUser("left")}), "1 1");
    EXPECT_EQ(Line({folder.store->SaveFunctionSecurity(Bob(4))}), "1");
    qel::AccountRecords records;
    ASSERT_EQ(records.Read(folder.Name("t"), folder.trail.Last()), 1) << qel::LastFailure().text;
    for (const auto& [sql, expected] : Cases<const char*, const char*>{
             {"UPDATE users SET show = show", ""},
             {"UPDATE users SET manager = 1 WHERE name = 'Bob'", "3 Bob manager 0>1|"},
             {"UPDATE users SET manager = 0", "3 Admin manager 1>0|"},
             {"UPDATE users SET manager = 1 WHERE name = 'Admin'; UPDATE users SET full_name = 'x' WHERE name = 'Bob'",
              "2 Bob  B. \xE6\xA3\xAE>x|"},
             {"UPDATE functions SET id = 6", "3 Bob function 6 Print >4|3 Bob function 5 Print 4>|"},
             {"INSERT INTO users(name, folded_name, full_name, maker, manager, show) VALUES('Left', 'left', '', 0, 0, "
              "1)",
              "0 Left  >|"},
             {"DELETE FROM users WHERE name <> 'Admin'", "1 Bob  B. \xE6\xA3\xAE>|"},
         }) {
        SCOPED_TRACE(sql);
        qel::Database(folder.Posix("users.db"), qel::DatabaseOpening::kExisting).Run(sql);
        const auto found = records.Compare(*folder.store);
        ASSERT_TRUE(found) << qel::LastFailure().text;
        std::string text;
        for (const qel::AccountDifference& one : *found)
            text += Line({static_cast<int>(one.kind), one.account, one.item, one.recorded + '>' + one.found}) + '|';
        EXPECT_NE(text.find(expected), std::string::npos) << text;
        EXPECT_EQ(text.empty(), *expected == '\0') << text;
    }
    EXPECT_EQ(records.Read(folder.Name("t"), {.number = 99, .hash = std::string(64, '0')}), 0);
}
