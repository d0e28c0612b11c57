#include "qellib10/calc/calc_archive_format.h"

#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/platform/archive/archive.h"

namespace qel {
namespace {

// A short text in an archive has its length in a byte before it. All versions so far have four characters: 1.00, 1.01.
std::string HeadStart(std::string_view tag) {
    return static_cast<char>(tag.size()) + std::string(tag) + static_cast<char>(sizeof kCalcListVersion - 1) + "1.0";
}

}  // namespace

void WriteCalcHead(CArchive& archive, const char* version) { archive << CString(kCalcTag) << CString(version); }

CString ReadCalcHead(CArchive& archive) {
    CString tag;
    CString version;
    archive >> tag >> version;
    return tag == kCalcTag || tag == kCalcEarlierTag ? version : CString();
}

bool IsCalcArchive(std::string_view start) {
    return start.starts_with(HeadStart(kCalcTag)) || start.starts_with(HeadStart(kCalcEarlierTag));
}

}  // namespace qel
