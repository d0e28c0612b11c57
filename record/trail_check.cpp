#include "qellib10/record/trail_check.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/stamp_entry.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_doubts.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_known.h"

namespace qel {
namespace {

class Check {
public:
    Check(const TrailAnchors& anchors, TrailKnown known, TrailReport& report)
        : m_anchors(anchors),
          m_report(report),
          m_trust(anchors.key, std::move(known.allowed)),
          m_known(std::move(known.head)),
          m_authorities(std::move(known.authorities)) {
        m_proofs.stamp = std::move(known.stamp);
        if (m_authorities) m_proofs.authorities = &*m_authorities;
    }

    void Run(const std::string& path) {
        const GuardedFile file(path, GuardedFile::Use::kRead);
        m_file = &file;
        const std::uint64_t size = file.Size();
        TrailLines lines(file, 0, size);
        TrailLines::Line line = lines.Next();
        for (; line.kind == TrailLines::Kind::kWhole && m_report.findingCount < kStopAt; line = lines.Next())
            CheckLine(line);
        m_line = line;
        if (line.kind == TrailLines::Kind::kTooLong) Find(TrailFault::kMalformed, "a line is longer than 64 KiB");
        if (m_report.findingCount >= kStopAt) return KeepPinned();  // what comes after is not known
        CheckEnd(line);
        CheckAnchors();
        if (m_trust.HasRevoked()) CheckRevoked({size, m_lines.End()});
        KeepPinned();
    }

private:
    static constexpr std::uint64_t kStopAt = TrailReport::kMostFindings;

    void Find(TrailFault fault, std::string text, const std::string& signer = "", std::uint64_t lastMissing = 0) {
        ++m_report.findingCount;
        if (fault == TrailFault::kOrder || fault == TrailFault::kOtherTrail || fault == TrailFault::kChanged)
            BreakChain();
        if (m_report.findings.size() == TrailReport::kMostFindings) return;
        TrailFinding finding{
            .fault = fault, .entry = m_next, .byte = m_line.at, .lastMissing = lastMissing, .signer = signer};
        finding.text = std::move(text);
        if (m_about != nullptr) {
            finding.cabinet = m_about->cabinet;
            finding.cabinetVersion = m_about->cabinetVersion;
            finding.size = m_about->size;
            finding.sha256 = m_about->sha256;
        }
        m_report.findings.push_back(std::move(finding));
    }

    void CheckLine(const TrailLines::Line& line) {
        m_line = line;
        const Sha256Digest hash = Sha256(line.text);
        m_lines.Add(hash);
        std::optional<ReadLine> read;
        try {
            read = ReadEntry(line.text);
            m_about = &read->entry;
            CheckEntry(*read);
        } catch (const DataError& failure) {
            Find(TrailFault::kMalformed, failure.what());
            if (!read) BreakChain();
        }
        m_previous = Hex(hash);
        if (m_previous == m_anchors.head) {
            m_isHeadThere = true;
            Pin();
        }
        if (m_proofs.stamp && read && m_previous == m_proofs.stamp->sha256) TakeOutsideStamp(read->entry);
        if (m_known && m_known->number == m_next) {
            m_isKnownThere = m_known->hash == hash && m_known->length == line.End();
            if (m_isKnownThere) Pin();
            // Where the line is no right one either, the entry is among those that are missing at the end.
            if (!m_isKnownThere && m_last >= m_next)
                Find(TrailFault::kMissing, "this is not the entry that the head file knows");
        }
        ++m_report.lines;
        m_report.entries = m_next++;
        m_report.head = m_previous;
        m_about = nullptr;
        if (m_report.findingCount == 0) m_report.rightUpTo = {m_report.entries, m_previous};
    }

    void CheckEntry(const ReadLine& line) {
        const TrailEntry& entry = line.entry;
        const std::uint64_t before = m_report.findingCount;
        if (entry.number != m_next) Find(TrailFault::kOrder, "the entry has number " + std::to_string(entry.number));
        CheckTrailId(entry);
        if (entry.previous != m_previous) Find(TrailFault::kOrder, "the entry names another one before it");
        CheckTime(entry);
        // After a gap it goes on from there, without a finding for each further entry. Only who is trusted says where:
        // anybody can append a line with a number after all that are missing.
        if (CheckSigner(line) && entry.trailId == m_report.trailId) {
            m_next = entry.number;
            m_last = std::max(m_last, m_next);
        }
        if (m_report.findingCount != before) return;
        m_trust.Learn(line);
        if (entry.number == 1) TakeStart(entry);
        const bool isClockSet = entry.action == trail_kind::kClockJumped || entry.clock;
        if (isClockSet && m_report.clockSet++ == 0) m_report.firstClockSet = entry.number;
        if (entry.action == trail_kind::kTimeStamp) TakeStamp(entry);
    }

