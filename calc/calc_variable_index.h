#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "qellib10/platform/types.h"

class CCalcVariable;

namespace qel {

/// Finds the entries of a variable list by name, in a time that does not grow with the list; the first match in list
/// order is returned. It keeps only positions and hashes, so values may change freely. The next look-up notices
/// appended entries and a change of the code page; after any other change of names or positions call Invalidate.
class CalcVariableIndex {
public:
    void Invalidate() noexcept { m_nPage = 0; }

    /// Position of the first entry whose name is @p name byte for byte, or -1.
    int FindExact(std::span<const CCalcVariable> entries, std::string_view name);

    /// Position of the first entry whose name is @p name, ignoring case, or -1.
    int FindFolded(std::span<const CCalcVariable> entries, std::string_view name);

private:
    // The entries with one hash, linked in list order by m_aryLink; -1 ends the chain. A slot without entries is free.
    struct Slot {
        std::uint32_t hash = 0;
        std::int32_t first = -1;
    };
    struct Link {
        std::int32_t next = -1;
        std::int32_t last = -1;  // of the whole chain; kept by its first entry
    };

    template <typename Matches>
    int Find(std::span<const CCalcVariable> entries, std::string_view name, Matches matches);
    void Update(std::span<const CCalcVariable> entries);
    void Append(std::uint32_t hash);
    Slot& SlotOf(std::uint32_t hash);

    std::vector<Slot> m_arySlot;  // open addressing; a power of two, at least twice as many as entries
    std::vector<Link> m_aryLink;  // one per entry, in list order
    UINT m_nPage = 0;             // the code page of the hashes; 0: to be built again
};

}  // namespace qel
