#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "qellib10/record/trail.h"

namespace qel {

/// What a file of allowed signers says otherwise than the entries of a trail.
struct QELLIB10_API SignersDifference {
    enum class Kind {
        kMalformed,  ///< the file is not understood
        kMissing,    ///< a key that an entry has announced is not in it
        kUnknown,    ///< a key or an authority in it that no entry has announced
        kTime        ///< a key may sign at other times than the entries say
    };

    Kind kind = Kind::kMalformed;
    std::uint64_t line = 0;   ///< of the file, from 1; 0: the whole file
    std::uint64_t entry = 0;  ///< that announced the key; 0: none has
    std::string key = {};     ///< fingerprint, "SHA256:..."
    std::string text = {};    ///< a sentence
};

/// Which keys may sign a trail, as its entries say, to make the archive's own file of allowed signers and to compare it
/// later. Such a file is for people who check by `ssh-keygen`. It lies in the archive, so it proves nothing: whoever
/// replaces it is noticed here, and whom to trust has to come from elsewhere.
///
/// @code
/// qel::TrailSigners signers;
/// std::vector<qel::SignersDifference> differences;
/// if (signers.Read(R"(\srv\archive\trail.jsonl)") == 0) return;
/// if (signers.Compare(R"(\srv\archive\allowed_signers)", differences) == 0) return;
/// for (const qel::SignersDifference& difference : differences) std::puts(difference.text.c_str());
/// @endcode
///
/// As CabinetRecords it takes the trail as it is. One thread at a time.
class QELLIB10_API TrailSigners {
public:
    TrailSigners();
    ~TrailSigners();
    TrailSigners(const TrailSigners&) = delete;
    TrailSigners& operator=(const TrailSigners&) = delete;

    /// Goes through a trail once. @param last as for CabinetRecords
    /// @return 0 when it cannot be read, or is not the one that was checked; qel::LastFailure has the reason
    int Read(std::string_view trailPath, const TrailReceipt& last = {});
    /// Reads one more trail, which continues the one that was read last.
    int ReadOn(std::string_view trailPath, const TrailReceipt& last);

    /// The text of the file: a line for each time in which a key may sign, for the namespace of entries alone. It
    /// starts in the second of the entry that announces the key, and ends in that of the one that ends or revokes it.
    std::string Text() const;

    /// Compares a file with the entries, to the second. A time that is given has to be the entry's; the start may be
    /// left out. A key that was revoked may end earlier. Lines for other namespaces are passed over.
    /// @return 0 when the file cannot be read
    int Compare(std::string_view file, std::vector<SignersDifference>& differences) const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace qel
