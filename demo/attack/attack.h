#pragma once

#include <qellib10/qellib10.h>

namespace titration {

/// Attacks copies of an output folder, as somebody might who may read and write everything in it, but has neither the
/// installation's key nor anybody's password, and shows what the verification says about each.
/// @return whether each attack was noticed by what it is said to be noticed by
/// @throws Failure for a folder without a signed report
bool ShowAttacks(const CString& archive);

}  // namespace titration
