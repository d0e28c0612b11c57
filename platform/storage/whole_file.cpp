#include "qellib10/platform/storage/whole_file.h"

#include <limits>

#include "qellib10/platform/error.h"

namespace qel {

std::string ReadWholeFile(CFile& file) {
    file.SeekToBegin();
    const ULONGLONG length = file.GetLength();
    if (length > std::numeric_limits<int>::max()) throw DataError("a file of 2 GiB or more");
    std::string bytes(length, '\0');
    if (file.Read(bytes.data(), static_cast<UINT>(length)) != length) throw DataError("the file became shorter");
    return bytes;
}

std::string ReadWholeFile(const char* path) {
    CFile file(path, CFile::modeRead | CFile::shareDenyWrite);
    return ReadWholeFile(file);
}

}  // namespace qel
