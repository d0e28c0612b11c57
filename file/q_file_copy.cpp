#include "qellib10/file/q_file.h"
#include "qellib10/platform/storage/block_io.h"

namespace {

// Copies from one position to the other; both are then after the copied bytes.
void Copy(CFile& from, CFile& to, ULONGLONG count) {
    const ULONGLONG source = from.GetPosition();
    const ULONGLONG target = to.GetPosition();
    const ULONGLONG copied = qel::CopyBytes(from.ReadableDescriptor(), source, to.WritableDescriptor(), target, count,
                                            from.GetFilePath().View(), to.GetFilePath().View());
    from.Seek(static_cast<LONGLONG>(source + copied), CFile::begin);
    to.Seek(static_cast<LONGLONG>(target + copied), CFile::begin);
    if (copied != count) throw CFileException(CFileException::genericException, -1, from.GetFilePath());
}

}  // namespace

void CQFile::WriteFromFile(const char* source, UINT offset, DWORD count) {
    constexpr DWORD kToTheEnd = 0xFFFFFFFF;
    CFile from(source, modeRead | shareDenyNone);
    from.Seek(offset, begin);
    ULONGLONG wanted = count;
    if (count == kToTheEnd) {
        const ULONGLONG length = from.GetLength();
        // Past the end there is nothing to copy, which is a failure for any count.
        if (offset > length) throw CFileException(CFileException::genericException, -1, from.GetFilePath());
        wanted = length - offset;
    }
    if (wanted != 0) Copy(from, *this, wanted);
}

void CQFile::ReadToFile(const char* target, DWORD count) {
    CFile to(target, modeWrite | shareDenyWrite);
    if (count != 0) Copy(*this, to, count);
    to.Close();
}
