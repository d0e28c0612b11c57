#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"
#include "qellib10/record/trail.h"

namespace qel {

/// What somebody who checks a trail knows from elsewhere. Without any of it only the trail's consistency can be
/// checked: a whole trail that somebody has written again with another key is not noticed. Leave texts empty and
/// numbers 0 if they are not known. Paths are in the library's form.
struct QELLIB10_API TrailAnchors {
    std::string trailId = {};    ///< as on reports, 32 hexadecimal digits
    std::string trustFile = {};  ///< who may sign, in the format of ssh-keygen's allowed signers, times in UTC;
                                 ///< the trail must announce each key except the first, too
    std::string key = {};        ///< fingerprint of the key that started the trail, "SHA256:..."
    std::string head = {};       ///< hash of an entry that has to be there, 64 hexadecimal digits
    std::string headFile = {};   ///< the head file: its entry has to be there
    std::uint64_t atLeast = 0;   ///< so many entries have to be there
    std::string tsaCa = {};      ///< certificates of time stamping authorities: see CheckStamp
    std::string stamp = {};  ///< a time stamp's answer (.tsr), kept elsewhere: the entry that it is one of has to be
                             ///< there; needs `tsaCa`
};

/// What can be wrong with a trail.
enum class TrailFault {
    kCut,            ///< it ends within a line
    kMalformed,      ///< a line that no trail writes, byte for byte
    kOrder,          ///< an entry has another number than follows, or names another entry before
    kChanged,        ///< an entry is not what was signed
    kUnknownSigner,  ///< signed by a key that nobody trusted has announced
    kEndedKey,       ///< signed by a key that was not valid any more at that time
    kClock,          ///< the time of an entry is before that of the one before
    kMissing,        ///< entries that were there are missing
    kTimeStamp,      ///< a time stamp is not one of its entry, not the authority's, or of a time that does not fit
    kRevokedKey,  ///< signed by a key that was revoked, from that entry on, or nothing shows that it was there before
    kOtherTrail,  ///< an entry has another trail's ID, or the trail is not the one that is known from elsewhere
    kKeyNotYetValid,  ///< signed by a key that was not yet valid at that time
};

struct QELLIB10_API TrailFinding {
    TrailFault fault = TrailFault::kCut;
    std::uint64_t entry = 0;        ///< the number, or the one that the line would have
    std::uint64_t byte = 0;         ///< where its line starts in the file, or would
    std::uint64_t lastMissing = 0;  ///< entries from `entry` to this one are missing; 0: not known, or not of kMissing
    std::string signer = {};        ///< the key's fingerprint where it matters
    /// What the entry says it is about, also where that has been changed: as in TrailRecord.
    std::string cabinet = {};
    std::uint64_t cabinetVersion = 0;
    std::uint64_t size = 0;
    std::string sha256 = {};
    std::string text = {};  ///< a sentence
};

struct QELLIB10_API TrailReport {
    std::string trailId = {};
    std::uint64_t lines = 0;    ///< whole ones that were read; those that are no entries count, entries of a gap do not
    std::uint64_t entries = 0;  ///< up to the last line; what number a line has that nobody trusted signed is ignored
    /// The last entry that is known from elsewhere. If later ones are missing because an older state was put back, this
    /// cannot be noticed.
    std::uint64_t pinned = 0;
    std::string head = {};  ///< hash of the last one
    /// What counts for whoever reads the trail after this: the last entry before the first finding, or a later one that
    /// is known from elsewhere and whose hash is that of all before. Number 0: none does.
    TrailReceipt rightUpTo = {};
    /// Whether keys and trail are those that are known from elsewhere: a key or a file of allowed signers, together
    /// with the trail's ID; or an entry's hash, or the head file. Else `unanchored` says what is missing.
    bool isAnchored = false;
    std::string unanchored = {};
    /// Which trail it continues, as its first entry says: ID, number and hash of that one's last entry, with blanks
    /// between them. Empty where it continues none, or that entry is not right, or not of a key that is trusted.
    std::string continues = {};
    bool isBeingWritten = false;  ///< after all that has to be there, the next entry's line starts: somebody appends it
    std::vector<TrailFinding> findings = {};  ///< at most kMostFindings
    std::uint64_t findingCount = 0;
    /// The last entry that a time stamp has proven, and with it all before, and the stamp's time in ms since 1970; 0:
    /// there is none. Only with TrailAnchors::tsaCa.
    std::uint64_t stamped = 0;
    std::int64_t stampTime = 0;
    /// Entries that say that somebody has set the clock: of the kind trail_kind::kClockJumped, and those with a
    /// TrailEntry::clock; and the number of the first one. They are no findings.
    std::uint64_t clockSet = 0;
    std::uint64_t firstClockSet = 0;

    static constexpr std::size_t kMostFindings = 1000;
};

/// Reads a trail from start to end, and reports all that does not fit, up to kMostFindings. Nothing is written or
/// locked, and any size takes the same memory. Where a key was revoked it is read two times more.
/// @return 1 when it was read, whatever was found; 0 when it, or a file of @p anchors, cannot be read or understood, or
/// it was exchanged meanwhile
QELLIB10_API int CheckTrail(std::string_view path, const TrailAnchors& anchors, TrailReport& report);

}  // namespace qel
