#pragma once

#include "qellib10/platform/text/string.h"

class CArchive;

// What the archive records of CCalcVariable and CCalcVariableList have in common; their headers show the rest.
// A record begins with a head of two texts, the tag "QWCalc" and a version. Readers also take the tag of older files.
namespace qel {

inline constexpr char kCalcTag[] = "QWCalc";
inline constexpr char kCalcEarlierTag[] = "QX-APP";
inline constexpr char kCalcVariableVersion[] = "1.00";
inline constexpr char kCalcListVersion[] = "1.01";
inline constexpr char kCalcListEarlierVersion[] = "1.00";

void WriteCalcHead(CArchive& archive, const char* version);

/// The version of the record that begins here, or the empty text when its tag is unknown.
CString ReadCalcHead(CArchive& archive);

}  // namespace qel
