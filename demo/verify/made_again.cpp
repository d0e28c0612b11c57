#include "demo/verify/made_again.h"

#include "demo/report/layout_fingerprint.h"
#include "demo/report/report_printer.h"

namespace titration {

bool MadeAgain::LayoutDiffersHere(const std::string& name, const std::string& beside, const std::string& printer) {
    const std::string fingerprint = m_made.FingerprintOf(name);
    Require(!fingerprint.empty(), "has no layout fingerprint in made.ini");
    Require(fingerprint == m_made.FingerprintOf(beside),
            "its layout fingerprint in made.ini is not that of " + beside + ", made in the same run");
    if (fingerprint == FingerprintHere(printer)) return false;
    ++m_countBySumsAlone;
    return true;
}

const std::string& MadeAgain::FingerprintHere(const std::string& printer) {
    const auto [place, isNew] = m_fingerprints.try_emplace(printer, "no such printer");
    if (isNew && ReportPrinter::IsThere(printer)) place->second = LayoutFingerprint(printer);
    return place->second;
}

}  // namespace titration
