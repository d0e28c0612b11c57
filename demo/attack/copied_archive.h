#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <qellib10/qellib10.h>
#include <qellib10/record.h>

namespace titration {

/// A copy of an output folder, in a folder of its own that is deleted at the end of the scope. Its trail is a list of
/// lines that an attack may change. Next to it is a copy of what the installation has, for an attack in which the
/// application itself writes.
class CopiedArchive {
public:
    explicit CopiedArchive(const CString& archive);
    ~CopiedArchive();
    CopiedArchive(const CopiedArchive&) = delete;
    CopiedArchive& operator=(const CopiedArchive&) = delete;

    /// In the library's form.
    CString Folder() const { return qel::ToLibraryPath((m_folder / "archive").native()); }
    std::string Path(const char* name) const { return std::string(CQFile::BuildFilePath(Folder(), name)); }
    /// A path outside the archive, where the attacker keeps what is the attacker's.
    std::filesystem::path Outside(const char* name) const { return m_folder / name; }

    std::string Read(const char* name) const;
    void Write(const char* name, const std::string& bytes) const;
    void Remove(const char* name) const;
    /// Replaces the last @p from in a file, which has to be there. @throws Failure
    void Change(const char* name, const std::string& from, const std::string& to) const;

    /// The printed report of the latest version that was signed; empty if there is none. And its report and trace.
    std::string SignedReport() const;
    std::string SignedJob() const;
    std::string SignedTrace() const;

    /// The trail's lines, each without its line feed.
    std::vector<std::string> Lines() const;
    void WriteLines(const std::vector<std::string>& lines) const;
    /// The place of the last line with a text. @throws Failure if there is none
    std::size_t LineWith(const std::string& text) const;

private:
    DWORD LatestSigned() const;

    std::filesystem::path m_folder;
};

}  // namespace titration
