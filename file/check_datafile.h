#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/base/guid.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

namespace qel {
class CheckSums;
}

/// A seal on a data file, by which an application can tell later that the file is one of its own, unchanged and under
/// its own name, and how often it was sealed. Without it a file that a copy has cut, or that somebody has edited, is
/// read as if it were a result. The seal finds accidents and careless changes; it does not stop a person who has this
/// library from sealing a changed file again.
///
/// @code
/// CQFile file;
/// if (!file.Open("sample7.dat", CFile::modeCreate | CFile::modeReadWrite | CFile::shareDenyWrite)) return;
/// file.Write("EP 16.519 mL\r\n", 14);
/// CCheckDatafile seal;
/// if (!CCheckDatafile::PackNewData(&file)) return;
/// if (!seal.ReadPackData(&file)) return;  // changed, cut or renamed
/// const int version = seal.GetVersion();  // 1
/// @endcode
///
/// It is a trailer after the file's own data, which stay as they are:
///
///     own data | info length (4) | file name, zero | version (4) | GUID (16) | CRC (4) | sum (4) | trailer length (4)
///
/// Sealing again raises the version and writes the new trailer over the old one. Data that are to change are written
/// again without a trailer and sealed (isNew) by an object that has read the old seal: identity and version continue.
///
/// Operations work on an open file of the caller and return 1, or 0 when the check fails, the system refuses or memory
/// runs out; qel::LastFailure says which. Nothing is thrown. A file that could not be sealed is as it was. Nothing is
/// flushed: after a power cut a file that was just sealed may have its former seal or none, but a seal that passes is
/// after the data that it was made for. The trailer is written by one call, once its checksums are known. A process
/// that is killed while it seals again leaves the former seal or the next one. If the trailer crosses a border of pages
/// and the process is killed there, it leaves one that does not pass; the file's own data are whole then, too. Unless
/// stated, operations leave the file's position anywhere.
class QELLIB10_API CCheckDatafile {
public:
    CCheckDatafile();
    virtual ~CCheckDatafile();
    CCheckDatafile(const CCheckDatafile&) = default;
    CCheckDatafile& operator=(const CCheckDatafile&) = default;

    /// Resets: names are checked; no name, version 0, null GUID.
    void InitializeData();

    /// Whether version, GUID and, if this object checks names, the names are equal. So a == b may differ from b == a.
    bool operator==(const CCheckDatafile& other) const;
    bool operator!=(const CCheckDatafile& other) const { return !(*this == other); }

    /// @param enable 0: a sealed file is accepted under any name
    void EnableCheckFilename(int enable) { m_nCheckFilename = enable; }
    /// The data of the last file that was read or sealed.
    const CString& GetFilename() const { return m_szFilename; }
    const int& GetVersion() const { return m_nVersion; }
    const CGuid& GetGUID() const { return m_guid; }

    /// Seals a file as version 1 with a new GUID, even if it is already sealed: the existing seal then counts as data.
    static int PackNewData(CQFile* file);
    /// Seals a file with this object's identity and the next version.
    /// @param isNew not 0: the file must not be sealed yet; a null GUID is replaced by a new one. 0: it must be sealed
    /// and pass ReadPackData. The file is not shortened: if its name is now shorter than before, it does not pass
    /// afterwards. To keep its seal under a shorter name, write its data to a new file and seal that with @p isNew 1:
    /// the identity is that of this object. It also does not pass if the system fails while the new trailer is written
    /// over the old one
    int PackUpdateData(CQFile* file, int isNew);
    /// Checks a sealed file and reads its trailer; the position does not change. A file under another name than its own
    /// is also read, but the result is 0 if names are checked.
    int ReadPackData(CQFile* file);
    /// 1 for a file whose CRC, sum and lengths are correct.
    static int IsPackData(CQFile* file);

protected:
    // These throw CFileException and qel::DataError.

    static int CheckCRC(CQFile* file);
    static int CheckSUM(CQFile* file);
    static int CheckSize(CQFile* file);
    /// Goes to the trailer's first byte. @param trailerLength may be null
    static void SeekAddDataTop(CQFile* file, DWORD* trailerLength);
    /// Writes the trailer up to the check block, with the file's name, which becomes this object's.
    /// @param written receives its length; may be null
    void AddFileInfo(CQFile* file, DWORD* written);
    /// Writes the trailer at the current position.
    int UpdatePackData(CQFile* file);
    /// The length of the check block, the file's last bytes, and its position.
    static DWORD GetCheckSize();
    static ULONGLONG GetCheckPos(ULONGLONG length);

private:
    void Append(CQFile& file);  // a trailer with the next version
    int TakeInfo(const CQFile& file, ULONGLONG trailerAt);
    std::vector<std::byte> PackInfo(const CQFile& file);
    void WriteTrailer(CQFile& file, const qel::CheckSums& before);

    int m_nCheckFilename;
    CString m_szFilename;
    int m_nVersion;
    CGuid m_guid;
};
