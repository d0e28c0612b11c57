#include "qellib10/secure/cabinet_backup.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_operations.h"

#include "qellib10/file/q_file.h"

namespace qel {

CabinetBackup::CabinetBackup() : m_name(CQFile::GetTempFilePath("hcf")) {}

CabinetBackup::~CabinetBackup() {
    if (m_stays) return;
    Succeeds([&] { DeleteFile(m_name.View()); });
}

void CabinetBackup::Take(const CFile& cabinet) {
    CFile copy(m_name, CFile::modeWrite | CFile::shareExclusive);
    const ULONGLONG length = cabinet.GetLength();
    const ULONGLONG copied = CopyBytes(cabinet.ReadableDescriptor(), 0, copy.WritableDescriptor(), 0, length,
                                       cabinet.GetFilePath().View(), m_name.View());
    copy.Close();
    if (copied != length) throw DataError("a cabinet that others cut");
    m_stays = true;
}

}  // namespace qel
