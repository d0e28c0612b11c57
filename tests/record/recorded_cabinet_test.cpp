#include "qellib10/record/recorded_cabinet.h"

#include "../support/full_disk.h"
#include "../support/output_of.h"
#include "../support/run_at_once.h"
#include "../support/test.h"
#include "qellib10/file/check_sums.h"
#include "qellib10/platform/endian.h"
#include "qellib10/platform/error.h"
#include "qellib10/record/cabinet_records.h"
#include "qellib10/record/trail_backwards.h"
#include "qellib10/secure/history_cabinet_format.h"
#include "recorded_folder.h"

namespace {

using qel::FailureKind;
using Archive = RecordedFolder::Archive;

// Calls back whenever an entry is signed: in the middle of a registration.
class Interfering : public ByteSigner {
public:
    explicit Interfering(std::function<void()> interfere) : ByteSigner(1), m_interfere(std::move(interfere)) {}
    std::array<std::byte, 64> Sign(std::string_view bytes) override {
        m_interfere();
        return ByteSigner::Sign(bytes);
    }

private:
    std::function<void()> m_interfere;
};

// Versions "one" of mori and "two" of sato, and the files as they were before each.
struct TwoVersions : RecordedFolder {
    struct Files {
        std::string cabinet, records;
    };
    TwoVersions() {
        EXPECT_EQ(Listed(), "");
        for (const char* user : {"mori", "sato"}) {
            before.push_back(Now());
            EXPECT_TRUE(Register(user == std::string("mori") ? "one" : "two", user)) << qel::LastFailure().text;
        }
    }
    Files Now() const { return {Read("c"), Read("r")}; }
    void PutBack(const Files& files) const {
        Write("c", files.cabinet);
        Write("r", files.records);
    }
    void Change(std::size_t fromEnd, char to) const {
        std::string bytes = Read("c");
        bytes[bytes.size() - fromEnd] = to;
        Write("c", bytes);
    }
    std::vector<Files> before;
};

// A cabinet's header with another number, and sums that fit.
std::string HeaderWith(std::string header, std::size_t at, std::uint32_t number) {
    const auto bytes = std::as_writable_bytes(std::span(header));
    qel::PutNumber(bytes, at, number);
    qel::CheckSums sums;
    sums.Add({reinterpret_cast<const unsigned char*>(header.data()), 28});
    qel::PutNumber(bytes, 28, sums.Sum());
    qel::PutNumber(bytes, 32, sums.Crc());
    return header;
}

// A cabinet of so many empty versions.
std::string Forged(const std::string& header, std::uint32_t count) {
    std::string versions;
    const qel::CheckSums none;
    for (std::uint32_t number = 1; number <= count; ++number) {
        std::string version = "CVH1" + std::string(16, '\0');
        const auto bytes = std::as_writable_bytes(std::span(version));
        qel::PutNumber(bytes, 4, number);
        qel::PutNumber(bytes, 12, none.Sum());
        qel::PutNumber(bytes, 16, none.Crc());
        versions += version;
    }
    return HeaderWith(HeaderWith(header, 4, 36 + 20 * (count - 1)), 8, count) + versions;
}

}  // namespace

TEST(RecordedCabinet, AnEntryHasWhoWhenWhyAndTheHashOfEachVersion) {
    const TwoVersions folder;
    Archive archive(folder);
    ASSERT_TRUE(archive.Open());
    const auto versions = archive.cabinet.List();
    EXPECT_EQ(folder.Text(versions), "1 recorded mori|2 recorded sato|");
    const qel::TrailEntry entry = folder.Entry(5);
    const qel::RecordedVersion expected{.version = 2,
                                        .state = qel::RecordedState::kRecorded,
                                        .user = "sato",
                                        .time = entry.time,
                                        .file = "a",
                                        .reason = "why",
                                        .size = 3,
                                        .sha256 = HashOf("two"),
                                        .entry = 5,
                                        .entryHash = HashOf(folder.Lines()[4].substr(0, folder.Lines()[4].size() - 1))};
    EXPECT_EQ(versions->at(1), expected);
    EXPECT_EQ(entry.cabinet, archive.cabinet.Guid());
    EXPECT_EQ(folder.Actions(),
              "trail started|result registering|result registered|result registering|result registered|");
    EXPECT_EQ(Line({archive.cabinet.Latest(), folder.Findings(folder.CheckWithHead())}), "2 ");
}

