#include "qellib10/file/write_undo.h"

#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/file_error.h"

namespace qel {

WriteUndo::WriteUndo(CFile& file, ULONGLONG position, std::size_t most)
    : m_file(file), m_position(position), m_length(file.GetLength()), m_bytes(most) {
    m_file.Seek(static_cast<LONGLONG>(m_position), CFile::begin);
    if (most == 0) return;
    m_bytes.resize(ReadIfOpenForIt());
    m_file.Seek(static_cast<LONGLONG>(m_position), CFile::begin);
}

std::size_t WriteUndo::ReadIfOpenForIt() {
    try {
        return m_file.Read(m_bytes.data(), static_cast<UINT>(m_bytes.size()));
    } catch (const CFileException& failure) {
        if (failure.m_lOsError != kAccessDenied) throw;
        return 0;
    }
}

WriteUndo::~WriteUndo() {
    if (m_kept) return;
    AsResult([&] {
        m_file.SetLength(m_length);
        m_file.Seek(static_cast<LONGLONG>(m_position), CFile::begin);
        m_file.Write(m_bytes.data(), static_cast<UINT>(m_bytes.size()));
        return 1;
    });
}

}  // namespace qel
