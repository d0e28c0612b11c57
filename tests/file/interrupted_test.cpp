#include "../support/interrupted.h"

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "qellib10/file/check_datafile.h"
#include "qellib10/file/log.h"
#include "qellib10/file/private_profile.h"
#include "qellib10/file/q_csv_file.h"
#include "qellib10/file/q_file.h"
#include "qellib10/file/restart_file.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/ini/ini_file.h"
#include "qellib10/platform/restart/restart_queue.h"
#include "qellib10/platform/restart/restart_record.h"
#include "qellib10/platform/storage/file_operations.h"

namespace {

std::string NewIsThere(At at) { return Bytes(at).find("new") != std::string::npos ? "there" : "lost"; }

// With the attributes that the files have, lists included.
std::string AttributesOf(At at, std::initializer_list<const char*> names) {
    std::string attributes = at.Files(Place::About::kBytes, "a");
    for (const char* name : names) {
        char found[200];
        const ssize_t size = ::listxattr(at.Posix(name).c_str(), found, sizeof found);
        attributes.append(name).append(" ").append(found, size > 0 ? static_cast<std::size_t>(size) : 0);
    }
    return attributes;
}
std::string Attributes(At at) { return AttributesOf(at, {"a", "b"}); }
std::string AttributesButA(At at) { return AttributesOf(at, {"c"}); }
void SetAttributes(At at) {
    const std::string list(
        "\2\0\0\0\1\0\6\0\377\377\377\377\2\0\6\0\147\22\0\0\4\0\4\0\377\377\377\377"
        "\20\0\6\0\377\377\377\377\40\0\4\0\377\377\377\377",
        44);
    for (const char* name : {"a", "b"}) {
        ::setxattr(at.Posix(name).c_str(), "system.posix_acl_access", list.data(), list.size(), 0);
        ::setxattr(at.Posix(name).c_str(), "user.note", "kept", 4, 0);
    }
}

// A file that can be written in a folder that cannot; root may do both.
constexpr uid_t kNobody = 65534;
void InClosedFolder(At at) {
    std::filesystem::create_directory(at.Posix("d"));
    at.Write("d/f", "former and longer");
    if (::geteuid() == 0) ::chown(at.Posix("d/f").c_str(), kNobody, kNobody);
    for (const auto& [name, mode] : {
             std::pair("a", 0644),
             {"d/f", 0666},
             {"d", 0555},
             {"", 0777},
         })
        ::chmod(at.Posix(name).c_str(), mode);
}
int CopiedInPlace(At at) {
    const bool isRoot = ::geteuid() == 0 && ::seteuid(kNobody) == 0;
    const bool done = qel::Succeeds([&] { qel::CopyFile(at.a.View(), at.Name("d/f"), false); });
    return (!isRoot || ::seteuid(0) == 0) && done;
}

// Lines without their time.
std::string Lines(At at) {
    std::istringstream log(at.Read("a"));
    std::string lines;
    for (std::string line; std::getline(log, line);) lines += line.substr(line.find(',') + 1) + '|';
    return lines + Names(at);
}

// What a sealed file says, the bytes of one that is none.
std::string Seal(At at) {
    CQFile file;
    CCheckDatafile seal;
    const bool sealed = file.Open(at.a, CFile::modeRead) && seal.ReadPackData(&file);
    return sealed ? at.Read("a").substr(0, 3) + " sealed " + std::to_string(seal.GetVersion()) : Bytes(at);
}
std::string SealAndSizes(At at) { return Seal(at) + Sizes(at); }
int Sealed(At at, bool again) {
    CQFile file;
    if (!file.Open(at.a, CFile::modeReadWrite)) return 0;
    return again ? CCheckDatafile().PackUpdateData(&file, 0) : CCheckDatafile::PackNewData(&file);
}

// Several sectors of data; a seal comes after them.
std::string Data(char of) { return "new" + std::string(1500, of); }
void Longer(At at) { at.Write("a", Data('x')); }
void LongSeal(At at) {
    Longer(at);
    Sealed(at, false);
}
int SealedAnew(At at) {
    CQFile file;
    CCheckDatafile seal;
    if (!file.Open(at.a, CFile::modeReadWrite) || !seal.ReadPackData(&file)) return 0;
    const std::string data = Data('y');
    file.Write(data.data(), static_cast<UINT>(data.size()));
    file.SetLength(data.size());
    return seal.PackUpdateData(&file, 1);
}
int SealedAsNewIsRefused(At at) {
    CQFile file;
    return !file.Open(at.a, CFile::modeReadWrite) || !CCheckDatafile().PackUpdateData(&file, 1);
}
// A whole seal comes after the data that were sealed with it; without one the data are the old or the new ones.
std::string SealAfterCut(At at) {
    CQFile file;
    CCheckDatafile seal;
    const std::string data = at.Read("a").substr(0, Data('x').size());
    const bool isSealed = file.Open(at.a, CFile::modeRead) && seal.ReadPackData(&file);
    const bool isNew = data == Data('y') && (!isSealed || seal.GetVersion() == 2);
    return data == Data('x') || isNew ? "whole" : isSealed ? "forged" : "torn";
}
std::string NewSealAfterCut(At at) { return SealAfterCut(at) == "forged" ? "forged" : "found"; }

CPrivateProfile Registry(const char* end = "") {
    return CPrivateProfile(CString("HKEY_CURRENT_USER\\k") + end, CPrivateProfile::registryMode);
}
std::string Values(At) {
    std::string values;
    for (const char* end : {"", ".bak"}) {
        for (const char* name : {"x", "y"}) values += Registry(end).Get("s", name, "-").View();
    }
    return values;
}
std::string ValuesAndNames(At at) {
    const std::string values = Values(at);  // which takes an old journal away
    return values + at.Files(Place::About::kNames, "current-user.db");
}
void SetX(At) { Registry().Set("s", "x", "1"); }
void SetBackup(At at) {
    SetX(at);
    Registry().Backup(".bak");
    Registry().Set("s", "y", "2");
}

void Ini(At at) { at.Write("a", "[s]\nk=1\n"); }
CString theListed;  // the last entry of the list that was asked for
int List(At at) {
    CStringArray lines;
    lines.Add("former");
    const int listed = CPrivateProfile(at.a, CPrivateProfile::iniMode).GetAllStrings("s", lines);
    theListed = lines.GetSize() > 0 ? lines[lines.GetSize() - 1] : "";
    return listed;
}
// The last line brings back the name that the one before it has moved away.
void Queue(At at) {
    std::string lines;
    at.Write("c", "first");
    at.Write("e", "second");
    for (const char* move : {"ab", "cd", "ec"}) {
        const auto path = [&](char name) { return at.Posix({name}).string(); };
        lines += qel::RestartRecord{false, "earlier", {path(move[0]), path(move[1])}}.Line();
    }
    at.Write("pending-moves", lines);
    qel::DeleteFileDelayed("/kept");
}
int RunQueue(At) {
    return qel::RestartQueue::OfUser().Run([](const qel::RestartOperation&, int) {}), 1;
}
std::string RunToTheEnd(At at) { return RunQueue(at), Bytes(at); }

// Opens the file and closes it after @p body.
template <class Body> int With(const CString& name, UINT flags, Body&& body) {
    CQCSVFile file;
    if (!file.Open(name, flags)) return 0;
    body(file);
    file.Close();
    return 1;
}

// A journal stays when the power fails; the next program that opens the store undoes what it lists.
Operation OnRegistry(const char* name, int (*run)(At), void (*prepare)(At)) {
    return {name, run, ValuesAndNames, prepare, false, Cut::kNewOnceDone, Values};
}

const Operation kOperations[] = {
    {"IniSet", [](At at) { return qel::WriteProfileString("s", "k", "2", at.a); }, Bytes, Ini},
    {"IniSetInNewFile", [](At at) { return qel::WriteProfileString("s", "k", "2", at.c); }, Bytes},
    {"IniGet", [](At at) { return qel::ReadProfileString("s", "k", "", 9, at.a) == "1"; },
     [](At at) { return qel::ReadProfileString("s", "k", "", 9, at.a); }, Ini, false, Cut::kAnything},
    {"IniList", List, [](At) { return std::string(theListed.View()); }, [](At at) { Ini(at), theListed = "former"; },
     false, Cut::kAnything},
    {"IniAddsDeletion", [](At) { return qel::AddDeletionToRestartFile("\\x"); }, Bytes,
     [](At) { qel::AddDeletionToRestartFile("\\before"); }},
    OnRegistry(
        "RegistryMakesStore", [](At) { return Registry().Set("s", "x", "2"); }, Nothing),
    OnRegistry(
        "RegistrySet", [](At) { return Registry().Set("s", "x", "2"); }, SetX),
    OnRegistry(
        "RegistryBackup", [](At) { return Registry().Backup(".bak"); }, SetX),
    OnRegistry(
        "RegistryRestore", [](At) { return Registry().Restore(".bak"); }, SetBackup),
    OnRegistry(
        "RegistryDelete", [](At) { return Registry().Delete("s"); }, SetX),
    {"Seal", [](At at) { return Sealed(at, false); }, Seal, Longer, false, Cut::kOldOrNew, SealAfterCut},
    {"SealAgain", [](At at) { return Sealed(at, true); }, Seal, LongSeal, false, Cut::kOldOrNew, SealAfterCut},
    {"SealNewData", SealedAnew, NewSealAfterCut, LongSeal, false, Cut::kOldOrNew},
    {"SealSealedAsNew", SealedAsNewIsRefused, SealAndSizes, LongSeal, false, Cut::kAnything},
    {"LogLine",
     [](At at) {
         CLog::SetLogFile(at.a);
         return CLog::LogOut(0, "second", "0123456789", 10), 1;
     },
     Lines, [](At at) { at.Write("a", "[t],first\r\n"); }, false, Cut::kAnything},
    {"Copy", [](At at) { return qel::CopyFile(at.a.View(), at.c.View(), true), 1; }, Bytes},
    {"CopyOver", [](At at) { return qel::CopyFile(at.a.View(), at.b.View(), false), 1; }, Bytes},
    {"CopyOverAttributes", [](At at) { return qel::CopyFile(at.a.View(), at.b.View(), false), 1; }, Attributes,
     SetAttributes, false, Cut::kAnything},
    {"MoveAttributes", [](At at) { return CQFile::MoveFileA(at.a, at.c, 1); }, AttributesButA, SetAttributes, false,
     Cut::kAnything},
    {"CopyThroughLink", [](At at) { return qel::CopyFile(at.b.View(), at.c.View(), false), 1; }, Bytes,
     [](At at) { std::filesystem::create_symlink("a", at.Posix("c")); }},
    {"CopyInPlace", CopiedInPlace, [](At at) { return at.Read("d/f") + Names(at); }, InClosedFolder, false,
     Cut::kAnything},
    {"Rename", [](At at) { return CFile::Rename(at.a, at.c), 1; }, Bytes, Nothing, false, Cut::kOldOrNew},
    {"Remove", [](At at) { return CFile::Remove(at.a), 1; }, Bytes, Nothing, false, Cut::kOldOrNew},
    {"MoveInto", [](At at) { return CQFile::MoveFileA(at.a, at.b, 1); }, BytesButA},
    {"CloseTo",
     [](At at) {
         CQFile file;
         return file.Open(at.a, CFile::modeReadWrite) && file.CloseTo(at.b);
     },
     BytesButA},
    {"TemporaryFile",
     [](At) {
         CQFile file;
         return file.CreateTempFile("t", 0) && std::filesystem::remove(qel::ToPosixPath(file.GetFilePath().View()));
     },
     Names, Nothing, false, Cut::kAnything},
    {"MoveAtRestart", [](At at) { return CQFile::MoveFileReboot(at.a, at.b, nullptr, 0) >= 0; }, NewIsThere},
    {"DeleteAtRestart", [](At) { return CQFile::DeleteFileReboot("\\x", 0) == 1; },
     [](At at) { return std::to_string(qel::RestartQueue::OfUser().Waiting().size()) + Names(at); }, Queue},
    {"RunAtRestart", RunQueue,
     [](At at) { return NewIsThere(at) + (Names(at).find(".tmp") == std::string::npos ? "" : ", new queue"); }, Queue,
     false, Cut::kNewOnceDone, RunToTheEnd},
    {"Shortcut", [](At at) { return CQFile::CreateShortcut(at.a, at.c, "d") >= 0; }, Sizes},
    {"DeleteShortcut", [](At at) { return CQFile::DeleteShortcut(at.c); }, Sizes,
     [](At at) { CQFile::CreateShortcut(at.a, at.c, "d"); }, false, Cut::kOldOrNew},
    {"Compare", [](At at) { return CQFile::CompareFile(at.a, at.a); }, Bytes, Nothing, false, Cut::kAnything},
    {"Folders", [](At at) { return CQFile::CreateDirectories(at.tree); }, Names, Nothing, true},
    {"DeleteTree", [](At at) { return CQFile::DelTree(at.tree); }, Names,
     [](At at) { CQFile::CreateDirectories(at.tree + "\\z"); }, true},
    {"Write",
     [](At at) {
         return With(at.b, CFile::modeWrite, [](CFile& file) {
             file.Write("0123456789", 10);
             file.Flush();
             file.SetLength(8);
         });
     },
     Bytes, Nothing, true},
    {"CopyIn",
     [](At at) { return With(at.b, CFile::modeWrite, [&](CQFile& file) { file.WriteFromFile(at.a, 1, 2); }); }, Bytes,
     Nothing, true},
    {"CopyOut", [](At at) { return With(at.a, CFile::modeRead, [&](CQFile& file) { file.ReadToFile(at.b, 3); }); },
     Bytes, Nothing, true},
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(File, FailingCalls, testing::ValuesIn(kOperations), NameOf);
INSTANTIATE_TEST_SUITE_P(File, DeadDisks, testing::ValuesIn(WithPromise(kOperations, Cut::kOnlyOnceDone)), NameOf);
INSTANTIATE_TEST_SUITE_P(File, PowerCuts, testing::ValuesIn(WithPromise(kOperations)), NameOf);