TEST(RecordedCabinet, WhatIsDoneToVersionsIsFound) {
    using At = const TwoVersions&;
    const std::string both = "1 recorded mori|2 recorded sato|";
    for (const auto& [name, attack, expected] : Cases<const char*, void (*)(At), std::string>{
             {"nothing", [](At) {}, both},
             {"changed", [](At at) { at.Change(1, 'O'); }, "1 recorded mori|2 changed sato|"},
             {"changed, the first", [](At at) { at.Change(3 + 20 + 1, 'E'); }, "1 changed mori|2 recorded sato|"},
             {"unreadable", [](At at) { at.Change(3 + 20, 'X'); }, "1 recorded mori|2 changed sato|"},
             {"cut", [](At at) { at.Write("c", at.Read("c").substr(0, at.Read("c").size() - 1)); },
              "1 recorded mori|2 changed sato|"},
             {"removed", [](At at) { at.PutBack(at.before[1]); }, "1 recorded mori|2 missing sato|"},
             {"all removed", [](At at) { at.PutBack(at.before[0]); }, "1 missing mori|2 missing sato|"},
             {"added", [](At at) { at.Add("x"); }, both + "3 unrecorded|"},
             {"replaced", [](At at) { at.PutBack(at.before[1]), at.Add("own"); }, "1 recorded mori|2 changed sato|"},
             {"exchanged", [](At at) { at.PutBack(at.before[0]), at.Add("two"), at.Add("one"); },
              "1 changed mori|2 changed sato|"},
             {"registered again",
              [](At at) {
                  at.PutBack(at.before[1]);
                  EXPECT_FALSE(at.Register("own"));
                  EXPECT_EQ(qel::LastFailure().text, "version 2 was recorded, and the cabinet ends with version 1");
              },
              "1 recorded mori|2 missing sato|"}}) {
        SCOPED_TRACE(name);
        const TwoVersions folder;
        attack(folder);
        EXPECT_EQ(folder.Listed(), expected);
        EXPECT_EQ(folder.Listed(), expected) << "opening hides nothing";
    }
}

TEST(RecordedCabinet, OpeningSettlesWhatWasInterrupted) {
    struct Case {
        const char *name, *started, *found, *ends, *listed;
    };
    for (const Case& c : {Case{"not there", "three", nullptr, "result registering|result abandoned|", ""},
                          Case{"there", "three", "three", "result registering|recovered|", "3 recovered abe|"},
                          Case{"there, empty", "", "", "result registering|recovered|", "3 recovered abe|"},
                          Case{"other content", "three", "own", "result registering|", "3 interrupted abe|"}}) {
        SCOPED_TRACE(c.name);
        const TwoVersions folder;
        folder.Start(3, c.started);
        if (c.found != nullptr) folder.Add(c.found);
        const std::string both = "1 recorded mori|2 recorded sato|";
        for (int opening = 0; opening < 2; ++opening) {
            EXPECT_EQ(folder.Listed(), both + c.listed);
            EXPECT_TRUE(folder.Actions().ends_with("result registered|" + std::string(c.ends))) << folder.Actions();
        }
        EXPECT_TRUE(folder.Register("next"));
        EXPECT_EQ(folder.Listed(), both + c.listed + (c.found != nullptr ? "4" : "3") + " recorded mori|");
        EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
    }
}

TEST(RecordedCabinet, ARecoveredVersionHasTheReasonThatWasGiven) {
    const TwoVersions folder;
    folder.Start(3, "three");
    folder.Add("three");
    Archive archive(folder);
    ASSERT_TRUE(archive.Open());
    EXPECT_EQ(archive.cabinet.List()->at(2).reason, "his");
    const qel::TrailEntry entry = folder.Entry(7);
    EXPECT_EQ(entry.after + ": " + entry.reason,
              "result registered: the registering of entry 6 was interrupted; the version is in the cabinet");
}

TEST(RecordedCabinet, CabinetsThatShareATrailDoNotMixAndAreFoundFarBack) {
    const TwoVersions folder;
    folder.Start(3, "three");
    Archive archive(folder, qel::TrailFlush::kCaller);
    ASSERT_NE(archive.trail.Open(), 0);
    qel::RecordedCabinet other(archive.trail, {.cabinetPath = folder.Name("c2"), .recordPath = folder.Name("r2")});
    ASSERT_EQ(other.Open(), 1);
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(archive.trail.Append(Record("x", std::string(500, 'x'))));
    ASSERT_TRUE(other.Register(folder.Name("a"), "kato", ""));
    EXPECT_EQ(folder.Text(other.List()), "1 recorded kato|");
    ASSERT_EQ(archive.cabinet.Open(), 1) << qel::LastFailure().text;
    EXPECT_TRUE(folder.Actions().ends_with("result abandoned|"));
    EXPECT_EQ(folder.Text(archive.cabinet.List()), "1 recorded mori|2 recorded sato|");
}

