#pragma once

#include <vector>

#include "qellib10/platform/types.h"

namespace qel {

/// Where the versions of a cabinet end, as far as walks from the first one on have found them, so that the next walk
/// starts near where it goes. Of very many versions only every second, fourth, ... is kept, and the last one found.
class VersionEnds {
public:
    /// A version and where it ends, from the start of the file; number 0 is the header.
    struct Place {
        DWORD version;
        ULONGLONG end;
    };

    /// The last known place before @p version; @p start where none is.
    Place Before(DWORD version, ULONGLONG start) const;
    /// @param place the version after one that was known
    void Add(const Place& place);
    void Clear();

private:
    static constexpr std::size_t kMost = 65536;

    std::vector<ULONGLONG> m_ends;  // of the versions m_step, 2 * m_step, ...
    DWORD m_step = 1;
    Place m_last = {};
};

}  // namespace qel
