#include "../support/disk_record.h"
#include "../support/interrupted.h"
#include "../support/soak.h"

#include "recorded_folder.h"

// What is interrupted here: opening an archive and registering a version with its entries, at each call that works on
// files. No version that was acknowledged is lost, no entry claims one that is not there, none is there without an
// entry, and the next opening settles everything by itself.

namespace {

using CabinetPlace = WithCabinet<Place>;

bool OpenAndRegister(const CabinetPlace& place, const char* user, qel::TrailFlush flush) {
    CabinetPlace::Archive archive(place, flush);
    return archive.Open() && archive.cabinet.Register(place.Name("a"), user, "why").has_value();
}

void Empty(const CabinetPlace&) {}
void NoVersion(const CabinetPlace& place) { EXPECT_EQ(place.Listed(), ""); }
void OneVersion(const CabinetPlace& place) { EXPECT_TRUE(OpenAndRegister(place, "kato", qel::TrailFlush::kEach)); }
// As a program that was killed before it came to the cabinet.
void Started(const CabinetPlace& place) {
    OneVersion(place);
    place.Start(2, "bytes");
}
// As one that was killed after the version, before its renewal record.
void VersionIn(const CabinetPlace& place) {
    Started(place);
    place.Add("bytes");
}

struct Start {
    const char* name;
    void (*prepare)(const CabinetPlace&);
    const char* before;  // versions that were acknowledged, and those that will be recovered
    qel::TrailFlush flush = qel::TrailFlush::kEach;
};

constexpr Start kStarts[] = {
    {"New", Empty, ""},
    {"FirstVersion", NoVersion, ""},
    {"NextVersion", OneVersion, "kato|"},
    {"FlushedByTheCaller", OneVersion, "kato|", qel::TrailFlush::kCaller},
    {"AfterAStart", Started, "kato|"},
    {"AfterAVersionWithoutAnEnd", VersionIn, "kato|abe|"},
};

// Each end of a registering comes after the start of the same.
std::string WrongEnds(const CabinetPlace& place) {
    std::string wrong;
    std::uint64_t started = 0;
    for (std::size_t number = 1; number <= place.Lines().size(); ++number) {
        const qel::TrailEntry entry = place.Entry(number);
        if (entry.action == qel::trail_kind::kRegistering) {
            if (started != 0) wrong += " no end before " + std::to_string(number);
            started = entry.cabinetVersion;
        } else if (entry.cabinetVersion > 0 && std::exchange(started, 0) != entry.cabinetVersion) {
            wrong += " no start before " + std::to_string(number);
        }
    }
    return wrong;
}

std::string Found(const CabinetPlace& place) {
    CabinetPlace::Archive archive(place);
    if (!archive.Open()) return "not opened: " + qel::LastFailure().text;
    if (!archive.cabinet.Register(place.Name("a"), "zoe", "why"))
        return "nothing can be registered: " + qel::LastFailure().text;
    std::string found;
    const auto versions = archive.cabinet.List();
    if (!versions) return "not listed: " + qel::LastFailure().text;
    for (const qel::RecordedVersion& version : *versions)
        found += version.user + (version.IsFinding() ? " is a finding|" : "|");
    if (Names(place).find(".tmp") != std::string::npos) found += " left over: " + Names(place);
    return found + WrongEnds(place) + CabinetPlace::Findings(place.CheckWithHead());
}

// What may be there after the version of "x" was or was not acknowledged.
bool IsRight(const std::string& found, const Start& start, bool isAcknowledged) {
    const std::string before = start.before;
    return found == before + "x|zoe|" || (!isAcknowledged && found == before + "zoe|");
}

void Prepare(const CabinetPlace& place, const Start& start) {
    place.Write("a", "bytes");
    start.prepare(place);
}

using RecordedCabinetCalls = Interrupted;

}  // namespace

TEST_P(RecordedCabinetCalls, LoseAndInventNothingWhenOneOrAllFail) {
    for (const Start& start : kStarts) {
        for (int failure = 0; failure < 5; ++failure) {  // the last one: from then on each fails, as if it were killed
            for (int number = 1, left = 0; left == 0; ++number) {
                SCOPED_TRACE(start.name + (" failure " + std::to_string(failure)) + " of call " +
                             std::to_string(number));
                const CabinetPlace place;
                Prepare(place, start);
                failure < 4 ? m_fail(static_cast<CallFailure>(failure), number) : m_failFrom(CallFailure::kEio, number);
                const bool done = OpenAndRegister(place, "x", start.flush);
                left = failure < 4 ? m_left() : (done ? 1 : 0);
                m_fail(CallFailure::kEio, 0);
                if (left == 0) Tried("failed calls");
                const std::string found = Found(place);
                ASSERT_TRUE(IsRight(found, start, done)) << done << ' ' << found;
            }
        }
    }
}

TEST_P(RecordedCabinetCalls, LoseAndInventNothingWhenThePowerFails) {
    std::minstd_rand random(SoakSeed());
    const int tries = SoakCount(3);
    for (const Start& start : kStarts) {
        SCOPED_TRACE(start.name);
        const CabinetPlace place;
        Prepare(place, start);
        DiskRecord disk(place);
        m_watch(DiskRecord::Take);
        const bool done = OpenAndRegister(place, "x", start.flush);
        m_watch(nullptr);
        ASSERT_TRUE(done) << qel::LastFailure().text;
        for (std::size_t calls = 0; calls <= disk.Calls(); ++calls) {
            Tried("power cuts", tries);
            for (int i = 0; i < tries; ++i) {
                disk.CutAfter(calls, random);
                const std::string found = Found(place);
                ASSERT_TRUE(IsRight(found, start, calls == disk.Calls())) << "after call " << calls << ": " << found;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Record, RecordedCabinetCalls, testing::Values(Operation{"OpenAndRegister", {}, {}}), NameOf);