    void TakeStart(const TrailEntry& entry) {
        m_isStartRight = true;
        if (entry.action == trail_kind::kTrailContinued) m_report.continues = entry.before;
    }

    void BreakChain() { m_proofs.chainedTo = std::min(m_proofs.chainedTo, m_next - 1); }

    // An entry whose hash is known from elsewhere.
    void Pin() {
        m_report.pinned = m_next;
        m_proofs.pins.push_back(m_next);
        if (m_proofs.chainedTo >= m_next) m_pinned = {m_next, m_previous};
    }

    void KeepPinned() {
        if (m_pinned.number > m_report.rightUpTo.number) m_report.rightUpTo = m_pinned;
    }

    void TakeStamp(const TrailEntry& entry) {
        try {
            const StampedEntry stamped = CheckStampEntry(*m_file, entry, m_line.at, m_proofs.authorities);
            if (m_authorities) Report(stamped.number, stamped.stamp);
        } catch (const DataError& failure) {
            Find(TrailFault::kTimeStamp, failure.what());
        }
    }

    void TakeOutsideStamp(const TrailEntry& entry) {
        m_report.pinned = m_next;
        m_proofs.stamped = m_next;
        try {
            RequireAfter(*m_proofs.stamp, entry);
            Report(m_next, *m_proofs.stamp);
        } catch (const DataError& failure) {
            Find(TrailFault::kTimeStamp, failure.what());
        }
    }

    void Report(std::uint64_t number, const TimeStamp& stamp) {
        if (number < m_report.stamped) return;
        const bool isEarlier = number > m_report.stamped || stamp.time < m_report.stampTime;
        m_report.stamped = number;
        if (isEarlier) m_report.stampTime = stamp.time;
    }

    // What is wrong with these is known only at the end: it needs the entry that revokes.
    void CheckRevoked(const TrailState& state) {
        std::vector<std::uint64_t> found;  // in the order of the file
        for (const TrailFinding& finding : m_report.findings)
            if (!finding.signer.empty()) found.push_back(finding.entry);
        FindDoubtful(*m_file, state, m_trust, m_proofs, [&](const DoubtfulEntry& doubtful) {
            m_next = doubtful.line.entry.number;
            m_line.at = doubtful.at;
            m_about = &doubtful.line.entry;
            if (m_next <= m_report.rightUpTo.number) m_report.rightUpTo = {m_next - 1, doubtful.line.entry.previous};
            if (!std::ranges::binary_search(found, m_next))
                Find(TrailFault::kRevokedKey, doubtful.text, doubtful.line.signature.key.Fingerprint());
            return m_report.findingCount < kStopAt;
        });
        std::ranges::stable_sort(m_report.findings, {}, &TrailFinding::byte);
    }

    void CheckTrailId(const TrailEntry& entry) {
        if (m_report.trailId.empty()) {
            m_report.trailId = entry.trailId;
            const bool starts =
                entry.action == trail_kind::kTrailStarted || entry.action == trail_kind::kTrailContinued;
            if (!starts) Find(TrailFault::kOrder, "the trail does not begin with its start");
            if (!m_anchors.trailId.empty() && m_anchors.trailId != entry.trailId)
                Find(TrailFault::kOtherTrail, "this is another trail: " + entry.trailId);
            if (m_known && m_known->trailId != entry.trailId)
                Find(TrailFault::kOtherTrail, "the head file is that of another trail: " + m_known->trailId);
        }
        if (m_report.trailId != entry.trailId)
            Find(TrailFault::kOtherTrail, "the entry is of another trail: " + entry.trailId);
    }

    void CheckTime(const TrailEntry& entry) {
        const bool isBack = entry.time < m_time || (entry.bootId == m_bootId && entry.bootTime < m_bootTime);
        if (isBack) Find(TrailFault::kClock, "the entry's time is before that of the one before");
        m_time = entry.time;
        m_bootTime = entry.bootTime;
        m_bootId = entry.bootId;
    }

