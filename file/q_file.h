#pragma once

#include <optional>

#include "qellib10/platform/export.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/text/string.h"
#include "qellib10/platform/types.h"

/// CFile with the steps around a data file that programs otherwise write again and again: temporary files that delete
/// themselves, checksums, comparison, copying, names built and taken apart, trees of folders. It prevents the common
/// faults of such code: a half copy under the final name, a deletion that follows a link, a backslash found inside a
/// double-byte character.
///
/// @code
/// CQFile draft;
/// if (!draft.CreateTempFile("res", 1)) return;
/// draft.Write("EP 16.519 mL\r\n", 14);
/// const CString folder = CQFile::BuildFilePath("C:\\data", "2026");
/// if (!CQFile::CreateDirectories(folder)) return;
/// if (!draft.CloseTo(CQFile::BuildFilePath(folder, "sample7.dat"))) return;  // whole, or the old file stays
/// @endcode
///
/// The static operations on names and folders take paths with the backslash; null counts as the empty text.
///
/// CFile's operations throw what CFile throws, and so do Close, WriteFromFile and ReadToFile. Nothing else throws,
/// except that operations which return a text throw std::bad_alloc: a caller could not distinguish an empty text from a
/// name. An int is 1 on success and 0 on failure, also when memory runs out, and a text is empty on failure, both
/// unless stated; qel::LastFailure says why. Destroying an open temporary file leaves it on the disk.
///
/// Opening and closing is in q_file.cpp, checksums, search and comparison in q_file_content.cpp, WriteFromFile and
/// ReadToFile in q_file_copy.cpp, folders and moves in q_file_folder.cpp, names in q_file_path.cpp, places of the
/// system in q_file_place.cpp, delayed operations in q_file_restart.cpp, shell links and versions in q_file_shell.cpp.
class QELLIB10_API CQFile : public CFile {
public:
    /// What GetLastError returns.
    enum LastError : DWORD {
        errorCreateTempFile = 0x1001,  ///< the temporary file could not be created or opened
        errorCopy = 0x1002,            ///< the closed file could not be copied to its target
        errorDelete = 0x1003           ///< the closed file could not be deleted
    };

    CQFile() noexcept;
    ~CQFile() override;

    // Opening and closing.

    /// Like CFile::Open. A file that was open before, even a temporary one, is closed and stays on disk.
    BOOL Open(const char* name, UINT flags, CFileException* error = nullptr) override;
    BOOL IsOpen() const noexcept;
    /// Creates a file with a new name in the folder for temporary files and opens it for reading and writing; others
    /// may only read it meanwhile. Failure: errorCreateTempFile.
    /// @param prefix the name starts with its first three bytes
    /// @param deleteOnClose not 0: Close deletes the file
    int CreateTempFile(const char* prefix, int deleteOnClose);
    /// Like CFile::Close, then deletes a temporary file that is marked for it; its last bytes may be lost then.
    void Close() override;
    /// Closes, copies the file over @p target, with access rights as for MoveFileA, and deletes it. A closed file: 1.
    /// @return 0 with errorCopy: the file is still there under its own name; or errorDelete: both are there
    int CloseTo(const char* target);
    /// Closes and deletes the file. A closed file: 1. @return 0 with errorDelete
    int CloseToDestroy();

    /// The last failure of the operations above, 0 if none. Only CreateTempFile resets it.
    DWORD GetLastError() const noexcept { return m_dwLastError; }
    /// A text for people, the same for every @p code.
    static CString GetErrorMessage(DWORD code);

    // Contents.

    /// CRC-32/BZIP2 of the first @p size bytes, or of all if the file is shorter; 0: of all. The position does not
    /// change.
    int GetFileCRC(DWORD* crc, DWORD size);
    /// The sum of the same bytes; a sum of 0 is returned as 1.
    int GetFileSum(DWORD* sum, DWORD size);
    /// The same for a file by name, also while others write to it.
    static int GetFileCRC(const char* name, DWORD* crc, DWORD size);
    static int GetFileSum(const char* name, DWORD* sum, DWORD size);
    /// Searches from the start of the file. @return 1, with the position after the first match. 0 if there is none: the
    /// position then does not change, or is at or past the end if the search met the pattern's first byte so late that
    /// the rest would not fit
    int Find(const void* pattern, DWORD length);
    /// 1 for two files that can be opened and have the same bytes.
    static int CompareFile(const char* a, const char* b);

    /// Writes bytes of another file at the current position.
    /// @param count 0xFFFFFFFF: from @p offset to the end
    /// @throws CFileException if the file cannot be opened; with genericException if it has fewer bytes, after writing
    /// those that it has; like CFile::Write if writing fails, the position then does not change
    virtual void WriteFromFile(const char* source, UINT offset, DWORD count);
    /// Writes bytes from the current position over the first bytes of another file, which must exist and is not
    /// shortened. Throws as above.
    virtual void ReadToFile(const char* target, DWORD count);

    /// 1 for an existing file or folder.
    static int IsExist(const char* name);
    /// Bytes of a file, 0 of a folder. 0xFFFFFFFF also for a larger file, see qel::FileSize64.
    static int GetFileSize(const char* name, DWORD* size);
    /// 1 for a missing file, and for one that can be opened for writing and that nobody else has open.
    static int IsCanOverwrite(const char* name);

    // Names, built and taken apart. The disk is not accessed.

