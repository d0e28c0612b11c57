#include "qellib10/record/signature_check.h"

#include <optional>
#include <utility>

#include "qellib10/platform/archive/result.h"
#include "qellib10/record/signature_state.h"
#include "qellib10/record/trail_chain.h"
#include "qellib10/record/trail_file.h"
#include "qellib10/record/trail_kind.h"

namespace qel {
namespace {

class Check {
public:
    Check(const SigningRules& rules, SignatureReport& report) : m_state(rules), m_report(report) {}

    void Run(std::string_view path, const TrailReceipt& last) {
        const auto kind = ReadChecked(path, last, [&](std::string_view line) { CheckLine(line); });
        if (kind != TrailLines::Kind::kTooLong) return;
        m_at = m_next;
        m_signer.reset();
        Find(Unread(), {SignatureFault::kMalformed, "a line is longer than 64 KiB"});
    }

private:
    // Where the next entry would be.
    TrailEntry Unread() const {
        TrailEntry entry;
        entry.number = m_number + 1;
        return entry;
    }

    void CheckLine(std::string_view text) {
        ++m_report.entries;
        m_at = std::exchange(m_next, m_next + text.size() + 1);
        m_signer.reset();
        TrailEntry entry = Unread();
        try {
            ReadLine read = ReadEntry(text);
            entry = std::move(read.entry);
            m_signer = read.signature.key;
        } catch (const DataError& failure) {
            Find(entry, {SignatureFault::kMalformed, failure.what()});
        }
        m_number = entry.number;
        if (entry.action == trail_kind::kSignature) ++m_report.signatures;
        for (const SignatureProblem& problem : m_state.Take(entry)) Find(entry, problem);
    }

    void Find(const TrailEntry& entry, const SignatureProblem& problem) {
        ++m_report.findingCount;
        if (m_report.findings.size() == SignatureReport::kMostFindings) return;
        m_report.findings.push_back({.fault = problem.fault,
                                     .entry = entry.number,
                                     .user = entry.user,
                                     .cabinet = entry.cabinet,
                                     .cabinetVersion = entry.cabinetVersion,
                                     .size = entry.size,
                                     .sha256 = entry.sha256,
                                     .text = problem.text,
                                     .byte = m_at,
                                     .signer = m_signer ? m_signer->Fingerprint() : ""});
    }

    SignatureState m_state;
    SignatureReport& m_report;
    std::uint64_t m_number = 0;          // of the last entry
    std::uint64_t m_at = 0, m_next = 0;  // where its line starts, and the one after it
    std::optional<SshPublicKey> m_signer;
};

}  // namespace

int CheckSignatures(std::string_view path, const SigningRules& rules, SignatureReport& report) {
    return CheckSignatures(path, rules, report, {});
}

int CheckSignatures(std::string_view path, const SigningRules& rules, SignatureReport& report,
                    const TrailReceipt& last) {
    report = {};
    const auto check = [&] { Check(rules, report).Run(path, last); };
    return Succeeds("CheckSignatures", check) ? 1 : 0;
}

}  // namespace qel
