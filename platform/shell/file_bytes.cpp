#include "qellib10/platform/shell/file_bytes.h"

namespace qel {

std::vector<std::byte> FileBytes::At(std::uint64_t offset, std::uint32_t size) const {
    if (offset > m_length || m_length - offset < size) throw DataError("an offset leads out of the file");
    std::vector<std::byte> bytes(size);
    m_file.Seek(static_cast<LONGLONG>(offset), CFile::begin);
    if (m_file.Read(bytes.data(), size) != size) throw DataError("the file has been cut");
    return bytes;
}

}  // namespace qel
