#include "../support/failing_calls.h"
#include "../support/test.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <numeric>
#include <set>
#include <sstream>

#include "../support/environment_scope.h"
#include "../support/soak.h"
#include "../support/temp_folder.h"
#include "qellib10/base/q_csv_file.h"
#include "qellib10/file/check_datafile.h"
#include "qellib10/file/log.h"
#include "qellib10/file/private_profile.h"
#include "qellib10/file/q_file.h"
#include "qellib10/file/restart_file.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/platform/storage/ini_file.h"
#include "qellib10/platform/storage/restart_queue.h"
#include "qellib10/platform/storage/restart_record.h"

// Each system call of an operation fails once, in each way that it can. The operation may still succeed; else it
// answers its failure, and what it works on is as it was or as it was to be. Nothing else stays behind.

namespace {

enum class About { kNames, kSizes, kBytes };

// A folder with the files that an operation finds.
class Place : public TempFolder {
public:
    Place() : TempFolder("/dev/shm") {  // where a flush costs nothing
        Write("a", "new");
        Write("b", "former");
        for (const char* name : {"a", "b"}) ::chmod(Posix(name).c_str(), 0604);
    }

    // Names and access rights of the files, and what is asked for about each, but for the file @p ignored.
    std::string Files(About about, const std::string& ignored = "") const {
        std::set<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Posix())) {
            const std::string name = entry.path().lexically_relative(Posix());
            const auto rights = static_cast<unsigned>(entry.status().permissions());
            const std::string bytes = about == About::kNames ? "" : Read(name);
            if (name == ignored) continue;
            files.insert(name + ' ' + std::to_string(rights) + ' ' +
                         (about == About::kSizes ? std::to_string(bytes.size()) : bytes) + '\n');
        }
        return std::accumulate(files.begin(), files.end(), std::string());
    }

private:
    EnvironmentScope m_registry{"QELLIB10_REGISTRY_DIR", Posix().c_str()};
    EnvironmentScope m_state{"QELLIB10_STATE_DIR", Posix().c_str()};
    EnvironmentScope m_temporary{"TMPDIR", Posix().c_str()};

public:
    const CString a = Path("a"), b = Path("b"), c = Path("c"), tree = Path("x/y");
};

using At = const Place&;

std::string Bytes(At at) { return at.Files(About::kBytes); }
std::string BytesButA(At at) { return at.Files(About::kBytes, "a"); }
std::string Sizes(At at) { return at.Files(About::kSizes); }
std::string Names(At at) { return at.Files(About::kNames); }
std::string NewIsThere(At at) { return Bytes(at).find("new") != std::string::npos ? "there" : "lost"; }
void Nothing(At) {}

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
int Sealed(At at, bool again) {
    CQFile file;
    if (!file.Open(at.a, CFile::modeReadWrite)) return 0;
    return again ? CCheckDatafile().PackUpdateData(&file, 0) : CCheckDatafile::PackNewData(&file);
}

CPrivateProfile Registry(const char* end = "") {
    return CPrivateProfile(CString("HKEY_CURRENT_USER\\k") + end, CPrivateProfile::registryMode);
}
std::string Values(At at) {
    std::string values;
    for (const char* end : {"", ".bak"}) {
        for (const char* name : {"x", "y"}) values += Registry(end).Get("s", name, "-").View();
    }
    return values + at.Files(About::kNames, "current-user.db");
}
void SetX(At) { Registry().Set("s", "x", "1"); }
void SetBackup(At at) {
    SetX(at);
    Registry().Backup(".bak");
    Registry().Set("s", "y", "2");
}

void Ini(At at) { at.Write("a", "[s]\nk=1\n"); }
void Queue(At at) {
    at.Write("pending-moves", qel::RestartRecord{false, "earlier", {at.Posix("a"), at.Posix("b")}}.Line());
    qel::DeleteFileDelayed("/kept");
}

// Opens the file and closes it behind @p body.
template <class Body> int With(const CString& name, UINT flags, Body&& body) {
    CQCSVFile file;
    if (!file.Open(name, flags)) return 0;
    body(file);
    file.Close();
    return 1;
}

struct Operation {
    const char* name;
    std::function<int(At)> run;            // 0 or CFileException: it has failed
    std::function<std::string(At)> state;  // what is there, as far as that must be whole
    std::function<void(At)> prepare = Nothing;
    bool mayBePart = false;  // it goes on from where it was: after a failure a part may be done
};

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

