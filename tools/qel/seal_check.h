#pragma once

#include "tool.h"

namespace tool {

/// What the last kilobytes of a file show of an invalid seal: kGood nothing, kChanged a complete trailer, kCut the
/// start of one.
/// @param anyName a trailer for another name also counts; otherwise it may belong to data within the file
Status TraceOfSeal(CQFile& file, bool anyName);

/// Whether the bytes from @p end on are the start of a seal under the file's name, too short for TraceOfSeal.
bool BeginsSeal(CQFile& file, ULONGLONG end);

/// A file to be loaded by its name, without its seal: if its seal is intact, a copy of the data before it, as long as
/// this object lives, otherwise the file itself.
class Unsealed {
public:
    /// @param share what others may do meanwhile. @throws CFileException
    Unsealed(const std::string& path, CFile::OpenFlags share);
    ~Unsealed();
    Unsealed(const Unsealed&) = delete;
    Unsealed& operator=(const Unsealed&) = delete;

    const CString& Name() const { return m_copy.IsEmpty() ? m_name : m_copy; }

private:
    Unsealed() = default;

    CQFile m_file;
    CString m_name, m_copy;
};

}  // namespace tool
