#include "qellib10/record/trail_check.h"

#include <algorithm>
#include <optional>

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/allowed_signers.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_head.h"
#include "qellib10/record/trail_keys.h"
#include "qellib10/record/trail_kind.h"

namespace qel {
namespace {

std::int64_t SecondOf(std::int64_t time) { return time / 1000; }

// What the files of the anchors say.
struct Known {
    std::optional<AllowedSigners> allowed;
    std::optional<TrailHeadState> head;
};

// The reason of a file in a wrong form has the file's name. @return whether it could be read, or is not asked for
template <class Step> bool IsRead(const std::string& path, Step&& step) {
    if (path.empty()) return true;
    try {
        step();
        return true;
    } catch (const DataError& failure) {
        return Refuse(FailureKind::kData, path, failure.what()) != 0;
    }
}

// Who may sign, as the entries up to now and the anchors say.
class Trust {
public:
    Trust(std::string key, std::optional<AllowedSigners> allowed)
        : m_key(std::move(key)), m_allowed(std::move(allowed)) {}

    /// What is wrong with the signer of an entry whose signature is right.
    std::optional<TrailFault> FaultOf(const ReadLine& line) const {
        const SshPublicKey& key = line.signature.key;
        if (std::ranges::find(m_ended, key) != m_ended.end()) return TrailFault::kEndedKey;
        if (m_allowed) {
            const auto answer = m_allowed->Ask(key, kEntryNamespace, SecondOf(line.entry.time));
            if (answer == AllowedSigners::Answer::kNotValidThen) return TrailFault::kEndedKey;
            if (answer == AllowedSigners::Answer::kUnknown) return TrailFault::kUnknownSigner;
        }
        const bool isNamed = m_key.empty() ? line.entry.number == 1 : IsNamed(key);
        const bool isKnown = isNamed || std::ranges::find(m_announced, key) != m_announced.end();
        return isKnown ? std::nullopt : std::optional(TrailFault::kUnknownSigner);
    }

    /// Learns from an entry of somebody who is trusted.
    /// @throws DataError when it makes no sense
    void Learn(const TrailEntry& entry) {
        ApplyToKeys(entry, m_announced);
        if (entry.action != trail_kind::kKeyEnded && entry.action != trail_kind::kKeyAdded) return;
        const SshPublicKey key = SshPublicKey::OfText(entry.object);
        std::erase(m_ended, key);
        if (entry.action == trail_kind::kKeyEnded) m_ended.push_back(key);
        if (m_ended.size() > kMostEnded) throw DataError("too many keys have ended");
    }

private:
    // Remembers the key: its fingerprint would be one more hash for each entry.
    bool IsNamed(const SshPublicKey& key) const {
        if (!m_named && key.Fingerprint() == m_key) m_named = key;
        return m_named == key;
    }

    static constexpr std::size_t kMostEnded = 4096;  // 128 KiB of memory

    std::string m_key;
    mutable std::optional<SshPublicKey> m_named;
    std::optional<AllowedSigners> m_allowed;
    std::vector<SshPublicKey> m_announced, m_ended;
};

class Check {
public:
    Check(const TrailAnchors& anchors, Known known, TrailReport& report)
        : m_anchors(anchors),
          m_report(report),
          m_trust(anchors.key, std::move(known.allowed)),
          m_known(std::move(known.head)) {}

    void Run(const std::string& path) {
        const GuardedFile file(path, GuardedFile::Use::kRead);
        TrailLines lines(file, 0, file.Size());
        TrailLines::Line line = lines.Next();
        for (; line.kind == TrailLines::Kind::kWhole && m_report.findingCount < kStopAt; line = lines.Next())
            CheckLine(line);
        m_line = line;
        if (line.kind == TrailLines::Kind::kTooLong) Find(TrailFault::kMalformed, "a line is longer than 64 KiB");
        if (m_report.findingCount >= kStopAt) return;  // what comes after is not known
        CheckEnd(line);
        CheckAnchors();
    }

private:
    static constexpr std::uint64_t kStopAt = TrailReport::kMostFindings;

    void Find(TrailFault fault, std::string text, const std::string& signer = "", std::uint64_t lastMissing = 0) {
        ++m_report.findingCount;
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
        std::optional<ReadLine> read;
        try {
            read = ReadEntry(line.text);
            m_about = &read->entry;
            CheckEntry(*read);
        } catch (const DataError& failure) {
            Find(TrailFault::kMalformed, failure.what());
        }
        m_previous = Hex(hash);
        if (m_previous == m_anchors.head) {
            m_isHeadThere = true;
            m_report.pinned = m_next;
        }
        if (m_known && m_known->number == m_next) {
            m_isKnownThere = m_known->hash == hash && m_known->length == line.End();
            if (m_isKnownThere) m_report.pinned = m_next;
            if (!m_isKnownThere) Find(TrailFault::kMissing, "this is not the entry that the head file knows");
        }
        m_report.entries = m_next++;
        m_report.head = m_previous;
        m_about = nullptr;
    }

    void CheckEntry(const ReadLine& line) {
        const TrailEntry& entry = line.entry;
        const std::uint64_t before = m_report.findingCount;
        if (entry.number != m_next) Find(TrailFault::kOrder, "the entry has number " + std::to_string(entry.number));
        CheckTrailId(entry);
        if (entry.previous != m_previous) Find(TrailFault::kOrder, "the entry names another one before it");
        CheckTime(entry);
        // After a gap it goes on from there, without a finding for each further entry.
        if (CheckSigner(line)) m_next = entry.number;
        if (m_report.findingCount != before) return;
        m_trust.Learn(entry);
        if (entry.number == 1) m_isStartRight = true;
    }