const Operation kOperations[] = {
    {"IniSet", [](At at) { return qel::WriteProfileString("s", "k", "2", at.a); }, Bytes, Ini},
    {"IniSetInNewFile", [](At at) { return qel::WriteProfileString("s", "k", "2", at.c); }, Bytes},
    {"IniGet", [](At at) { return qel::ReadProfileString("s", "k", "", 9, at.a) == "1"; },
     [](At at) { return qel::ReadProfileString("s", "k", "", 9, at.a); }, Ini},
    {"IniAddsDeletion", [](At) { return qel::AddDeletionToRestartFile("\\x"); }, Bytes,
     [](At) { qel::AddDeletionToRestartFile("\\before"); }},
    {"RegistryMakesStore", [](At) { return Registry().Set("s", "x", "2"); }, Values},
    {"RegistrySet", [](At) { return Registry().Set("s", "x", "2"); }, Values, SetX},
    {"RegistryBackup", [](At) { return Registry().Backup(".bak"); }, Values, SetX},
    {"RegistryRestore", [](At) { return Registry().Restore(".bak"); }, Values, SetBackup},
    {"RegistryDelete", [](At) { return Registry().Delete("s"); }, Values, SetX},
    {"Seal", [](At at) { return Sealed(at, false); }, Seal},
    {"SealAgain", [](At at) { return Sealed(at, true); }, Seal, [](At at) { Sealed(at, false); }},
    {"LogLine",
     [](At at) {
         CLog::SetLogFile(at.a);
         return CLog::LogOut(0, "second", "0123456789", 10), 1;
     },
     Lines, [](At at) { at.Write("a", "[t],first\r\n"); }},
    {"Copy", [](At at) { return qel::CopyFile(at.a.View(), at.c.View(), true), 1; }, Bytes},
    {"CopyOver", [](At at) { return qel::CopyFile(at.a.View(), at.b.View(), false), 1; }, Bytes},
    {"Rename", [](At at) { return CFile::Rename(at.a, at.c), 1; }, Bytes},
    {"Remove", [](At at) { return CFile::Remove(at.a), 1; }, Bytes},
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
     Names},
    {"MoveAtRestart", [](At at) { return CQFile::MoveFileReboot(at.a, at.b, nullptr, 0) >= 0; }, NewIsThere},
    {"DeleteAtRestart", [](At) { return CQFile::DeleteFileReboot("\\x", 0) == 1; },
     [](At at) { return std::to_string(qel::RestartQueue::OfUser().Waiting().size()) + Names(at); }, Queue},
    {"RunAtRestart", [](At) { return qel::RestartQueue::OfUser().Run([](const qel::RestartOperation&, int) {}), 1; },
     [](At at) { return NewIsThere(at) + (Names(at).find(".tmp") == std::string::npos ? "" : ", new queue"); }, Queue},
    {"Shortcut", [](At at) { return CQFile::CreateShortcut(at.a, at.c, "d") >= 0; }, Sizes},
    {"DeleteShortcut", [](At at) { return CQFile::DeleteShortcut(at.c); }, Sizes,
     [](At at) { CQFile::CreateShortcut(at.a, at.c, "d"); }},
    {"Compare", [](At at) { return CQFile::CompareFile(at.a, at.a); }, Bytes},
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

class FailingCalls : public testing::TestWithParam<Operation> {
protected:
    // Starts the program once more, in the care of the object that lets calls fail.
    static void SetUpTestSuite() {
        if (::dlsym(RTLD_DEFAULT, "FailCall") != nullptr || std::getenv("LD_PRELOAD") != nullptr) return;
        ::setenv("LD_PRELOAD", QELLIB10_FAILING_CALLS, 1);
        ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
        const std::vector<std::string> arguments = testing::internal::GetArgvs();
        std::vector<char*> pointers;
        for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
        pointers.push_back(nullptr);
        ::execv("/proc/self/exe", pointers.data());
    }
    void SetUp() override {
        m_fail = reinterpret_cast<decltype(&FailCall)>(::dlsym(RTLD_DEFAULT, "FailCall"));
        m_left = reinterpret_cast<decltype(&CallsLeft)>(::dlsym(RTLD_DEFAULT, "CallsLeft"));
        ASSERT_TRUE(m_fail != nullptr && m_left != nullptr);
    }

    bool Run(const Place& place, CallFailure failure, int number) {
        m_fail(failure, number);
        try {
            return GetParam().run(place) != 0;
        } catch (const CFileException&) {
            return false;
        }
    }

    decltype(&FailCall) m_fail = nullptr;
    decltype(&CallsLeft) m_left = nullptr;
};

}  // namespace

TEST_P(FailingCalls, LeaveTheOldOrTheNew) {
    const auto& [name, run, state, prepare, mayBePart] = GetParam();
    std::string before;
    std::string after;
    {
        const Place place;
        prepare(place);
        before = state(place);
        ASSERT_TRUE(Run(place, CallFailure::kEio, 0));
        after = state(place);
    }
    for (int failure = 0; failure < 4; ++failure) {
        for (int number = 1, left = 0; left == 0; ++number) {
            SCOPED_TRACE("failure " + std::to_string(failure) + " of call " + std::to_string(number));
            const Place place;
            prepare(place);
            const bool done = Run(place, static_cast<CallFailure>(failure), number);
            left = m_left();
            m_fail(CallFailure::kEio, 0);
            const std::string now = state(place);
            EXPECT_TRUE(now == after || (!done && (mayBePart || now == before))) << done << '\n' << now;
            EXPECT_TRUE(done || left == 0);
            if (left == 0) Tried("failed calls");
            ASSERT_TRUE(left == 0 || number > 1 || failure != 0);  // the walk has met something
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, FailingCalls, testing::ValuesIn(kOperations),
                         [](const auto& operation) { return operation.param.name; });
