#include "qellib10/platform/shell/shell_link.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <span>
#include <string>

#include "qellib10/platform/shell/desktop_entry.h"
#include "qellib10/platform/shell/shell_link_format.h"
#include "qellib10/platform/shell/special_folder.h"
#include "qellib10/platform/storage/block_io.h"
#include "qellib10/platform/storage/file.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/make_folders.h"
#include "qellib10/platform/storage/path.h"
#include "qellib10/platform/storage/path_parts.h"
#include "qellib10/platform/storage/replacement.h"
#include "qellib10/platform/text/code_page.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr std::string_view kExtension = ".lnk";

// The absolute path of the link's file.
CString LinkFile(std::string_view link) {
    const CString named(link);
    const bool complete = named.Right(static_cast<int>(kExtension.size())).CompareNoCase(kExtension.data()) == 0;
    return FullPath((complete ? named : named + kExtension.data()).View());
}

CString WithoutExtension(const CString& file) {
    return file.Left(file.GetLength() - static_cast<int>(kExtension.size()));
}
CString EntryFile(const CString& linkFile) { return WithoutExtension(linkFile) + ".desktop"; }

bool LiesIn(const CString& file, SpecialFolder folder) {
    const CString path = SpecialFolderPath(folder);
    const std::string_view holder = file.View().substr(0, NameStart(file.View()));
    return !path.IsEmpty() && ToPosixPath(holder) == ToPosixPath(path.View());
}

bool StartsWithSession(const CString& file) {
    return LiesIn(file, SpecialFolder::kStartup) || LiesIn(file, SpecialFolder::kCommonStartup);
}

bool DesktopLooksAt(const CString& file) {
    return StartsWithSession(file) || LiesIn(file, SpecialFolder::kPrograms) ||
           LiesIn(file, SpecialFolder::kCommonPrograms) || LiesIn(file, SpecialFolder::kDesktop);
}

ShellLink LinkTo(const CString& target, const std::optional<CString>& description) {
    ShellLink link;
    link.target = target;
    link.description = description;
    CFileStatus status;
    if (CFile::GetStatus(target, status)) {
        link.isFolder = (status.m_attribute & CFileStatus::directory) != 0;
        link.size = link.isFolder ? 0 : status.m_size;
        link.created = status.m_ctime;
        link.accessed = status.m_atime;
        link.written = status.m_mtime;
    }
    return link;
}

// A missing target counts as a program: links may be created before their targets.
bool IsProgram(const std::string& posixPath) {
    struct stat status = {};
    return ::stat(posixPath.c_str(), &status) != 0 || (S_ISREG(status.st_mode) && (status.st_mode & 0111) != 0);
}

void Write(const CString& name, std::span<const std::byte> bytes, bool executable) {
    Replacement file(name.View());
    WriteFully(file.File(), bytes, name.View());
    struct stat made = {};
    if (executable && ::fstat(file.File().Get(), &made) == 0) {
        // Desktops trust an entry that may be executed; whoever may read it may execute it.
        ::fchmod(file.File().Get(), made.st_mode | ((made.st_mode & 0444) >> 2));
    }
    file.Commit();
}

enum class Entry { kNone, kOurs, kForeign };

Entry LookAtEntry(const CString& name) {
    const Descriptor file(::open(ToPosixPath(name.View()).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) return errno == ENOENT ? Entry::kNone : Entry::kForeign;
    std::array<char, 16 * 1024> text;  // the key is well before that, because paths have at most MAX_PATH bytes
    struct stat status = {};
    if (::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return Entry::kForeign;
    const std::size_t size = ReadFully(file, std::as_writable_bytes(std::span(text)), name.View());
    return DesktopEntry::IsOurs({text.data(), size}) ? Entry::kOurs : Entry::kForeign;
}

void WriteEntry(const ShellLink& link, const CString& linkFile) {
    DesktopEntry entry;
    entry.name = ToUtf8(WithoutExtension(linkFile).View().substr(NameStart(linkFile.View())));
    if (link.description) entry.comment = ToUtf8(link.description->View());
    entry.posixPath = ToPosixPath(link.target.View());
    entry.isProgram = IsProgram(entry.posixPath);
    entry.link = ToUtf8(linkFile.View());
    const std::string text = entry.Text();
    Write(EntryFile(linkFile), std::as_bytes(std::span(text)), true);
}

bool IsMissing(const CString& file) {
    CFileStatus status;
    return !CFile::GetStatus(file, status);
}

}  // namespace

void WriteShellLink(std::string_view target, std::string_view link, const std::optional<CString>& description) {
    const CString file = LinkFile(link);
    const ShellLink made = LinkTo(FullPath(target), description);
    const bool withEntry = DesktopLooksAt(file);
    if (withEntry && LookAtEntry(EntryFile(file)) == Entry::kForeign) ThrowCode(kFileExists, EntryFile(file).View());
    if (StartsWithSession(file)) MakeFolders(file.View().substr(0, NameStart(file.View())));
    Write(file, made.Pack(), false);
    if (withEntry) WriteEntry(made, file);
}

void DeleteShellLink(std::string_view link) {
    const CString file = LinkFile(link);
    const bool missing = IsMissing(file);
    if (!missing) DeleteFile(file.View());
    if (LookAtEntry(EntryFile(file)) == Entry::kOurs) DeleteFile(EntryFile(file).View());
    if (missing) DeleteFile(file.View());
}

}  // namespace qel
