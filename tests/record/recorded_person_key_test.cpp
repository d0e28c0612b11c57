#include "qellib10/record/recorded_person_key.h"

#include <thread>

#include "../support/run_at_once.h"
#include "qellib10/platform/storage/file_exception.h"
#include "qellib10/record/next_person_key.h"
#include "qellib10/record/person_key.h"
#include "qellib10/record/person_key_format.h"
#include "signing_folder.h"

namespace {

qel::PersonKeyFile File(const std::string& user, int key) {
    qel::PersonKeyFile file;
    file.user = user;
    file.name = "Mori Akiko";
    file.key = ByteSigner(key).Key();
    return file;
}

// As much as tells keys apart.
std::string End(const std::string& text) { return text.substr(text.size() - std::min<std::size_t>(text.size(), 4)); }
std::string End(int key) { return End(ByteSigner(key).PublicKey()); }

// The entries after the one with this number: action, user and last letter of the object.
std::string EntriesAfter(const People& people, std::size_t number) {
    std::string text;
    for (std::size_t i = number + 1; i <= people.Lines().size(); ++i) {
        const qel::TrailEntry entry = people.Entry(i);
        text += entry.action + ' ' + entry.user + ' ' + End(entry.object) + '|';
    }
    return text;
}

}  // namespace

// Each key that is made and each password that is tried costs half a second: eight in all.
TEST(RecordedPersonKey, KeysAndPasswordsChangeByEntries) {
    People people;
    qel::RecordedPersonKey ota(people.trail, people.Name("k"));
    ASSERT_EQ(ota.Make("ota", "Ota", "one", "kato", "new colleague"), 1) << qel::LastFailure().text;
    EXPECT_FALSE(people.Has("k.next"));
    qel::PersonKey key;
    ASSERT_EQ(key.Open(people.Name("k")), 1);
    const std::string first = key.PublicKey(), last4 = End(first);
    EXPECT_EQ(EntriesAfter(people, 4), "person key changing kato ota|person key added ota " + last4 + '|');
    EXPECT_EQ(Line({people.Entry(5).after == first + " Ota", people.Entry(5).reason, people.Entry(6).after,
                    people.Entry(6).reason}),
              "1 new colleague Ota new colleague");
    EXPECT_EQ(ota.Make("ota", "Ota", "one", "kato", "again"), 0);
    EXPECT_EQ(qel::LastFailure().text, "the file of a person's key exists already");

    EXPECT_EQ(ota.ChangePassword("Ota", "one", "two"), 1) << qel::LastFailure().text;
    EXPECT_EQ(EntriesAfter(people, 6) + people.Entry(7).reason, "password changed ota " + last4 + "|by its user");
    EXPECT_NO_THROW(key.Sign("x", "two"));

    std::string damaged = people.Read("k");
    damaged[damaged.size() / 2] ^= 1;
    people.Write("k", damaged);
    std::filesystem::permissions(people.Posix("k"), std::filesystem::perms(0640));
    ASSERT_EQ(ota.Reset("ota", "Ota", "three", "kato", "forgotten"), 1) << qel::LastFailure().text;
    EXPECT_EQ(Line({people.Entry(8).before == first, people.Entry(9).object == first, people.Entry(9).action}),
              "1 1 person key ended");
    EXPECT_EQ(people.Entry(10).action, "person key added");

    EXPECT_EQ(ota.ChangePassword("three", "ota", "four"), 0);  // the password in the place of the name
    EXPECT_EQ(ota.ChangePassword("ota", "two", "four"), 0);
    EXPECT_EQ(Line({people.Entry(11).action, people.Entry(11).user, people.Entry(11).reason}),
              "signature refused  the name is not that of the key");
    EXPECT_EQ(Line({people.Entry(12).user, people.Entry(12).reason, ota.HasEnded()}), "ota the password is wrong 0");
    ASSERT_EQ(ota.End("ota", "kato", "left us"), 1) << qel::LastFailure().text;
    EXPECT_EQ(ota.ChangePassword("ota", "three", "four"), 0);
    EXPECT_EQ(qel::LastFailure().text, "the key was not announced for this user, or has ended");
    const std::string before = people.Read("t");
    EXPECT_EQ(ota.ChangePassword("ota", "three", "four"), 0);
    EXPECT_EQ(Line({ota.HasEnded(), qel::LastFailure().kind == qel::FailureKind::kState, people.Read("t") == before}),
              "1 1 1");
    EXPECT_EQ(people.Found() + people.Findings(people.CheckWithHead()), "");
}

