#pragma once

#include <string>

namespace titration {

/// What a sample report is like here: CRCs of its job, its curve and its page, and of its print on the printer "PDF".
/// They hang on how the program lays reports out, on the printer and on the machine's fonts, so where they are what
/// they were, another report comes out as it did then.
/// @throws Failure when there is no such printer
std::string SampleOf(const std::string& printerName);

}  // namespace titration
