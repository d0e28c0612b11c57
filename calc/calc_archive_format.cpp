#include "qellib10/calc/calc_archive_format.h"

#include "qellib10/platform/archive/archive.h"

namespace qel {

void WriteCalcHead(CArchive& archive, const char* version) { archive << CString(kCalcTag) << CString(version); }

CString ReadCalcHead(CArchive& archive) {
    CString tag;
    CString version;
    archive >> tag >> version;
    return tag == kCalcTag || tag == kCalcEarlierTag ? version : CString();
}

}  // namespace qel