// Whichever comes first: four halves of a second and a reset, two of them at the same moment.
TEST(RecordedPersonKey, AChangedPasswordNeverBringsBackAKeyThatHasEnded) {
    People people;
    qel::RecordedPersonKey ota(people.trail, people.Name("k"));
    ASSERT_EQ(ota.Make("ota", "Ota", "one", "kato", "new colleague"), 1) << qel::LastFailure().text;
    qel::PersonKey key, now;
    ASSERT_EQ(key.Open(people.Name("k")), 1);
    std::thread change([&] { key.ChangePassword("one", "two"); });
    EXPECT_EQ(ota.Reset("ota", "Ota", "three", "kato", "forgotten"), 1) << qel::LastFailure().text;
    change.join();
    ASSERT_EQ(now.Open(people.Name("k")), 1);
    EXPECT_EQ(Line({people.Entry(9).action, people.Entry(9).object == now.PublicKey()}), "person key added 1");
}

TEST(NextPersonKey, WhoeverWaitedForAFileThatWasRemovedTakesTheNextOne) {
    const TempFolder folder;
    const auto take = [&](int) {
        for (int i = 0; i < 50; ++i) try {
                const qel::NextPersonKey next(folder.Name("k"));
            } catch (const CFileException&) {
                return 1;
            }
        return 0;
    };
    EXPECT_EQ(RunAtOnce(4, take), 0);
    EXPECT_FALSE(folder.Has("k.next"));
}

TEST(RecordedPersonKey, RefusesWithoutAnEntryWhatCannotBe) {
    People people;
    people.Write("other", File("sato", 13).Text());
    std::filesystem::permissions(people.Posix("other"), std::filesystem::perms(0640));
    const std::string before = people.Read("t");
    for (const auto& [isReset, file, user, by, reason, why] :
         Cases<bool, const char*, const char*, const char*, const char*, const char*>{
             {false, "k", "mori", "kato", "new", "the user has a key already: reset it"},
             {false, "k", "ota", "", "new",
              "a person's key needs a user, who gives it, and why: 1 to 256 bytes that can be shown"},
             {false, "k", "ota", "kato", "",
              "a person's key needs a user, who gives it, and why: 1 to 256 bytes that can be shown"},
             {true, "k", "ota", "kato", "lost", "no key was announced for this user"},
             {true, "other", "mori", "kato", "lost", "the file has another person's key"},
         }) {
        qel::RecordedPersonKey key(people.trail, people.Name(file));
        EXPECT_EQ(isReset ? key.Reset(user, "Name", "x", by, reason) : key.Make(user, "Name", "x", by, reason), 0);
        EXPECT_EQ(qel::LastFailure().text, why);
    }
    EXPECT_EQ(Line({people.Read("t") == before, people.Has("k"), people.Has("k.next")}), "1 0 0");
}

// A program that was killed has left the next key, 14, of mori, whose key is 11, and the entries up to some place.
TEST(RecordedPersonKey, AnInterruptedResetIsFinishedOrForgottenByWhatTheTrailSays) {
    const std::string changing = "changing 14", over = "changing 14, changing 15";
    const std::string rest = "person key ended mori " + End(11) + "|person key added mori " + End(14) + '|';
    for (const auto& [entries, left, found, isFinished] : Cases<std::string, std::string, std::string, bool>{
             {"", "whole", "", false},
             {changing, "whole", rest, true},
             {changing, "torn", "", false},
             {changing + ", mori -11", "whole", "person key added mori " + End(14) + '|', true},
             {changing + ", mori -11, mori +14", "whole", "", true},
             {changing + ", mori -11, mori +14, mori -14", "whole", "", false},  // put back from a copy
             {over, "whole", "", false},
         }) {
        SCOPED_TRACE(entries + ' ' + left);
        People people;
        std::istringstream all(entries);
        for (std::string step; std::getline(all >> std::ws, step, ',');) {
            if (!step.starts_with("changing")) {
                people.Do(step);
                continue;
            }
            qel::TrailRecord record = Record("person key changing", "mori");
            record.user = "kato";
            record.after = ByteSigner(std::stoi(step.substr(9))).PublicKey();
            ASSERT_TRUE(people.trail.Append(record)) << qel::LastFailure().text;
        }
        const std::string next = File("mori", 14).Text();
        people.Write("k", File("mori", 11).Text());
        people.Write("k.next", left == "torn" ? next.substr(0, 100) : next);
        for (const char* const name : {"k", "k.next"})
            std::filesystem::permissions(people.Posix(name), std::filesystem::perms(0600));
        const std::size_t before = people.Lines().size();
        qel::RecordedPersonKey key(people.trail, people.Name("k"));
        EXPECT_EQ(key.ChangePassword("nobody", "x", "y"), 0);
        EXPECT_EQ(EntriesAfter(people, before).substr(0, found.size()), found);
        EXPECT_EQ(people.Lines().size(), before + static_cast<std::size_t>(std::ranges::count(found, '|')) + 1);
        EXPECT_EQ(Line({people.Read("k") == next, people.Has("k.next"), people.Found()}), Line({isFinished, 0, ""}));
    }
}
