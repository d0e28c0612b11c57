#include "demo/result/check_sums.h"

#include "demo/support/failure.h"
#include "demo/support/file_step.h"

namespace titration {

CheckSums CheckSumsOf(CQFile& file, DWORD size) {
    CheckSums sums;
    if (file.GetFileCRC(&sums.crc, size) == 0 || file.GetFileSum(&sums.sum, size) == 0)
        throw Failure(std::string(file.GetFileName()) + ": " + Why("cannot be read"));
    return sums;
}

CheckSums CheckSumsOf(const std::string& path) {
    CheckSums sums;
    if (CQFile::GetFileCRC(path.c_str(), &sums.crc, 0) == 0 || CQFile::GetFileSum(path.c_str(), &sums.sum, 0) == 0)
        throw Failure(path + ": " + Why("cannot be read"));
    return sums;
}

std::string Shown(const CheckSums& sums) {
    CString text;
    text.Format("CRC %08X, sum %08X", sums.crc, sums.sum);
    return std::string(text);
}

}  // namespace titration
