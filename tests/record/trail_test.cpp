#include "trail_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

#include "../support/full_disk.h"
#include "../support/run_at_once.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/method_changes.h"
#include "qellib10/record/trail_head.h"
#include "qellib10/record/trail_writer.h"

using qel::TrailFlush;
namespace kind = qel::trail_kind;

namespace {

// Entry 4 after three others, as the key @p key would write it.
qel::TrailEntry Fourth(const TrailFolder& folder) {
    qel::TrailEntry entry = folder.Entry(3);
    entry.previous = HashOf(std::string_view(folder.Lines()[2]).substr(0, folder.Lines()[2].size() - 1));
    entry.number = 4;
    entry.action = "fourth";
    return entry;
}

std::string WhyNotOpened(const TrailFolder& folder, int key = 1) {
    qel::Trail trail(folder.Settings(), std::make_shared<ByteSigner>(key));
    return trail.Open() != 0 ? "" : qel::LastFailure().text;
}

std::string Patched(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

}  // namespace

TEST(Trail, AChangedMethodIsAnEntryForEachItem) {
    const CodePageScope latin1(1252);
    CQDiffList changes;
    CDiffItem item;
    for (const auto& [name, before, after] :
         Cases<const char*, const char*, const char*>{{"dose", "0.05 mL", "0.02 mL"}, {"cell \xB5S", "", "2"}}) {
        item.SetName(name);
        item.SetBefore(before);
        item.SetAfter(after);
        changes.AddDiffItem(item);
    }
    const TrailFolder folder;
    qel::Trail trail(folder.Settings(), std::make_shared<ByteSigner>(1));
    ASSERT_EQ(trail.Open(), 1);
    for (const qel::TrailRecord& record : qel::MethodChanges(changes, "mori", "passed"))
        ASSERT_TRUE(trail.Append(record)) << qel::LastFailure().text;
    std::string entered;
    for (const std::size_t number : {2, 3}) {
        const qel::TrailEntry entry = folder.Entry(number);
        entered += Line({entry.user, entry.action, entry.object, entry.before, entry.after, entry.reason}) + '|';
    }
    EXPECT_EQ(entered, "mori method changed dose 0.05 mL 0.02 mL passed|mori method changed cell \xC2\xB5S  2 passed|");
    EXPECT_FALSE(trail.Append(qel::MethodChanges(changes, "mori", "").front())) << "without a reason";
}

TEST(Trail, RefusesWhatCannotBeReadBackAndWritesNothing) {
    const TrailFolder folder;
    qel::Trail trail(folder.Settings(), std::make_shared<ByteSigner>(1));
    EXPECT_FALSE(trail.Append(Record("early"))) << "it is not open";
    ASSERT_EQ(trail.Open(), 1);
    ASSERT_TRUE(
        trail.Append(Record("a\"b\\c\n\x01\x7F"
                            "d \xC3\xA9")));
    const std::string before = folder.Read("t") + folder.Read("h");
    const auto changed = [](auto&& change) {
        qel::TrailRecord record = Record("x");
        change(record);
        return record;
    };
    using R = qel::TrailRecord;
    const std::string sum(64, 'a');
    const std::string cabinet = "{01234567-89AB-4DEF-8123-456789ABCDEF}";
    for (const auto& [what, record] : Cases<const char*, R>{
             {"no action", changed([](R& r) { r.action = " "; })},
             {"not UTF-8", changed([](R& r) { r.user = "\xC3"; })},
             {"a surrogate", changed([](R& r) { r.object = "\xED\xA0\x80"; })},
             {"a hash with capitals", changed([&](R& r) { r.sha256 = std::string(64, 'A'); })},
             {"a short hash", changed([&](R& r) { r.sha256 = sum.substr(1); })},
             {"a size without a hash", changed([](R& r) { r.size = 1; })},
             {"a size of 2^53", changed([&](R& r) { r.sha256 = sum, r.size = std::uint64_t{1} << 53; })},
             {"a version without a cabinet", changed([](R& r) { r.cabinetVersion = 1; })},
             {"a cabinet in small letters",
              changed([](R& r) { r.cabinet = "{01234567-89ab-4def-8123-456789abcdef}"; })},
             {"a change without a reason", changed([](R& r) { r.before = "1"; })},
             {"rights without a reason", changed([](R& r) { r.action = kind::kRightsChanged; })},
             {"a blank reason", changed([](R& r) { r.action = kind::kMethodChanged, r.reason = " \n"; })},
             {"too long", changed([](R& r) { r.after = std::string(65'000, 'x'); })},
             {"too long by escapes", changed([](R& r) { r.after = std::string(12'000, '\x01'); })},
             {"one of the trail's own", changed([](R& r) { r.action = kind::kTrailStarted; })},
             {"no key", changed([](R& r) { r.action = kind::kKeyAdded, r.object = "ssh-rsa AAAA"; })},
             {"a known key", changed([](R& r) { r.action = kind::kKeyAdded, r.object = ByteSigner(1).PublicKey(); })},
             {"an unknown key ended", changed([](R& r) {
                  r.action = kind::kKeyEnded, r.object = ByteSigner(2).PublicKey(), r.reason = "lost";
              })},
         }) {
        EXPECT_FALSE(trail.Append(record)) << what;
        EXPECT_NE(qel::LastFailure().text, "") << what;
        EXPECT_EQ(folder.Read("t") + folder.Read("h"), before) << what;
    }
    EXPECT_TRUE(trail.Append(changed([&](R& r) {
        r.cabinet = cabinet, r.cabinetVersion = 2, r.sha256 = sum, r.size = 0, r.after = std::string(60'000, 'x');
    })));
    EXPECT_EQ(folder.Entry(2).action,
              "a\"b\\c\n\x01\x7F"
              "d \xC3\xA9");
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
}

// Bytes after the head's entry, and what opening makes of them. One entry "next" is appended then.
TEST(Trail, TakesUpOnlyWhatFollowsAndSetsAsideOnlyWhatIsTorn) {
    const auto next = [](const TrailFolder& f, int key, auto&& change) {
        qel::TrailEntry entry = Fourth(f);
        change(entry);
        return ByteSigner(key).Line(entry);
    };
    using F = const TrailFolder&;
    using E = qel::TrailEntry&;
    const std::string start = "trail started|a|b|";
    for (const auto& [what, tail, actions] : Cases<const char*, std::function<std::string(F)>, const char*>{
             {"nothing", [](F) { return std::string(); }, "next|"},
             {"its own", [&](F f) { return next(f, 1, [](E) {}); }, "fourth|next|"},
             {"its own, then half a line", [&](F f) { return next(f, 1, [](E) {}) + "{\"fo"; },
              "fourth|tail set aside|next|"},
             {"half of its own", [&](F f) { return next(f, 1, [](E) {}).substr(0, 300); }, "tail set aside|next|"},
             {"all but the line end", [&](F f) { return Patched(next(f, 1, [](E) {}), "\n", ""); },
              "tail set aside|next|"},
             {"zeros in it, then a line end", [](F) { return std::string(600, '\0') + "\n"; }, "tail set aside|next|"},
             {"another number", [&](F f) { return next(f, 1, [](E e) { e.number = 5; }); }, nullptr},
             {"another hash before",
              [&](F f) { return next(f, 1, [](E e) { e.previous[0] = e.previous[0] == '0' ? '1' : '0'; }); }, nullptr},
             {"another trail",
              [&](F f) { return next(f, 1, [](E e) { e.trailId[0] = e.trailId[0] == '0' ? '1' : '0'; }); }, nullptr},
             {"an unknown key", [&](F f) { return next(f, 2, [](E) {}); }, nullptr},
             {"a key that announces itself",
              [&](F f) {
                  return next(f, 2, [](E e) { e.action = kind::kKeyAdded, e.object = ByteSigner(2).PublicKey(); });
              },
              nullptr},
             {"another content than signed", [&](F f) { return Patched(next(f, 1, [](E) {}), "fourth", "Fourth"); },
              nullptr},
         }) {
        SCOPED_TRACE(what);
        const TrailFolder folder;
        ASSERT_TRUE(folder.Append({"a", "b"}));
        const std::string added = tail(folder);
        folder.Write("t", folder.Read("t") + added);
        const std::string before = folder.Read("t") + folder.Read("h");
        if (actions == nullptr) {
            EXPECT_FALSE(folder.Append({"next"}));
            EXPECT_EQ(folder.Read("t") + folder.Read("h"), before) << "a finding stays to be seen";
            EXPECT_FALSE(folder.Append({"next"})) << "it is a lasting one";
            continue;
        }
        EXPECT_TRUE(folder.Append({"next"})) << qel::LastFailure().text;
        EXPECT_EQ(folder.Actions(), start + actions);
        EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
        const bool isTorn = std::string_view(actions).find("aside") != std::string_view::npos;
        const std::size_t at = isTorn ? folder.Lines().size() - 1 : 1;
        const qel::TrailEntry report = folder.Entry(at);
        EXPECT_EQ(report.sha256, isTorn ? HashOf(folder.Read(report.object)) : "");
    }
}

TEST(Trail, IsNotOpenedWhenEntriesAreMissing) {
    using F = const TrailFolder&;
    for (const auto& [what, damage, reason] : Cases<const char*, std::function<void(F)>, const char*>{
             {"cut at a line", [](F f) { f.Write("t", f.Lines()[0] + f.Lines()[1]); }, "entries are missing"},
             {"cut in a line", [](F f) { f.Write("t", f.Read("t").substr(0, f.Read("t").size() - 9)); },
              "entries are missing"},
             {"the last one changed", [](F f) { f.Write("t", Patched(f.Read("t"), "\"b\"", "\"c\"")); },
              "entries are missing"},
             {"no trail", [](F f) { std::filesystem::remove(f.Posix("t")); }, "entries are missing"},
             {"no head file", [](F f) { std::filesystem::remove(f.Posix("h")); },
              "the head file of the trail is missing"},
             {"a damaged head file", [](F f) { f.Write("h", std::string(8192, 'x')); },
              "the head file of the trail is damaged"},
             {"a link",
              [](F f) {
                  std::filesystem::rename(f.Posix("t"), f.Posix("u"));
                  std::filesystem::create_symlink(f.Posix("u"), f.Posix("t"));
              },
              "access denied"},
             {"a pipe",
              [](F f) {
                  std::filesystem::remove(f.Posix("t"));
                  ::mkfifo(f.Posix("t").c_str(), 0600);
              },
              "access denied"},
             {"gigabytes that are not there", [](F f) { std::filesystem::resize_file(f.Posix("t"), 5'000'000'000); },
              "there are "},
         }) {
        SCOPED_TRACE(what);
        const TrailFolder folder;
        ASSERT_TRUE(folder.Append({"a", "b"}));
        damage(folder);
        const int names = folder.Count();
        for (int tries = 0; tries < 2; ++tries) {
            const std::string why = WhyNotOpened(folder);
            EXPECT_TRUE(why.starts_with(reason)) << why;
        }
        EXPECT_EQ(folder.Count(), names) << "nothing is set aside";
    }
}

TEST(Trail, OpensAgainAfterAnInterruptedStart) {
    const TrailFolder folder;
    qel::TrailHeadState first;
    first.trailId = std::string(32, 'a');
    first.keys = {ByteSigner(1).Key()};
    qel::TrailHead::MakeNew(folder.Name("h"), first);
    EXPECT_EQ(WhyNotOpened(folder, 2), "") << "nobody has used the first key";
    EXPECT_EQ(WhyNotOpened(folder, 1),
              "the signer's key may not sign this trail: no entry has announced it, or it has ended");
    EXPECT_TRUE(folder.Append({"a"}, 2));
    EXPECT_EQ(folder.Entry(2).trailId, first.trailId);
    qel::TrailSettings settings = folder.Settings();
    settings.path = folder.Name(std::string(230, 'n'));
    settings.headPath = folder.Name("h3");
    EXPECT_EQ(qel::Trail(settings, std::make_shared<ByteSigner>(1)).Open(), 0) << "no torn end could be kept";
    EXPECT_FALSE(std::filesystem::exists(folder.Posix("h3")));
}

TEST(Trail, OpeningReadsFromTheHeadOnAndWritesAgainWhatWasNotAcknowledged) {
    const TrailFolder folder;
    ASSERT_TRUE(folder.Append({"a", "b"}));
    folder.Write("t", Patched(folder.Read("t"), "Titrator", "titrator") + ByteSigner(1).Line(Fourth(folder)));
    const auto old = std::filesystem::last_write_time(folder.Posix("t")) - std::chrono::hours(1);
    for (const bool isAcknowledged : {false, true}) {
        std::filesystem::last_write_time(folder.Posix("t"), old);
        EXPECT_EQ(WhyNotOpened(folder), "") << "the first entry is not looked at: that is for CheckTrail";
        EXPECT_EQ(std::filesystem::last_write_time(folder.Posix("t")) == old, isAcknowledged);
    }
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "changed 1 order 2 signer 2 signer 3 signer 4");
}

TEST(Trail, AHeadFileWithATornPlaceHasTheOtherOne) {
    const TrailFolder folder;
    ASSERT_TRUE(folder.Append({"a"}));
    const std::string before = folder.Read("h");
    ASSERT_TRUE(folder.Append({"b"}));
    const std::string head = folder.Read("h");
    ASSERT_EQ(head.size(), 8192u);
    const std::size_t place = head.substr(0, 4096) != before.substr(0, 4096) ? 0 : 4096;
    for (std::size_t at = place; at < place + 4096; at += at < place + 200 ? 1 : 97) {
        std::string torn = head;
        torn[at] ^= 1;
        folder.Write("h", torn);
        EXPECT_EQ(qel::TrailHead::OpenIfThere(folder.Name("h"), qel::GuardedFile::Use::kRead)->Load().number, 2u) << at;
    }
    EXPECT_TRUE(folder.Append({"c"}));
    EXPECT_EQ(folder.Actions(), "trail started|a|b|c|");
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
    for (const std::size_t size : {0, 100, 4096}) {  // half a head file is none, or the place that is there
        folder.Write("h", folder.Read("h").substr(0, size));
        EXPECT_NE(WhyNotOpened(folder), "") << size;
    }
}

TEST(Trail, LearnsKeysFromTrustedEntriesOnly) {
    const TrailFolder folder;
    const auto second = std::make_shared<ByteSigner>(2);
    qel::Trail trail(folder.Settings(), std::make_shared<ByteSigner>(1));
    ASSERT_EQ(trail.Open(), 1);
    EXPECT_NE(WhyNotOpened(folder, 2), "");
    EXPECT_TRUE(trail.Append(Record(kind::kKeyAdded, second->PublicKey())));
    qel::Trail other(folder.Settings(), second);
    EXPECT_EQ(other.Open(), 1);
    EXPECT_TRUE(other.Append(Record("by the second")));
    EXPECT_TRUE(trail.Append(Record("by the first")));
    EXPECT_TRUE(trail.Append(Record(kind::kKeyEnded, second->PublicKey())));
    EXPECT_FALSE(trail.Append(Record(kind::kKeyEnded, ByteSigner(1).PublicKey()))) << "the last one";
    EXPECT_FALSE(other.Append(Record("too late")));
    EXPECT_NE(WhyNotOpened(folder, 2), "");
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
}

TEST(Trail, NoticesThatItsFileWasReplaced) {
    const TrailFolder folder;
    for (const char* const name : {"t", "h"}) {
        qel::Trail trail(folder.Settings(), std::make_shared<ByteSigner>(1));
        ASSERT_EQ(trail.Open(), 1);
        folder.Write("copy", folder.Read(name));
        std::filesystem::rename(folder.Posix("copy"), folder.Posix(name));
        EXPECT_FALSE(trail.Append(Record("lost"))) << name;
        EXPECT_EQ(folder.Actions().find("lost"), std::string::npos) << name;
    }
    const std::string old = folder.Read("h");
    qel::Trail trail(folder.Settings(), std::make_shared<ByteSigner>(1));
    ASSERT_TRUE(trail.Open() != 0 && trail.Append(Record("a")));
    folder.Write("h", old);
    EXPECT_FALSE(trail.Append(Record("b")));
    EXPECT_EQ(qel::LastFailure().text, "the head file of the trail was put back to an older one");
}

TEST(Trail, GoesOnFromAnotherOne) {
    const TrailFolder folder;
    ASSERT_TRUE(folder.Append({"a"}));
    qel::TrailSettings settings = folder.Settings();
    settings.continues = settings.path;
    settings.path = folder.Name("t2");
    settings.headPath = folder.Name("h2");
    qel::Trail trail(settings, std::make_shared<ByteSigner>(1));
    EXPECT_EQ(trail.Open(), 0) << "without its head file";
    settings.continuesHeadPath = folder.Name("h");
    const std::string whole = folder.Read("t");
    folder.Write("t", whole.substr(0, whole.find('\n') + 1));
    EXPECT_EQ(qel::Trail(settings, std::make_shared<ByteSigner>(1)).Open(), 0) << "of a cut trail";
    folder.Write("t", whole);
    qel::Trail next(settings, std::make_shared<ByteSigner>(1));
    ASSERT_EQ(next.Open(), 1);
    qel::TrailReader reader;
    reader.Open(settings.path);
    const std::string last = folder.Lines()[1];
    EXPECT_EQ(reader.Next()->before, folder.Entry(1).trailId + " 2 " + HashOf(last.substr(0, last.size() - 1)));
}

TEST(Trail, TimesNeverGoBackAndJumpsOfTheClockAreEntries) {
    constexpr std::int64_t kStart = 1'800'000'000'000;
    const std::string boot = "c163102d-1e66-48ff-9173-6b35d61f6c99", other = "d163102d-1e66-48ff-9173-6b35d61f6c99";
    const TrailFolder folder;
    qel::TrailMoment now{kStart, 1000, boot};
    qel::TrailWriter writer(folder.Settings(), std::make_shared<ByteSigner>(1), [&] { return now; });
    writer.Open();
    struct Case {
        std::int64_t clock;
        std::uint64_t running;
        const std::string& boot;
        const char* expected;  // action, time and the clock's own, in ms after the start
    };
    for (const Case& c :
         {Case{5000, 6000, boot, "x 5000"}, Case{9000, 8000, boot, "x 9000"},  // 2 s too far: no more than is allowed
          Case{12'001, 9000, boot, "clock jumped 12001 x 12001"}, Case{12'000, 10'000, boot, "x 12001(12000)"},
          Case{1000, 11'000, boot, "clock jumped 12001(1000) x 12001(1000)"}, Case{2000, 12'000, boot, "x 12001(2000)"},
          Case{500, 10, other, "x 12001(500)"},  // nobody knows how long it was off
          Case{20'000, 19'510, other, "x 20000"}}) {
        const std::size_t before = folder.Lines().size();
        now = {kStart + c.clock, c.running, c.boot};
        writer.Append(Record("x"));
        std::string found;
        for (std::size_t number = before + 1; number <= folder.Lines().size(); ++number) {
            const qel::TrailEntry entry = folder.Entry(number);
            found += (found.empty() ? "" : " ") + entry.action + ' ' + std::to_string(entry.time - kStart);
            if (entry.clock) found += '(' + std::to_string(*entry.clock - kStart) + ')';
        }
        EXPECT_EQ(found, c.expected);
    }
    now.bootTime = 0;
    EXPECT_THROW(writer.Append(Record("x")), qel::DataError) << "of another system with the same boot id";
    const qel::TrailReport report = folder.CheckWithHead();
    EXPECT_EQ(folder.Findings(report), "");
    EXPECT_EQ(std::pair(report.clockSet, report.firstClockSet), std::pair(std::uint64_t{6}, std::uint64_t{4}));
}

TEST(Trail, AcknowledgesNothingThatIsWronglySigned) {
    struct Broken : ByteSigner {
        using ByteSigner::ByteSigner;
        std::array<std::byte, 64> Sign(std::string_view bytes) override {
            std::array<std::byte, 64> signature = ByteSigner::Sign(bytes);
            if (isBroken) signature[0] ^= std::byte{1};
            return signature;
        }
        bool isBroken = false;
    };
    const TrailFolder folder;
    const auto signer = std::make_shared<Broken>(1);
    qel::Trail trail(folder.Settings(), signer);
    ASSERT_EQ(trail.Open(), 1);
    const std::string before = folder.Read("t") + folder.Read("h");
    signer->isBroken = true;
    EXPECT_FALSE(trail.Append(Record("x")));
    EXPECT_EQ(folder.Read("t") + folder.Read("h"), before);
    signer->isBroken = false;
    EXPECT_TRUE(trail.Append(Record("x")));
}

TEST(Trail, ManyAppendAtOnceByEachWayOfFlushing) {
    for (const TrailFlush flush : {TrailFlush::kEach, TrailFlush::kGroup, TrailFlush::kCaller}) {
        SCOPED_TRACE(static_cast<int>(flush));
        const TrailFolder folder;
        constexpr int kWriters = 6, kThreads = 2, kEntries = 8;
        ASSERT_TRUE(folder.Append({}));
        const auto write = [&](int) {
            qel::Trail trail(folder.Settings(flush), std::make_shared<ByteSigner>(1));
            std::atomic<int> failed = trail.Open() == 0;
            std::vector<std::thread> threads;
            for (int i = 0; i < kThreads; ++i) {
                threads.emplace_back([&] {
                    for (int n = 0; n < kEntries; ++n) failed += trail.Append(Record("x")) ? 0 : 1;
                });
            }
            for (std::thread& thread : threads) thread.join();
            return failed + (trail.Flush() != 0 ? 0 : 1);
        };
        EXPECT_EQ(RunAtOnce(kWriters, write), 0);
        const qel::TrailReport report = folder.CheckWithHead();
        EXPECT_EQ(Line({folder.Findings(report), report.entries}), " 97") << "each entry once, in one chain";
    }
}

TEST(Trail, UnflushedEntriesAreAcknowledgedByTheCallerOrByOthers) {
    const TrailFolder folder;
    qel::Trail trail(folder.Settings(TrailFlush::kCaller), std::make_shared<ByteSigner>(1));
    ASSERT_EQ(trail.Open(), 1);
    ASSERT_TRUE(trail.Append(Record("a")) && trail.Append(Record("b")));
    EXPECT_EQ(trail.Last().number, 1u);
    EXPECT_EQ(trail.Flush(), 1);
    EXPECT_EQ(trail.Last().number, 3u);
    ASSERT_TRUE(trail.Append(Record("c")));
    EXPECT_TRUE(folder.Append({"d"})) << "takes up what it finds";
    EXPECT_EQ(trail.Flush(), 1);
    ASSERT_TRUE(trail.Append(Record("lost")));
    const std::string text = folder.Read("t");
    folder.Write("t", text.substr(0, text.size() - folder.Lines().back().size()));
    EXPECT_EQ(trail.Flush(), 0) << "what somebody cut off is not acknowledged";
    EXPECT_EQ(qel::LastFailure().text, "entry 6 was not acknowledged and is not in the trail any more");
    EXPECT_FALSE(trail.Append(Record("by a thread that does not know")));
    EXPECT_EQ(trail.Flush(), 0) << "of a thread that has appended before";
    EXPECT_TRUE(trail.Open() != 0 && trail.Append(Record("e")) && trail.Flush() != 0);
    EXPECT_EQ(folder.Actions(), "trail started|a|b|c|d|e|");
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
}

TEST(Trail, NeverLeavesMoreUnflushedThanATailMayHave) {
    const TrailFolder folder;
    qel::Trail trail(folder.Settings(TrailFlush::kCaller), std::make_shared<ByteSigner>(1));
    ASSERT_EQ(trail.Open(), 1);
    qel::TrailRecord record = Record("long");
    record.after = std::string(60'000, 'x');
    for (int i = 0; i < 75; ++i) ASSERT_TRUE(trail.Append(record));
    EXPECT_GT(trail.Last().number, 60u);
    EXPECT_LT(trail.Last().number, 76u);
}

TEST(Trail, ATornEndOnAFullDiskCanBeKeptLater) {
    const TrailFolder folder;
    ASSERT_TRUE(folder.Append({"a"}));
    const std::string torn(20'000, '{');
    folder.Write("t", folder.Read("t") + torn);
    EXPECT_EQ(OnFullDisk(9'000,
                         [&] {
                             for (int i = 0; i < 120; ++i) {
                                 if (WhyNotOpened(folder).empty()) return 1;
                             }
                             return 0;
                         }),
              0);
    EXPECT_EQ(WhyNotOpened(folder), "");
    EXPECT_EQ(folder.Read("t.tail-3-1"), torn);
    EXPECT_FALSE(std::filesystem::exists(folder.Posix("t.tail-3-2")));
}

TEST(Trail, AFullDiskIsAClearFailureAndNothingHalf) {
    const TrailFolder folder;
    ASSERT_TRUE(folder.Append({"a"}));
    const std::string before = folder.Read("t");
    const rlim_t size = before.size() + 400;
    EXPECT_EQ(OnFullDisk(std::max<rlim_t>(size, 8192),
                         [&] {
                             qel::Trail trail(folder.Settings(), std::make_shared<ByteSigner>(1));
                             if (trail.Open() == 0) return 1;
                             while (trail.Append(Record("b"))) {
                             }
                             return qel::LastFailure().kind == qel::FailureKind::kFile ? 0 : 2;
                         }),
              0);
    EXPECT_EQ(folder.Read("t").back(), '\n');
    EXPECT_TRUE(folder.Append({"c"}));
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
}

TEST(Trail, AForkedChildDoesNotUseItsParentsLock) {
    const TrailFolder folder;
    qel::Trail trail(folder.Settings(), std::make_shared<ByteSigner>(1));
    ASSERT_EQ(trail.Open(), 1);
    EXPECT_EQ(InChild([&] { return trail.Append(Record("x")) ? 1 : 0; }), 0);
    EXPECT_TRUE(trail.Append(Record("y")));
}
