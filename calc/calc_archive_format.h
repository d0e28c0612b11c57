#pragma once

#include "qellib10/platform/text/string.h"

class CArchive;

// What the archive records of CCalcVariable and CCalcVariableList have in common; their headers describe the rest. A
// record starts with two texts, the tag "QWCalc" and a version. Readers also accept the tag of older files.
namespace qel {

inline constexpr char kCalcTag[] = "QWCalc";
inline constexpr char kCalcEarlierTag[] = "QX-APP";
inline constexpr char kCalcVariableVersion[] = "1.00";
inline constexpr char kCalcListVersion[] = "1.01";
inline constexpr char kCalcListEarlierVersion[] = "1.00";

void WriteCalcHead(CArchive& archive, const char* version);

/// The version of the record that starts here, or the empty text if its tag is unknown.
CString ReadCalcHead(CArchive& archive);

}  // namespace qel