TEST(RecordedCabinet, WhatIsHashedIsRegisteredWhoeverWritesMeanwhile) {
    const TwoVersions folder;
    Archive archive(folder, qel::TrailFlush::kCaller,
                    std::make_shared<Interfering>([&] { folder.Write("a", "meanwhile"); }));
    ASSERT_TRUE(archive.Open());
    EXPECT_TRUE(folder.RegisterIn(archive, "three"));
    EXPECT_EQ(archive.trail.Last().number, 7u) << "flushed";
    ASSERT_TRUE(archive.cabinet.TakeOut(3, folder.Name("out"), "mori", "to see it"));
    EXPECT_EQ(folder.Read("out"), "three");
}

TEST(RecordedCabinet, ACopyThatSomebodyChangesIsNeverCalledRegistered) {
    const TwoVersions folder;
    const auto change = [&] {
        for (const auto& file : std::filesystem::directory_iterator(folder.Posix()))
            if (file.path().extension() == ".tmp") folder.Write(file.path().filename(), "own");
    };
    Archive archive(folder, qel::TrailFlush::kEach, std::make_shared<Interfering>(change));
    ASSERT_TRUE(archive.Open());
    EXPECT_FALSE(folder.RegisterIn(archive, "three"));
    EXPECT_EQ(qel::LastFailure().text, "version 3 in the cabinet is not what was to be registered");
    EXPECT_EQ(folder.Text(archive.cabinet.List()), "1 recorded mori|2 recorded sato|3 interrupted mori|");
}

