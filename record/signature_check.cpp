#include "qellib10/record/signature_check.h"

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
        if (kind == TrailLines::Kind::kTooLong)
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
        TrailEntry entry = Unread();
        try {
            entry = ReadEntry(text).entry;
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
        m_report.findings.push_back(
            {problem.fault, entry.number, entry.user, entry.cabinet, entry.cabinetVersion, problem.text});
    }

    SignatureState m_state;
    SignatureReport& m_report;
    std::uint64_t m_number = 0;  // of the last entry
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
