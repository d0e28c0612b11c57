#include "qellib10/secure/cabinet_undo.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/temporary_name.h"

#include "qellib10/secure/history_cabinet_format.h"

namespace qel {
namespace {

CString NewFile() { return TemporaryName(TemporaryFolder().View(), "hcf"); }

void Delete(const CString& name) {
    Succeeds([&] { DeleteFile(name.View()); });  // otherwise an empty file, or part of a copy, stays there
}

}  // namespace

// Deleted at once, because a killed program would leave it there. The copy gets a name of its own: by the time it is
// written, somebody else may have a file, or a link, under this one.
CabinetUndo::CabinetUndo(CFile& cabinet, const CabinetHeader& header, ULONGLONG end)
    : m_cabinet(cabinet), m_header(header), m_length(cabinet.GetLength() != 0 ? end : 0) {
    Delete(NewFile());
}

void CabinetUndo::Run() const {
    if (m_length != 0) {
        m_cabinet.SeekToBegin();
        const auto bytes = Pack(m_header);
        m_cabinet.Write(bytes.data(), static_cast<UINT>(bytes.size()));
        m_cabinet.Flush();
    }
    m_cabinet.SetLength(m_length);
    m_cabinet.Flush();
}

void CabinetUndo::LeaveCopy() const {
    Succeeds([&] {
        const CString name = NewFile();
        if (!Succeeds([&] { Copy(name); })) Delete(name);
    });
}

// With the former header, even if the cabinet itself could not be restored.
void CabinetUndo::Copy(const CString& name) const {
    CFile copy(name, CFile::modeWrite | CFile::shareExclusive);
    const ULONGLONG copied = CopyBytes(m_cabinet.ReadableDescriptor(), 0, copy.WritableDescriptor(), 0, m_length,
                                       m_cabinet.GetFilePath().View(), name.View());
    if (copied != m_length) throw DataError("a cabinet that others cut");
    if (m_length != 0) WriteFullyAt(copy.WritableDescriptor(), Pack(m_header), 0, name.View());
    copy.Close();
}

}  // namespace qel