    void CheckTrailId(const TrailEntry& entry) {
        if (m_report.trailId.empty()) {
            m_report.trailId = entry.trailId;
            const bool starts =
                entry.action == trail_kind::kTrailStarted || entry.action == trail_kind::kTrailContinued;
            if (!starts) Find(TrailFault::kOrder, "the trail does not begin with its start");
            if (!m_anchors.trailId.empty() && m_anchors.trailId != entry.trailId)
                Find(TrailFault::kOrder, "this is another trail: " + entry.trailId);
            if (m_known && m_known->trailId != entry.trailId)
                Find(TrailFault::kOrder, "the head file is that of another trail: " + m_known->trailId);
        }
        if (m_report.trailId != entry.trailId)
            Find(TrailFault::kOrder, "the entry is of another trail: " + entry.trailId);
    }

    void CheckTime(const TrailEntry& entry) {
        const bool isBack = entry.time < m_time || (entry.bootId == m_bootId && entry.bootTime < m_bootTime);
        if (isBack) Find(TrailFault::kClock, "the entry's time is before that of the one before");
        m_time = entry.time;
        m_bootTime = entry.bootTime;
        m_bootId = entry.bootId;
    }

    // @return whether the signature is right, whoever's it is
    bool CheckSigner(const ReadLine& line) {
        const SshPublicKey& key = line.signature.key;
        if (!line.IsSigned()) {
            Find(TrailFault::kChanged, "the entry is not what was signed", key.Fingerprint());
            return false;
        }
        const std::optional<TrailFault> fault = m_trust.FaultOf(line);
        if (fault == TrailFault::kEndedKey)
            Find(*fault, "the entry's key was not valid at that time", key.Fingerprint());
        if (fault == TrailFault::kUnknownSigner)
            Find(*fault, "the entry is signed by a key that is not trusted", key.Fingerprint());
        return true;
    }

    // Half a line is how a reader sees an appending, if nothing that has to be there can be in it.
    void CheckEnd(const TrailLines::Line& line) {
        if (line.kind != TrailLines::Kind::kPart) return;
        const bool isAfterHead = (m_known && line.at >= m_known->length) || m_isHeadThere ||
                                 (m_anchors.atLeast > 0 && m_report.entries >= m_anchors.atLeast);
        m_report.isBeingWritten = isAfterHead;
        if (!isAfterHead) Find(TrailFault::kCut, "the trail ends within a line");
    }

    void FindMissingUpTo(std::uint64_t last) {
        const std::string next = std::to_string(m_next);
        Find(TrailFault::kMissing,
             last == m_next ? "entry " + next + " is missing"
                            : "entries " + next + " to " + std::to_string(last) + " are missing",
             "", last);
    }

    void CheckAnchors() {
        const auto missing = [this](const std::string& what) { Find(TrailFault::kMissing, what); };
        if (m_known && m_known->number >= m_next) FindMissingUpTo(m_known->number);
        if (!m_anchors.head.empty() && !m_isHeadThere) missing("the entry with the given hash is missing");
        if (m_anchors.atLeast >= m_next) FindMissingUpTo(m_anchors.atLeast);
        m_report.pinned = std::max(m_report.pinned, std::min(m_anchors.atLeast, m_report.entries));
        if (m_report.entries == 0 && m_report.findingCount == 0 && !m_known) missing("the trail has no entry");
        const bool isTrusted = !m_anchors.trustFile.empty() || !m_anchors.key.empty();
        const bool isPinned = m_isHeadThere || m_isKnownThere;
        m_report.isAnchored = isPinned || (isTrusted && !m_anchors.trailId.empty() && m_isStartRight);
        if (m_report.isAnchored) return;
        m_report.unanchored = isTrusted && !m_anchors.trailId.empty() ? "the trail's first entry is not right"
                              : isTrusted
                                  ? "the trail's ID is not given: it may be another trail of the same keys"
                                  : "no key is given that is known from elsewhere: anybody can make such a trail";
    }

    const TrailAnchors& m_anchors;
    TrailReport& m_report;
    Trust m_trust;
    std::optional<TrailHeadState> m_known;
    TrailLines::Line m_line;
    const TrailRecord* m_about = nullptr;  // of the line, where it can be read
    std::uint64_t m_next = 1;              // the number that follows; while a line is checked, its own
    std::string m_previous = std::string(64, '0');
    std::int64_t m_time = 0;
    std::uint64_t m_bootTime = 0;
    std::string m_bootId;
    bool m_isHeadThere = false, m_isKnownThere = false, m_isStartRight = false;
};

void RequireForms(const TrailAnchors& anchors) {
    if (!anchors.trailId.empty() && !IsHex(anchors.trailId, 32))
        throw DataError("the trail's ID is not 32 lower-case hexadecimal digits");
    if (!anchors.head.empty() && !IsHex(anchors.head, 64))
        throw DataError("the entry's hash is not 64 lower-case hexadecimal digits");
    if (!anchors.key.empty() && (!anchors.key.starts_with("SHA256:") || anchors.key.size() != 50))
        throw DataError("the key's fingerprint is not SHA256: and 43 characters");
}

}  // namespace

int CheckTrail(std::string_view path, const TrailAnchors& anchors, TrailReport& report) {
    report = {};
    return AsResult("CheckTrail", [&] {
        RequireForms(anchors);
        Known known;
        const bool isRead =
            IsRead(anchors.trustFile, [&] { known.allowed = AllowedSigners::OfFile(anchors.trustFile); }) &&
            // Before the trail: what is appended in between is after the head then.
            IsRead(anchors.headFile,
                   [&] { known.head = TrailHead(GuardedFile(anchors.headFile, GuardedFile::Use::kRead)).Load(); });
        if (!isRead) return 0;
        Check(anchors, std::move(known), report).Run(std::string(path));
        return 1;
    });
}

}  // namespace qel