    // @return whether the signature is right, and of somebody who is trusted
    bool CheckSigner(const ReadLine& line) {
        const SshPublicKey& key = line.signature.key;
        if (!line.IsSigned()) {
            Find(TrailFault::kChanged, "the entry is not what was signed", key.Fingerprint());
            return false;
        }
        const std::optional<TrailFault> fault = m_trust.FaultOf(line);
        if (fault == TrailFault::kEndedKey)
            Find(*fault, "the entry's key was not valid any more at that time", key.Fingerprint());
        if (fault == TrailFault::kKeyNotYetValid)
            Find(*fault, "the entry's key was not yet valid at that time", key.Fingerprint());
        if (fault == TrailFault::kRevokedKey) Find(*fault, "the entry's key was revoked", key.Fingerprint());
        if (fault == TrailFault::kUnknownSigner)
            Find(*fault, "the entry is signed by a key that is not trusted", key.Fingerprint());
        return !fault;
    }

    // Half a line is how a reader sees an appending, if nothing that has to be there can be in it. It starts like the
    // entry that follows: anything else was put there, or is what a power cut has left.
    void CheckEnd(const TrailLines::Line& line) {
        if (line.kind != TrailLines::Kind::kPart) return;
        const bool isAfterHead = (m_known && line.at >= m_known->length) || m_isHeadThere || m_proofs.stamped > 0 ||
                                 (m_anchors.atLeast > 0 && m_last >= m_anchors.atLeast);
        const std::string start = StartOfLine(m_report.trailId, m_next);
        const bool isNext = line.text.substr(0, start.size()) == start.substr(0, line.text.size());
        m_report.isBeingWritten = isAfterHead && isNext;
        if (!isAfterHead)
            Find(TrailFault::kCut, "the trail ends within a line");
        else if (!isNext)
            Find(TrailFault::kCut, "what the trail ends with is not the start of its next entry");
    }

    void FindMissingUpTo(std::uint64_t last) {
        const std::uint64_t next = std::exchange(m_next, m_last + 1);
        const std::string first = std::to_string(m_next);
        Find(TrailFault::kMissing,
             last == m_next ? "entry " + first + " is missing"
                            : "entries " + first + " to " + std::to_string(last) + " are missing",
             "", last);
        m_next = next;
    }

    void CheckAnchors() {
        const auto missing = [this](const std::string& what) { Find(TrailFault::kMissing, what); };
        if (m_known && !m_isKnownThere && m_known->number > m_last) FindMissingUpTo(m_known->number);
        if (!m_anchors.head.empty() && !m_isHeadThere) missing("the entry with the given hash is missing");
        if (m_proofs.stamp && m_proofs.stamped == 0) missing("the entry of the given time stamp is missing");
        if (m_anchors.atLeast > m_last) FindMissingUpTo(m_anchors.atLeast);
        m_report.pinned = std::max(m_report.pinned, std::min(m_anchors.atLeast, m_last));
        if (m_report.entries == 0 && m_report.findingCount == 0 && !m_known) missing("the trail has no entry");
        const bool isTrusted = !m_anchors.trustFile.empty() || !m_anchors.key.empty();
        const bool isPinned = m_isHeadThere || m_isKnownThere || m_proofs.stamped > 0;
        m_report.isAnchored = isPinned || (isTrusted && !m_anchors.trailId.empty() && m_isStartRight);
        if (m_report.isAnchored) return;
        m_report.unanchored = isTrusted && !m_anchors.trailId.empty() ? "the trail's first entry is not right"
                              : isTrusted
                                  ? "the trail's ID is not given: it may be another trail of the same keys"
                                  : "no key is given that is known from elsewhere: anybody can make such a trail";
    }

    const TrailAnchors& m_anchors;
    TrailReport& m_report;
    TrailTrust m_trust;
    std::optional<TrailHeadState> m_known;
    std::optional<StampAuthorities> m_authorities;
    TrailProofs m_proofs;
    const GuardedFile* m_file = nullptr;
    TrailLines::Line m_line;
    Sha256Sum m_lines;                     // see TrailState
    const TrailRecord* m_about = nullptr;  // of the line, where it can be read
    std::uint64_t m_next = 1;              // the number that follows; while a line is checked, its own
    std::uint64_t m_last = 0;              // the highest number that a right signature of somebody trusted vouches for
    std::string m_previous = std::string(64, '0');
    TrailReceipt m_pinned;  // the last entry whose hash is known from elsewhere, with all before it
    std::int64_t m_time = 0;
    std::uint64_t m_bootTime = 0;
    std::string m_bootId;
    bool m_isHeadThere = false, m_isKnownThere = false, m_isStartRight = false;
};

}  // namespace

int CheckTrail(std::string_view path, const TrailAnchors& anchors, TrailReport& report) {
    report = {};
    return AsResult("CheckTrail", [&] {
        TrailKnown known;
        if (!ReadKnown(anchors, known)) return 0;
        Check(anchors, std::move(known), report).Run(std::string(path));
        return 1;
    });
}

}  // namespace qel
