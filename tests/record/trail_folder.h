#pragma once

#include "../support/test.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

#include "qellib10/platform/crypto/digest.h"
#include "qellib10/record/ssh_key.h"
#include "qellib10/record/ssh_signature.h"
#include "qellib10/record/text_forms.h"
#include "qellib10/record/trail.h"
#include "qellib10/record/trail_check.h"
#include "qellib10/record/trail_line.h"
#include "qellib10/record/trail_reader.h"

/// Signs by a key made of one byte, so that tests need no file for it.
class ByteSigner : public qel::Signer {
public:
    explicit ByteSigner(int byte) { m_seed.fill(static_cast<std::byte>(byte)); }
    qel::SshPublicKey Key() const { return {qel::PublicKeyOf(m_seed)}; }
    std::string PublicKey() const override { return Key().Text(); }
    std::array<std::byte, 64> Sign(std::string_view bytes) override { return qel::SignEd25519(m_seed, bytes); }

    /// The line of an entry as this key's owner writes it.
    std::string Line(const qel::TrailEntry& entry) {
        const std::string part = qel::SignedPart(entry);
        return qel::LineOf(part, {Key(), Sign(qel::BytesToSign(qel::kEntryNamespace, part))}) + '\n';
    }

private:
    std::array<std::byte, 32> m_seed;
};

inline qel::TrailRecord Record(std::string_view action, std::string_view object = "") {
    qel::TrailRecord record;
    record.user = "mori";
    record.action = action;
    record.object = object;
    if (qel::trail_kind::NeedsReason(action)) record.reason = "because";
    return record;
}

inline std::string HashOf(std::string_view line) { return qel::Hex(qel::Sha256(line)); }

inline std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size() - 1);
        lines.push_back(text.substr(at, end + 1 - at));
        at = end + 1;
    }
    return lines;
}

/// A folder with a trail "t" and its head file "h".
template <class Folder> class WithTrail : public Folder {
public:
    qel::TrailSettings Settings(qel::TrailFlush flush = qel::TrailFlush::kEach) const {
        return {.path = this->Name("t"),
                .headPath = this->Name("h"),
                .application = "Titrator",
                .version = "2.1",
                .flush = flush};
    }
    /// Appends by the key 1 after opening. @return whether all could be
    bool Append(std::initializer_list<const char*> actions, int key = 1) const {
        qel::Trail trail(Settings(), std::make_shared<ByteSigner>(key));
        if (trail.Open() == 0) return false;
        return std::ranges::all_of(actions,
                                   [&](const char* action) { return trail.Append(Record(action)).has_value(); });
    }
    /// The actions of all entries, with what is missing or wrong.
    std::string Actions() const {
        std::string actions;
        qel::TrailReader reader;
        reader.Open(this->Name("t"));
        while (const auto entry = reader.Next()) actions += entry->action + '|';
        return actions + qel::LastFailure().text;
    }
    qel::TrailReport Check(qel::TrailAnchors anchors = {}) const {
        qel::TrailReport report;
        EXPECT_EQ(qel::CheckTrail(this->Name("t"), anchors, report), 1) << qel::LastFailure().text;
        return report;
    }
    qel::TrailReport CheckWithHead() const { return Check({.headFile = this->Name("h")}); }
    std::vector<std::string> Lines() const { return LinesOf(this->Read("t")); }
    qel::TrailEntry Entry(std::size_t number) const {
        std::string line = Lines().at(number - 1);
        line.pop_back();
        return qel::ReadEntry(line).entry;
    }
    /// The first word of each finding's kind, such as "changed 3".
    static std::string Findings(const qel::TrailReport& report) {
        constexpr const char* kNames[] = {"cut",   "malformed", "order", "changed", "signer", "ended",
                                          "clock", "missing",   "stamp", "revoked", "other",  "early"};
        std::string found;
        for (const qel::TrailFinding& finding : report.findings)
            found += kNames[static_cast<int>(finding.fault)] + (' ' + std::to_string(finding.entry)) + ' ';
        if (report.isBeingWritten) found += "writing ";
        if (!report.isAnchored) found += "loose ";
        if (!found.empty()) found.pop_back();
        return found;
    }
};
using TrailFolder = WithTrail<TempFolder>;
