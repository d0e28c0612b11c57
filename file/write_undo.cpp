#include "qellib10/file/write_undo.h"

#include "qellib10/platform/archive/result.h"

namespace qel {

WriteUndo::WriteUndo(CFile& file, ULONGLONG position, std::size_t most)
    : m_file(file), m_position(position), m_length(file.GetLength()), m_bytes(most) {
    m_file.Seek(static_cast<LONGLONG>(m_position), CFile::begin);
    if (most == 0) return;
    std::size_t count = 0;
    Succeeds([&] { count = m_file.Read(m_bytes.data(), static_cast<UINT>(most)); });
    m_bytes.resize(count);
    m_file.Seek(static_cast<LONGLONG>(m_position), CFile::begin);
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
