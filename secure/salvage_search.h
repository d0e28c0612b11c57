#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

#include "qellib10/secure/salvage_bytes.h"

namespace qel {

/// Finds where the versions of a damaged cabinet go on.
class SalvageSearch {
public:
    /// The latest version according to a header that is right.
    struct Goal {
        DWORD number = 0;
        ULONGLONG at = 0;
    };
    enum class Kind {
        kNothing,
        kOwnEnd,  ///< the version that was searched from is whole and ends here: its size was damaged
        kChain,   ///< a version here, where the one before ends or from where one after the other leads to the goal
        kLoose    ///< data here that match a version's header
    };
    struct Found {
        Kind kind = Kind::kNothing;
        ULONGLONG at = 0;
        _CAB_VERSIONHEADER header = {};
    };
    struct Start {
        ULONGLONG from = 0;
        ULONGLONG except = 0;                      // not a place to find
        DWORD least = 0;                           // smaller numbers belong to a document
        const _CAB_VERSIONHEADER* open = nullptr;  // the header whose data's end is not known
        ULONGLONG dataAt = 0;                      // where these data start
        DWORD number = 0;                          // of this version
        ULONGLONG next = 0;                        // where the next one is according to its size; 0 if it is not there
        const std::optional<Goal>& goal = std::nullopt;
    };

    explicit SalvageSearch(SalvageBytes& bytes);

    Found Next(const Start& start);
    /// Whether places were passed over, since looking at all of them would take too long: only a file that was made
    /// for this has so many.
    bool HasGivenUp() const noexcept { return m_effort == 0; }

private:
    class OpenData;

    std::optional<Found> Judge(const Start& start, ULONGLONG at, const _CAB_VERSIONHEADER& header);
    enum class Owner { kUnknown, kPerhapsDocument, kDocument };
    Owner OwnerOf(const Start& start, ULONGLONG at, const _CAB_VERSIONHEADER& header);
    DWORD CountOfDocument(ULONGLONG at, const _CAB_VERSIONHEADER& first);
    bool IsChain(const Goal& goal, ULONGLONG at, _CAB_VERSIONHEADER header);
    bool IsWhole(ULONGLONG at, const _CAB_VERSIONHEADER& header);
    void Spend(ULONGLONG count) noexcept { m_effort -= std::min(m_effort, count); }

    SalvageBytes& m_bytes;
    std::unique_ptr<IoBlock> m_block;
    ULONGLONG m_effort;          // bytes that may still be read in vain
    ULONGLONG m_passedTo = 0;    // the end of a version of a document
    ULONGLONG m_documentAt = 0;  // where the next version of the same document would be
    DWORD m_documentNumber = 0;
    DWORD m_documentCount = 0;  // its versions; 0 when not known
};

}  // namespace qel
