#pragma once

#include "qellib10/platform/time/time.h"
#include "qellib10/platform/types.h"

/// What CFile::GetStatus reports about a file or folder.
struct CFileStatus {
    /// The framework's bits for system files (04) and volumes (08) are never set here.
    enum Attribute : BYTE {
        normal = 0x00,
        readOnly = 0x01,  ///< nobody may write: the mode has no write bit
        hidden = 0x02,    ///< the name starts with a dot
        directory = 0x10,
        archive = 0x20  ///< a regular file
    };

    CTime m_ctime;         // creation; the last write if the file system does not record it
    CTime m_mtime;         // last write
    CTime m_atime;         // last access
    ULONGLONG m_size = 0;  // 0 for a folder
    BYTE m_attribute = normal;
    char m_szFullName[MAX_PATH] = {};  // absolute; longer ones are cut between two characters
};