    /// @p name in @p folder, with a backslash between them unless there is one; only @p name for an empty folder.
    static CString BuildFilePath(const char* folder, const char* name);
    /// @p name, a dot unless it ends with one, @p ext; the empty text for an empty name, whatever the extension.
    static CString BuildFileName(const char* name, const char* ext);
    /// The part after the last backslash; without one after the last slash, without both the whole path.
    static CString GetFilenameFromPath(const char* path);
    /// The part before the last backslash; the whole path if there is none, even if it has slashes.
    static CString GetFolderFromPath(const char* path);
    /// The part after the last dot; the whole name if there is none or only the first character is one.
    static CString GetFileExt(const char* name);
    /// The same for an extension of at most three bytes; the empty text if there is none.
    static CString GetFileShortExt(const char* name);
    /// @p name up to its last dot, if that is after the last slash and is not the first character; else @p name.
    /// Backslashes are ignored: the dot in `dir.d\name` counts.
    static CString DeleteFileExt(const char* name);
    /// 1 for a text without any of `\ / : , ; * ? " < > |`.
    static int IsCorrectFilename(const char* name);
    /// 1 for `.` and `..`.
    static int IsDots(const char* name);

    // Folders of the system and of programs.

    /// The folder for temporary files, with a backslash at its end.
    static CString GetTempFolder();
    /// A new empty file in the folder for temporary files, or in @p folder: the first three bytes of @p prefix, four
    /// hexadecimal digits and `.TMP`. Only its owner can use it until it is moved. A prefix with a separator in those
    /// bytes is refused.
    static CString GetTempFilePath(const char* prefix);
    static CString GetTempFilename(const char* folder, const char* prefix);
    /// The process's current folder. On failure @p out does not change.
    static int GetCurrentDirectoryA(CString& out);
    /// The file of the running program (0) or of the shared library that contains the address @p module; its folder.
    static CString GetModuleFilePath(HINSTANCE module);
    static CString GetModuleFolder(HINSTANCE module);
    /// The same file's path with the extension of its name, if it has one, replaced by `.ini`.
    /// @return `.ini` alone, the name of no module's file, if no module has this address; qel::LastFailure says so
    static CString GetModuleIniFile(HINSTANCE module);
    /// The folder of programs started with the user's session; with everybody's if @p common is not 0 and the system
    /// has one.
    static CString GetStartupFolder(int common);
    /// The user's folder for application settings, with a separator at its end.
    static CString GetAppDataFolder();
    /// Lets the user choose a folder in the browser that the application has registered (qel::SetFolderBrowser), which
    /// starts at @p folder. @return 0, and @p folder does not change, if cancelled or if there is no browser
    static int SelectFolderDialog(CString& folder, const char* title, HWND owner);
    /// The same; the title is a text of the string table.
    static int SelectFolderDialog(CString& folder, UINT titleId, HWND owner);

    // Folder trees and files.

    /// Creates every missing folder of @p path. On failure the process's current folder is the last one that was
    /// reached; otherwise it does not change.
    static int CreateDirectories(const char* path);
    /// Deletes @p folder and everything in it, up to the first failure; links are deleted, not followed. A missing
    /// folder: 1. The root folder, also of a drive or a share, and the empty name: 0, and nothing is deleted.
    static int DelTree(const char* folder);
    /// Deletes the files (not folders) whose names match the last component of @p pattern, and continues after
    /// failures.
    /// @return 0 if a deletion failed; 1 also if nothing matched
    static int DeleteFiles(const char* pattern);
    /// Creates the folders of @p target, copies @p source there, then deletes it. An existing target is replaced only
    /// if @p overwrite is not 0. The file keeps its owner, access rights and extended attributes, as far as the caller
    /// may set them; a temporary one (GetTempFilePath) gets those of the target, or of a new file.
    /// @return 1 once copied, even if the source could not be deleted
    static int MoveFileA(const char* source, const char* target, int overwrite);
    /// Moves @p source over @p target, at the next start of the system if that is not possible now; with the same
    /// rights as MoveFileA.
    /// @param tempName receives the name of the file until then, at most @p tempNameSize bytes with its zero
    /// @return 0 moved at once, 1 to be moved at the next start, -1 no short names, -2 the system refused to delay it,
    /// -3 the file could not be moved to its temporary name
    static int MoveFileReboot(const char* source, const char* target, char* tempName, int tempNameSize);
    /// Deletes @p name, at once if @p tryNow is not 0 and that is possible, else at the next start of the system.
    /// @return 0 deleted at once (or not there), 1 to be deleted at the next start, -2 the system refused to delay it
    static int DeleteFileReboot(const char* name, int tryNow);

    // Shell links and version resources.

    /// Writes a shell link to @p target; `.lnk` is appended unless @p shortcut ends with it in any case.
    /// @param description null: none
    /// @return the framework's result code, negative on failure
    static HRESULT CreateShortcut(const char* target, const char* shortcut, const char* description);
    static int DeleteShortcut(const char* shortcut);
    /// The text of @p key in the version resource of a program file, in the first of its languages that has it.
    /// @param value may be null; does not change on failure
    static int GetVersionInfo(const char* file, const char* key, CString* value);
    /// The text of `FileVersion`.
    static int GetFileVersion(const char* file, CString* value);

protected:
    /// The 256 entries of the table for a CRC by bytes; created once, the same at every call, for any thread.
    static const DWORD* MakeCRCTable();

    /// @p a, @p sep unless it ends with that, @p b; @p sep and @p b if @p a is empty.
    static CString Append(const char* a, const char* b, char sep);

    /// Called by the folder browser: at message 1 it selects the folder to start with, if one was given.
    /// @return 1 for that message, else 0
    static int BrowseNotify(HWND browser, UINT message, LPARAM parameter, LPARAM data);

private:
    DWORD m_dwLastError = 0;
    int m_nDeleteOnClose = 0;
};

namespace qel {

/// Bytes of a file of any size, 0 of a folder; nothing if there is no such file.
QELLIB10_API std::optional<ULONGLONG> FileSize64(std::string_view name);

}  // namespace qel
