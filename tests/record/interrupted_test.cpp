#include "../support/interrupted.h"
#include "../support/disk_record.h"
#include "../support/soak.h"

#include <cstring>

#include "trail_folder.h"

// What is interrupted here: opening a trail and appending an entry, at each call that works on files. An entry that was
// acknowledged is never lost, the trail can always be opened again, and what is found then has no finding.

namespace {

using TrailPlace = WithTrail<Place>;

bool OpenAndAppend(const TrailPlace& place, const char* action, qel::TrailFlush flush) {
    qel::Trail trail(place.Settings(flush), std::make_shared<ByteSigner>(1));
    return trail.Open() != 0 && trail.Append(Record(action)) && trail.Flush() != 0;
}

void Nothing(const TrailPlace&) {}
void TwoEntries(const TrailPlace& place) { EXPECT_TRUE(place.Append({"a", "b"})); }
void TornTail(const TrailPlace& place) {
    TwoEntries(place);
    place.Write("t", place.Read("t") + "{\"format\":1,\"trail\"");
}
// As a program that was killed before it could write the head file.
void EntryAfterTheHead(const TrailPlace& place) {
    TwoEntries(place);
    const std::string head = place.Read("h");
    EXPECT_TRUE(place.Append({"c"}));
    place.Write("h", head);
}

struct Start {
    const char* name;
    void (*prepare)(const TrailPlace&);
    const char* before;  // actions that were acknowledged
    qel::TrailFlush flush = qel::TrailFlush::kEach;
};

constexpr Start kStarts[] = {
    {"New", Nothing, ""},
    {"NextEntry", TwoEntries, "a|b|"},
    {"AfterTornTail", TornTail, "a|b|"},
    {"AfterUnacknowledgedEntry", EntryAfterTheHead, "a|b|c|"},
    {"FlushedByTheCaller", TwoEntries, "a|b|", qel::TrailFlush::kCaller},
    {"FlushedInAGroup", TwoEntries, "a|b|", qel::TrailFlush::kGroup},
};

std::string Found(const TrailPlace& place) {
    if (!place.Append({})) return "not opened: " + qel::LastFailure().text;
    if (!place.Append({"z"})) return "nothing can be appended: " + qel::LastFailure().text;
    std::string found = place.Actions();
    for (const char* const own : {"trail started|", "tail set aside|"}) {
        for (std::size_t at = found.find(own); at != std::string::npos; at = found.find(own))
            found.erase(at, std::strlen(own));
    }
    return found + TrailPlace::Findings(place.CheckWithHead());
}

// What may be there after "x" was or was not acknowledged.
bool IsRight(const std::string& found, const Start& start, bool isAcknowledged) {
    const std::string before = start.before;
    return found == before + "x|z|" || (!isAcknowledged && found == before + "z|");
}

using TrailCalls = Interrupted;

// The torn tail's bytes are in one of the files up to the one that the report names. An interrupted copy is another.
void ExpectTailKept(const TrailPlace& place, const Start& start) {
    if (start.prepare != TornTail) return;
    EXPECT_NE(place.Actions().find("tail set aside|"), std::string::npos);
    const auto isKept = [&](const char* name) { return place.Read(name) == "{\"format\":1,\"trail\""; };
    EXPECT_TRUE(std::ranges::any_of(std::array{"t.tail-4-1", "t.tail-4-2", "t.tail-4-3"}, isKept));
}

}  // namespace

TEST_P(TrailCalls, LoseNothingWhenOneOrAllFail) {
    for (const Start& start : kStarts) {
        for (int failure = 0; failure < 5; ++failure) {  // the last one: from then on each fails, as if it were killed
            for (int number = 1, left = 0; left == 0; ++number) {
                SCOPED_TRACE(start.name + (" failure " + std::to_string(failure)) + " of call " +
                             std::to_string(number));
                const TrailPlace place;
                start.prepare(place);
                failure < 4 ? m_fail(static_cast<CallFailure>(failure), number) : m_failFrom(CallFailure::kEio, number);
                const bool done = OpenAndAppend(place, "x", start.flush);
                left = failure < 4 ? m_left() : (done ? 1 : 0);
                m_fail(CallFailure::kEio, 0);
                if (left == 0) Tried("failed calls");
                const std::string found = Found(place);
                ASSERT_TRUE(IsRight(found, start, done)) << done << ' ' << found;
                ExpectTailKept(place, start);
            }
        }
    }
}

TEST_P(TrailCalls, LoseNothingWhenThePowerFails) {
    std::minstd_rand random(SoakSeed());
    const int tries = SoakCount(4);
    for (const Start& start : kStarts) {
        SCOPED_TRACE(start.name);
        const TrailPlace place;
        start.prepare(place);
        DiskRecord disk(place);
        m_watch(DiskRecord::Take);
        const bool done = OpenAndAppend(place, "x", start.flush);
        m_watch(nullptr);
        ASSERT_TRUE(done);
        for (std::size_t calls = 0; calls <= disk.Calls(); ++calls) {
            Tried("power cuts", tries);
            for (int i = 0; i < tries; ++i) {
                disk.CutAfter(calls, random);
                const std::string found = Found(place);
                ASSERT_TRUE(IsRight(found, start, calls == disk.Calls())) << "after call " << calls << ": " << found;
                ExpectTailKept(place, start);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Record, TrailCalls, testing::Values(Operation{"OpenAndAppend", {}, {}}), NameOf);
