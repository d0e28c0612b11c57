// Promises: in the registry, reading and setting a value compared with the same prepared statement run directly on
// SQLite with the same durability. In an INI file of 1,000 lines, reading compared with loading and reading by GLib,
// and setting compared with loading, setting and saving by GLib. The INI file is in memory: on a disk both would mostly
// wait for the disk.
//   RegistryGet <= 1.3 RegistryGetPeer
//   RegistrySet <= 1.2 RegistrySetPeer
//   IniGet >= 50 IniGetPeer
//   IniSet >= 3 IniSetPeer
#include <benchmark/benchmark.h>
#include <glib.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "qellib10/file/private_profile.h"
#include "qellib10/platform/storage/path.h"

namespace {

constexpr const char* kProfile = "HKEY_CURRENT_USER\\Software\\Instruments\\Meter";
constexpr const char* kSection = "Section 12";
constexpr const char* kKey = "Value 34";
constexpr int kSections = 25, kKeys = 39;  // a header and 39 entries each: 1,000 lines

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "profile_bench: %s\n", what);
    std::abort();
}

class Folder {
public:
    explicit Folder(const std::filesystem::path& below) : m_path((below / "profile_bench.XXXXXX").string()) {
        Require(::mkdtemp(m_path.data()) != nullptr, "no temporary folder");
    }
    ~Folder() { std::filesystem::remove_all(m_path); }
    std::string operator/(const char* name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

// What a program would do that has the same tables and calls SQLite itself.
class DirectStore {
public:
    explicit DirectStore(const std::string& path) {
        Require(sqlite3_open_v2(path.c_str(), &m_database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) == 0,
                "no database");
        for (const char* sql :
             {"PRAGMA foreign_keys = ON", "PRAGMA journal_mode = DELETE", "PRAGMA synchronous = EXTRA"})
            Require(sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) == 0, "no settings");
        const std::string chain =
            " FROM reg_key k0 CROSS JOIN reg_key k1 CROSS JOIN reg_key k2 CROSS JOIN reg_key k3 CROSS JOIN reg_key k4"
            " CROSS JOIN reg_value v WHERE k0.id = 1 AND k1.parent = k0.id AND k1.fold = ?1 AND k2.parent = k1.id"
            " AND k2.fold = ?2 AND k3.parent = k2.id AND k3.fold = ?3 AND k4.parent = k3.id AND k4.fold = ?4"
            " AND v.key = k4.id AND v.fold = ?5";
        m_read = Prepared("SELECT v.type, v.data" + chain);
        m_find = Prepared("SELECT v.id" + chain);
        m_write = Prepared("UPDATE reg_value SET type = 1, data = ?2 WHERE id = ?1");
        m_begin = Prepared("BEGIN IMMEDIATE");
        m_commit = Prepared("COMMIT");
    }
    ~DirectStore() {
        for (sqlite3_stmt* statement : {m_read, m_find, m_write, m_begin, m_commit}) sqlite3_finalize(statement);
        sqlite3_close(m_database);
    }

    std::string Get() {
        BindPath(m_read);
        Require(sqlite3_step(m_read) == SQLITE_ROW, "no value");
        const auto* data = static_cast<const char*>(sqlite3_column_blob(m_read, 1));
        std::string text(data, static_cast<std::size_t>(sqlite3_column_bytes(m_read, 1)));
        sqlite3_reset(m_read);
        return text;
    }
    void Set(const std::string& text) {
        Run(m_begin);
        BindPath(m_find);
        Require(sqlite3_step(m_find) == SQLITE_ROW, "no value");
        sqlite3_bind_int64(m_write, 1, sqlite3_column_int64(m_find, 0));
        sqlite3_reset(m_find);
        sqlite3_bind_blob(m_write, 2, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
        Run(m_write);
        Run(m_commit);
    }

private:
    sqlite3_stmt* Prepared(const std::string& sql) {
        sqlite3_stmt* statement = nullptr;
        Require(sqlite3_prepare_v3(m_database, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) == 0,
                "no statement");
        return statement;
    }
    static void BindPath(sqlite3_stmt* statement) {
        int at = 0;
        for (const char* fold : {"software", "instruments", "meter", "section 12", "value 34"})
            sqlite3_bind_text(statement, ++at, fold, -1, SQLITE_STATIC);
    }
    static void Run(sqlite3_stmt* statement) {
        Require(sqlite3_step(statement) == SQLITE_DONE, "no write");
        sqlite3_reset(statement);
    }

    sqlite3* m_database = nullptr;
    sqlite3_stmt *m_read, *m_find, *m_write, *m_begin, *m_commit;
};

CString Numbered(const char* format, int number) {
    CString text;
    text.Format("%s %d", format, number);
    return text;
}

void Fill(CPrivateProfile& profile, int sections, int keys) {
    for (int section = 0; section < sections; ++section) {
        for (int key = 0; key < keys; ++key) {
            profile.Set(Numbered("Section", section), Numbered("Value", key), Numbered("the value of", key));
        }
    }
}

// Another value each time, so that each one must be written.
CString NextText() {
    static int number = 0;
    return Numbered("written", ++number);
}

// On the disk that TMPDIR names.
std::string Database() {
    static const Folder folder(std::filesystem::temp_directory_path());
    ::setenv("QELLIB10_REGISTRY_DIR", (folder / "").c_str(), 1);
    return folder / "current-user.db";
}

std::string IniFile() {
    static const Folder folder("/dev/shm");
    return folder / "meter.ini";
}

CPrivateProfile& Registry() {
    static CPrivateProfile profile = [] {
        Database();
        CPrivateProfile made(kProfile, CPrivateProfile::registryMode);
        made.Set(kSection, kKey, "the value");
        Fill(made, 3, 13);
        return made;
    }();
    return profile;
}

DirectStore& Direct() {
    Registry();
    static DirectStore store(Database());
    return store;
}

CPrivateProfile& Ini() {
    static CPrivateProfile profile = [] {
        CPrivateProfile made(qel::ToLibraryPath(IniFile()), CPrivateProfile::iniMode);
        Fill(made, kSections, kKeys);
        return made;
    }();
    return profile;
}

struct GLibIni {
    GLibIni() : file(g_key_file_new()), path(IniFile()) {
        Ini();
        Require(g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr), "not loaded");
    }
    ~GLibIni() { g_key_file_free(file); }
    std::string Get() const {
        char* text = g_key_file_get_string(file, kSection, kKey, nullptr);
        Require(text != nullptr, "no value");
        std::string copy(text);
        g_free(text);
        return copy;
    }
    void Set(const char* text) const {
        g_key_file_set_string(file, kSection, kKey, text);
        Require(g_key_file_save_to_file(file, path.c_str(), nullptr), "not saved");
    }
    GKeyFile* file;
    std::string path;
};

void RegistryGet(benchmark::State& state) {
    Require(Registry().Get(kSection, kKey, "") == Direct().Get().c_str(), "the values differ");
    for (auto _ : state) benchmark::DoNotOptimize(Registry().Get(kSection, kKey, ""));
}
void RegistryGetPeer(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(Direct().Get());
}
void RegistrySet(benchmark::State& state) {
    for (auto _ : state) Require(Registry().Set(kSection, kKey, NextText()), "not set");
    Require(Registry().Get(kSection, kKey, "") == Direct().Get().c_str(), "the values differ");
}
void RegistrySetPeer(benchmark::State& state) {
    for (auto _ : state) Direct().Set(std::string(NextText().View()));
    Require(Registry().Get(kSection, kKey, "") == Direct().Get().c_str(), "the values differ");
}
void IniGet(benchmark::State& state) {
    Require(Ini().Get(kSection, kKey, "") == GLibIni().Get().c_str(), "the values differ");
    for (auto _ : state) benchmark::DoNotOptimize(Ini().Get(kSection, kKey, ""));
}
void IniGetPeer(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(GLibIni().Get());
}
void IniSet(benchmark::State& state) {
    for (auto _ : state) Require(Ini().Set(kSection, kKey, NextText()), "not set");
    Require(Ini().Get(kSection, kKey, "") == GLibIni().Get().c_str(), "the values differ");
}
void IniSetPeer(benchmark::State& state) {
    for (auto _ : state) GLibIni().Set(NextText());
    Require(Ini().Get(kSection, kKey, "") == GLibIni().Get().c_str(), "the values differ");
}

BENCHMARK(RegistryGet);
BENCHMARK(RegistryGetPeer);
BENCHMARK(RegistrySet)->UseRealTime();
BENCHMARK(RegistrySetPeer)->UseRealTime();
BENCHMARK(IniGet);
BENCHMARK(IniGetPeer);
BENCHMARK(IniSet)->UseRealTime();
BENCHMARK(IniSetPeer)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