TEST(RecordedCabinet, WhatIsRefusedLeavesNoEntry) {
    const TwoVersions folder;
    const std::string a = folder.Name("a"), out = folder.Name("out");
    Archive archive(folder);
    qel::RecordedCabinet& cabinet = archive.cabinet;
    EXPECT_FALSE(cabinet.List());
    EXPECT_EQ(qel::LastFailure().text, "the cabinet is not open");
    EXPECT_EQ(cabinet.Open(), 0) << "without a trail";
    ASSERT_TRUE(archive.Open());
    const std::string before = folder.Read("t") + folder.Read("c");
    struct Case {
        const char* name;
        std::optional<qel::TrailReceipt> receipt;
        qel::Failure failure = qel::LastFailure();
    };
    for (const Case& c :
         {Case{"blank user", cabinet.Register(a, " ", "why")}, Case{"not UTF-8", cabinet.Register(a, "mori", "\xff")},
          Case{"changed without a reason", cabinet.Register(a, "mori", " ")},
          Case{"too long", cabinet.Register(a, "mori", std::string(70'000, 'x'))},
          Case{"no source", cabinet.Register(folder.Name("none"), "mori", "why")},
          Case{"the cabinet itself", cabinet.Register(folder.Name("c"), "mori", "why")},
          Case{"version 0", cabinet.TakeOut(0, out, "mori", "why")},
          Case{"version 3", cabinet.TakeOut(3, out, "mori", "why")},
          Case{"2^32 + 1", cabinet.TakeOut((1ULL << 32) + 1, out, "mori", "why")},
          Case{"without a reason", cabinet.TakeOut(1, out, "mori", "")},
          Case{"out to nobody", cabinet.TakeOut(1, out, "", "why")}}) {
        SCOPED_TRACE(c.name);
        EXPECT_FALSE(c.receipt);
        EXPECT_NE(c.failure.text, "");
        EXPECT_EQ(std::string(c.failure.operation).rfind("RecordedCabinet::", 0), 0u) << c.failure.operation;
    }
    EXPECT_EQ(folder.Read("t") + folder.Read("c"), before);
    EXPECT_FALSE(folder.Has("out"));
    qel::RecordedCabinet second(archive.trail, folder.Places());
    EXPECT_EQ(second.Open(), 0);
    EXPECT_EQ(qel::LastFailure().kind, FailureKind::kFile) << "another object has it open";
    EXPECT_TRUE(folder.RegisterIn(archive, "three")) << "after all of that";
}

TEST(RecordedCabinet, AnotherCabinetInItsPlaceIsNotOpened) {
    const TwoVersions folder;
    qel::Trail trail(folder.Settings(), std::make_shared<ByteSigner>(1));
    ASSERT_EQ(trail.Open(), 1);
    qel::RecordedCabinetSettings places = folder.Places();
    places.guid = "{00000000-0000-0000-0000-000000000001}";
    EXPECT_EQ(qel::RecordedCabinet(trail, places).Open(), 0);
    EXPECT_EQ(qel::LastFailure().text, "this is another cabinet than " + places.guid);
    places.cabinetPath = folder.Name("new");
    EXPECT_EQ(qel::RecordedCabinet(trail, places).Open(), 0);
    EXPECT_FALSE(folder.Has("new"));
}

TEST(RecordedCabinet, TakingOutIsRecordedFirst) {
    const TwoVersions folder;
    Archive archive(folder);
    ASSERT_TRUE(archive.Open());
    ASSERT_TRUE(archive.cabinet.TakeOut(1, folder.Name("out"), "abe", "audit"));
    EXPECT_EQ(folder.Read("out"), "one");
    const qel::TrailEntry entry = folder.Entry(6);
    EXPECT_EQ(Line({entry.action, entry.user, entry.object, entry.reason, entry.cabinetVersion, entry.size}),
              "version taken out abe out audit 1 3");
    EXPECT_EQ(entry.sha256, HashOf("one"));
    EXPECT_FALSE(archive.cabinet.TakeOut(1, folder.Name("no/out"), "abe", "audit"));
    EXPECT_EQ(folder.Lines().size(), 7u) << "the entry is there, the target not";
}

TEST(RecordedCabinet, TakingOutFailsWhereACabinetWasMadeWithTwoVersionsOfOneNumber) {
    const TwoVersions folder;
    folder.Add("new");
    folder.Change(19, 2);  // its number
    std::string bytes = folder.Read("c");
    const auto start = std::as_bytes(std::span<const char, qel::kCabinetHeaderSize>(bytes.data(), 36));
    qel::CabinetHeader header = qel::UnpackCabinetHeader(start);
    header.versionCount = 2;
    header.sum = qel::CheckSumsOf(header).Sum();
    header.crc = qel::CheckSumsOf(header).Crc();
    const auto packed = qel::Pack(header);
    folder.Write("c", bytes.replace(0, packed.size(), reinterpret_cast<const char*>(packed.data()), packed.size()));
    Archive archive(folder);
    ASSERT_TRUE(archive.Open()) << qel::LastFailure().text;
    EXPECT_FALSE(archive.cabinet.TakeOut(2, folder.Name("out"), "abe", "audit"));
    EXPECT_EQ(Line({qel::LastFailure().text, folder.Read("out"), folder.Entry(6).sha256 == HashOf("new")}),
              "what was taken out is not what the entry says: the cabinet has version 2 twice two 1");
}

TEST(RecordedCabinet, ProgramsThatRegisterAtOnceSettleNothingOfEachOther) {
    const TwoVersions folder;
    constexpr int kWriters = 4;
    const auto write = [&](int) {
        Archive archive(folder);
        if (archive.trail.Open() == 0) return 1;
        while (archive.cabinet.Open() == 0) {
            if (qel::LastFailure().systemError != 32) return 2;  // another one has it open
        }
        return archive.cabinet.Register(folder.Name("a"), "abe", "why") ? 0 : 3;
    };
    EXPECT_EQ(RunAtOnce(kWriters, write), 0);
    EXPECT_EQ(folder.Actions().find("abandoned"), std::string::npos);
    EXPECT_EQ(folder.Listed(),
              "1 recorded mori|2 recorded sato|3 recorded abe|4 recorded abe|5 recorded abe|6 recorded abe|");
}

TEST(RecordedCabinet, AFullDiskIsAClearFailureAndSettledLater) {
    const TwoVersions folder;
    const auto fill = [&] {
        Archive archive(folder);
        if (!archive.Open()) return qel::LastFailure().text.empty() ? 1 : 0;
        const std::string bytes(3000, 'x');
        for (int i = 0; i < 10; ++i) {
            if (!folder.RegisterIn(archive, bytes)) return qel::LastFailure().text.empty() ? 2 : 0;
        }
        return 3;
    };
    EXPECT_EQ(OnFullDisk(16'000, fill), 0);
    Archive archive(folder);
    ASSERT_TRUE(archive.Open()) << qel::LastFailure().text;
    const std::string listed = folder.Text(archive.cabinet.List());
    for (const char* const state : {"changed", "unrecorded", "interrupted", "missing"})
        EXPECT_EQ(listed.find(state), std::string::npos) << listed;
    EXPECT_EQ(folder.Findings(folder.CheckWithHead()), "");
}

TEST(RecordedCabinet, ATrailThatSomebodyHasChangedIsNotTrusted) {
    const TwoVersions folder;
    folder.Start(3, "three");
    ASSERT_TRUE(folder.Append({"x", "y"}));
    std::string text = folder.Read("t");
    text.replace(text.find("\"abe\""), 5, "\"eve\"");
    folder.Write("t", text);
    EXPECT_EQ(folder.Listed(), "entry 6 of the trail is not the one that was acknowledged");
}

TEST(RecordedCabinet, AHeaderThatClaimsEveryVersionThereCouldBeTakesNoMemory) {
    const TwoVersions two;
    const std::string header = HeaderWith(two.Read("c").substr(0, 36), 8, 0xFFFF'FFFF);
    two.Write("c", header + two.Read("c").substr(36));
    EXPECT_EQ(two.Listed(), "c: is damaged: it is too short for its number of versions");
    qel::CabinetRecords records;
    qel::CabinetRecords::Cabinet found;
    ASSERT_TRUE(records.Read(two.Name("t")) != 0 && records.Compare(two.Name("c"), found) != 0);
    EXPECT_EQ(TwoVersions::Text(found.versions), "1 recorded mori|2 recorded sato|3 unrecorded|");
}

TEST(QelTrail, ComparesTheCabinetsOfAnArchive) {
    using Two = const TwoVersions&;
    for (const auto& [what, change, found] : Cases<const char*, void (*)(Two), const char*>{
             {"nothing", [](Two) {}, "0\n"},
             {"a byte", [](Two two) { two.Change(1, 'O'); },
              "c: version 2, byte 79: is not what was registered, entry 5 by sato\n27\n"},
             {"one without a trail", [](Two two) { two.Add("three"); },
              "c: version 3, byte 102: no entry announced it\n16\n"},
             {"an older state", [](Two two) { two.PutBack(two.before[1]); },
              "c: version 2: was registered, and is not there, entry 5 by sato\n"
              "r: version 2: has no renewal record, entry 5 by sato\n29\n"},
             {"no cabinet", [](Two two) { std::filesystem::remove(two.Posix("c")); },
              "version 1: was registered, and is not there, entry 3 by mori\n"
              "version 2: was registered, and is not there, entry 5 by sato\n29\n"},
             {"a damaged header", [](Two two) { two.Write("c", two.Read("c").replace(10, 1, "x")); },
              "c: a damaged cabinet header\n"},
             {"a forged one", [](Two two) { two.Write("d", Forged(two.Read("c").substr(0, 36), 1005)); },
              "d: version 1000, byte 20036: no entry announced it\n16\n"},
             {"a copy", [](Two two) { two.Write("d", two.Read("c")); },
              "d: version 1, byte 56: no entry announced it\nd: version 2, byte 79: no entry announced it\n16\n"},
         }) {
        const TwoVersions two;
        change(two);
        const std::string output = OutputOf(
            "cd '" + two.Posix().native() +
            "' && { " QELLIB10_QEL
            " trail verify t --head-file h --archive . 2>&1; echo $?; } | "
            "sed -e 's/^.*[/]//' -e 's/^cabinet {.*}: //' | grep -v -e consistent -e '^trail' -e ' findings*$'");
        EXPECT_NE(output.find(found), std::string::npos) << what << ": " << output;
    }
}

TEST(LinesBackwards, AreThoseForwards) {
    const TempFolder folder;
    const std::string longest(64 * 1024 - 1, 'x'), some(40'000, 'y');
    for (const std::string& text : {std::string(), std::string("\n"), std::string("a"), std::string("\n\na\n"),
                                    longest + '\n' + longest + "\nb", some + "\n\n" + some + "\n" + some + "\n"}) {
        folder.Write("t", text);
        const qel::GuardedFile file(folder.Name("t"), qel::GuardedFile::Use::kRead);
        qel::LinesBackwards lines(file, text.size());
        std::string found;
        bool isLast = true;
        while (const auto line = lines.Next()) {
            const bool isPart = std::exchange(isLast, false) && !text.ends_with('\n');
            found = std::string(*line) + (isPart ? "" : "\n") + found;
        }
        EXPECT_TRUE(found == text) << found.size() << ' ' << text.size();
    }
    folder.Write("t", longest + "x\n");
    const qel::GuardedFile file(folder.Name("t"), qel::GuardedFile::Use::kRead);
    EXPECT_THROW(qel::LinesBackwards(file, longest.size() + 2).Next(), qel::DataError);
}
