#include "demo/verify/made_again.h"

#include "demo/report/report_printer.h"
#include "demo/report/report_sample.h"

namespace titration {

bool MadeAgain::IsOtherwiseHere(const std::string& name, const std::string& beside, const std::string& printer) {
    const std::string sample = m_made.SampleOf(name);
    Require(!sample.empty(), "has no sample in made.ini");
    Require(sample == m_made.SampleOf(beside), "its sample in made.ini is not that of " + beside + ", made beside it");
    if (sample == SampleHere(printer)) return false;
    ++m_heldAgainstSums;
    return true;
}

const std::string& MadeAgain::SampleHere(const std::string& printer) {
    const auto [place, isNew] = m_samples.try_emplace(printer, "no such printer");
    if (isNew && ReportPrinter::IsThere(printer)) place->second = SampleOf(printer);
    return place->second;
}

}  // namespace titration
