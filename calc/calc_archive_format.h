#pragma once

#include "qellib10/platform/text/string.h"

class CArchive;

/// The archive form of calculation variables. Integers and doubles little-endian; a text is the archive's counted
/// string. A record begins with a head of two texts, the tag "QWCalc" and a version; readers also take the tag
/// "QX-APP" of older files.
///
///     variable "1.00"   head, name, value (8-byte double), state (4 bytes), option flag 1, use flag, option flag 2
///                       (1 byte each, the low byte of the field, read unsigned), text
///     list "1.01"       head, round-up flag (1 byte, as above), round-up digit (4 bytes), count (4 bytes, signed),
///                       the variables with their heads
///     list "1.00"       head, count, variables: read only; flag and digit are 0
///     list without head count, variables: read only, by CCalcVariableList::LoadOldVariableList
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
