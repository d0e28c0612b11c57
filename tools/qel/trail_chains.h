#pragma once

#include <map>
#include <string>
#include <vector>

#include "trail_before.h"

// The trails of a tree, as chains of which each one continues the one before.
namespace tool {

/// Anybody can put files into an archive: only what a checked trail says in an entry that is right makes a chain, every
/// trail is in one, and of several files with one trail's ID the others are findings.
class TrailChains {
public:
    TrailChains(const AnchorOptions& anchors, const SignatureOptions& signatures,
                const std::vector<std::string>& before);

    struct Place {
        std::string folder;  ///< empty: it was named, not found
        std::string file;
    };
    /// Checks trails, several at once.
    void Add(const std::vector<Place>& trails, unsigned jobs);
    /// The chains of a folder, after all trails were added: what is known of one trail holds for those that it fits,
    /// wherever they are, and for all if it fits none.
    std::vector<VerifiedChain> Of(const std::string& folder) const;

private:
    struct Checked {
        VerifiedTrail plain = {};  // with what is known of every trail
        VerifiedTrail known = {};  // with what is known of one trail, too

        bool Fits() const { return known.report.isAnchored && !known.failure; }
    };
    // Of those that may be continued; by ID.
    using Pool = std::multimap<std::string, const Checked*>;
    using Uses = std::map<const Checked*, std::size_t>;

    static const Checked* OlderIn(const Pool& pool, const TrailBefore& before);
    std::vector<VerifiedChain> ChainsOf(const std::vector<const Checked*>& own, bool isNamed) const;
    Checked Check(const std::string& file) const;
    VerifiedTrail Alone(const Checked& trail) const;
    VerifiedTrail Older(const Checked& trail, const TrailBefore& before) const;
    VerifiedChain Chain(const Checked& last, const Pool& pool, bool isNamed, Uses& uses) const;
    VerifiedChain Copy(const Checked& copy, const Checked& best) const;

    const AnchorOptions& m_anchors;
    const SignatureOptions& m_signatures;
    std::map<std::string, std::vector<Checked>> m_folders;
    std::vector<Checked> m_before;
    bool m_fitsAny = false;
    mutable std::size_t m_checkedAgain = 0;
};

}  // namespace tool
