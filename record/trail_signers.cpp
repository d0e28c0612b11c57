#include "qellib10/record/trail_signers.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/allowed_signers.h"
#include "qellib10/record/ssh_signature.h"
#include "qellib10/record/trail_chain.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_keys.h"
#include "qellib10/record/trail_kind.h"
#include "qellib10/record/trail_line.h"

namespace qel {
namespace {

using Kind = SignersDifference::Kind;

std::int64_t SecondOf(std::int64_t time) { return time / 1000; }

// "20261127032225Z" of the time in seconds.
std::string TimeText(std::int64_t second) {
    const std::string text = TrailTimeText(second * 1000);
    std::string digits = text.substr(0, text.find('.'));
    std::erase_if(digits, [](char c) { return c < '0' || c > '9'; });
    return digits + 'Z';
}

// The time in which a key may sign.
struct Announced {
    SshPublicKey key;
    std::uint64_t entry = 0;
    std::int64_t from = 0;                   // seconds since 1970
    std::optional<std::int64_t> until = {};  // the same, which is part of it
    bool isRevoked = false;

    bool Fits(const AllowedSigners::Signer& signer) const {
        const bool isStart = !signer.validAfter || *signer.validAfter == from;
        if (!until || !signer.validBefore) return isStart && !until && !signer.validBefore;
        return isStart && (isRevoked ? *signer.validBefore >= from && *signer.validBefore <= *until
                                     : *signer.validBefore == *until);
    }
};

constexpr std::size_t kMostAnnounced = 4096;              // as many as TrailTrust takes
using Places = std::multimap<SshPublicKey, std::size_t>;  // in a list of those that were announced

bool IsAboutKeys(std::string_view line) {
    using namespace trail_kind;
    constexpr std::array kKinds = {kTrailStarted, kTrailContinued, kKeyAdded, kKeyEnded, kKeyRevoked};
    return std::ranges::any_of(kKinds, [&](std::string_view kind) {
        return line.find("\"action\":\"" + std::string(kind) + '"') != std::string_view::npos;
    });
}

}  // namespace

struct TrailSigners::State {
    std::vector<Announced> announced;
    Places byKey = {};

    void Take(std::string_view line) {
        try {
            const ReadLine read = ReadEntry(line);
            RequireOtherSigner(read.entry, read.signature.key);
            Take(read.entry);
        } catch (const DataError&) {  // CheckTrail reports it
        }
    }

    void Take(const TrailEntry& entry) {
        const std::int64_t second = SecondOf(entry.time);
        if (entry.action == trail_kind::kKeyRevoked) {
            End(RevokedKey::Of(entry).key, second, true);
        } else if (entry.action == trail_kind::kKeyEnded) {
            End(SshPublicKey::OfText(entry.object), second, false);
        } else if (entry.action == trail_kind::kKeyAdded || entry.number == 1) {
            const SshPublicKey key = SshPublicKey::OfText(entry.object);
            if (entry.number == 1 && GoesOn(key, second)) return;
            if (announced.size() == kMostAnnounced) return;  // CheckTrail reports it
            byKey.emplace(key, announced.size());
            announced.push_back({key, entry.number, second});
        }
    }

    // A trail that is continued has no later entry. @return whether the key that starts the next one goes on in it: its
    // time is one, as a line of the file has it.
    bool GoesOn(const SshPublicKey& key, std::int64_t second) {
        bool isOpen = false;
        for (Announced& each : announced) {
            if (each.until) continue;
            if (each.key == key)
                isOpen = true;
            else
                each.until = second;
        }
        return isOpen;
    }

    void End(const SshPublicKey& key, std::int64_t second, bool isRevoked) {
        const auto [first, last] = byKey.equal_range(key);
        for (auto place = first; place != last; ++place) {
            Announced& each = announced[place->second];
            if (!each.until) each.until = second;
            each.isRevoked = each.isRevoked || isRevoked;
        }
    }
};

TrailSigners::TrailSigners() : m_state(new State) {}
TrailSigners::~TrailSigners() = default;

int TrailSigners::Read(std::string_view trailPath, const TrailReceipt& last) {
    *m_state = {};
    return ReadOn(trailPath, last);
}

int TrailSigners::ReadOn(std::string_view trailPath, const TrailReceipt& last) {
    const auto read = [&] {
        ReadChecked(trailPath, last, [&](std::string_view line) {
            if (IsAboutKeys(line)) m_state->Take(line);
        });
    };
    return Succeeds("TrailSigners::Read", read) ? 1 : 0;
}

std::string TrailSigners::Text() const {
    std::string text;
    for (const Announced& each : m_state->announced) {
        text += "installation namespaces=\"" + std::string(kEntryNamespace) + "\",valid-after=\"" + TimeText(each.from);
        if (each.until) text += "\",valid-before=\"" + TimeText(*each.until);
        text += "\" " + each.key.Text() + '\n';
    }
    return text;
}

namespace {

class Comparison {
public:
    Comparison(const std::vector<Announced>& announced, const Places& byKey,
               std::vector<SignersDifference>& differences)
        : m_announced(announced), m_byKey(byKey), m_isNamed(announced.size()), m_differences(differences) {}

    void Take(const AllowedSigners::Signer& signer) {
        if (!signer.IsFor(kEntryNamespace)) return;
        if (!signer.key) return Add(Kind::kUnknown, signer, 0, "has an authority or a key of another kind");
        std::optional<std::size_t> other;
        const auto [first, last] = m_byKey.equal_range(*signer.key);
        for (auto place = first; place != last; ++place) {
            const std::size_t i = place->second;
            if (m_isNamed[i]) continue;
            if (m_announced[i].Fits(signer)) {
                m_isNamed[i] = true;
                return;
            }
            if (!other) other = i;
        }
        if (!other) return Add(Kind::kUnknown, signer, 0, "has a key that no entry has announced for that time");
        m_isNamed[*other] = true;
        const std::uint64_t entry = m_announced[*other].entry;
        Add(Kind::kTime, signer, entry, "has other times than the entries about the key");
    }

    void End() {
        for (std::size_t i = 0; i < m_announced.size(); ++i) {
            if (m_isNamed[i]) continue;
            m_differences.push_back(
                {.kind = Kind::kMissing,
                 .entry = m_announced[i].entry,
                 .key = m_announced[i].key.Fingerprint(),
                 .text = "the key that entry " + std::to_string(m_announced[i].entry) + " has announced is not in it"});
        }
    }

private:
    void Add(Kind kind, const AllowedSigners::Signer& signer, std::uint64_t entry, const std::string& what) {
        m_differences.push_back({.kind = kind,
                                 .line = signer.line,
                                 .entry = entry,
                                 .key = signer.key ? signer.key->Fingerprint() : "",
                                 .text = "line " + std::to_string(signer.line) + ' ' + what});
    }

    const std::vector<Announced>& m_announced;
    const Places& m_byKey;
    std::vector<bool> m_isNamed;
    std::vector<SignersDifference>& m_differences;
};

}  // namespace

int TrailSigners::Compare(std::string_view file, std::vector<SignersDifference>& differences) const {
    differences.clear();
    const auto compare = [&] {
        try {
            Comparison comparison(m_state->announced, m_state->byKey, differences);
            const AllowedSigners signers = AllowedSigners::OfFile(std::string(file));
            for (const AllowedSigners::Signer& signer : signers.Signers()) comparison.Take(signer);
            comparison.End();
        } catch (const DataError& failure) {
            differences.push_back({.kind = Kind::kMalformed, .text = failure.what()});
        }
    };
    return Succeeds("TrailSigners::Compare", compare) ? 1 : 0;
}

}  // namespace qel
