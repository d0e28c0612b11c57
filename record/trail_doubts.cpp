#include "qellib10/record/trail_doubts.h"

#include "qellib10/platform/error.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_kind.h"

namespace qel {
namespace {

// @param take returns whether it wants more; all lines are read even so, to know that they are the same
template <class Take> void ReadEntries(const GuardedFile& file, const TrailState& state, Take&& take) {
    TrailLines lines(file, 0, state.size);
    Sha256Sum sum;
    bool wantsMore = true;
    for (TrailLines::Line line = lines.Next(); line.kind == TrailLines::Kind::kWhole; line = lines.Next()) {
        sum.Add(Sha256(line.text));
        if (!wantsMore) continue;
        try {
            wantsMore = take(ReadEntry(line.text), line.at);
        } catch (const DataError&) {  // it was found before
        }
    }
    if (sum.End() != state.lines) throw DataError("the trail has changed while it was read");
}

class Proofs {
public:
    Proofs(const GuardedFile& file, TrailTrust& trust, const TrailProofs& given)
        : m_file(file), m_trust(trust), m_given(given), m_isStampOpen(given.stamp && given.stamped > 0) {
        for (const std::uint64_t pin : given.pins)
            if (pin <= given.chainedTo) m_trust.Prove(pin, pin);
    }

    // @return whether later entries may show something, too
    bool Take(const ReadLine& line, std::uint64_t at) {
        const TrailEntry& entry = line.entry;
        if (entry.number > m_given.chainedTo) return false;
        if (m_trust.IsWitness(line)) m_trust.Prove(entry.number, entry.number);
        // A stamp that is kept elsewhere counts as if the first entry that was written after it had it.
        if (m_isStampOpen && entry.number >= m_given.stamped && IsAfterStamp(entry)) {
            m_trust.Prove(entry.number, m_given.stamped);
            m_isStampOpen = false;
        }
        if (entry.action == trail_kind::kTimeStamp && m_given.authorities != nullptr)
            m_trust.Prove(entry.number, CheckStampEntry(m_file, entry, at, m_given.authorities).number);
        return true;
    }

private:
    bool IsAfterStamp(const TrailEntry& entry) const {
        return ClockOf(entry) + kStampTolerance + m_given.stamp->accuracy >= m_given.stamp->time;
    }

    const GuardedFile& m_file;
    TrailTrust& m_trust;
    const TrailProofs& m_given;
    bool m_isStampOpen;
};

}  // namespace

void FindDoubtful(const GuardedFile& file, const TrailState& state, TrailTrust& trust, const TrailProofs& proofs,
                  const std::function<bool(const DoubtfulEntry&)>& take) {
    trust.StartProofs();
    Proofs all(file, trust, proofs);
    ReadEntries(file, state, [&](const ReadLine& line, std::uint64_t at) { return all.Take(line, at); });
    trust.EndProofs();
    ReadEntries(file, state, [&](const ReadLine& line, std::uint64_t at) {
        const std::optional<std::string> doubt = trust.Doubt(line);
        return !doubt || take({line, at, *doubt});
    });
}

}  // namespace qel
