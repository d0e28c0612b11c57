#pragma once

#include <string>

namespace titration {

/// A fingerprint of how this machine lays out reports: the CRCs of a fixed report's job, curve, trace and page, and of
/// its print on the printer "PDF". They depend on the program, the printer and the installed fonts. While they stay the
/// same, every other report comes out with the same bytes as before.
/// @throws Failure when there is no such printer
std::string LayoutFingerprint(const std::string& printerName);

}  // namespace titration
