#include "qellib10/secure/history_cabinet_file.h"

#include <algorithm>
#include <chrono>

#include "../support/child_process.h"
#include "../support/test.h"
#include "cabinet_folder.h"
#include "qellib10/platform/storage/file_operations.h"
#include "qellib10/secure/cabinet_reader.h"
#include "qellib10/secure/history_cabinet_format.h"

namespace {

using History = CabinetFolder;
namespace fs = std::filesystem;

template <class Header> std::string Bytes(const Header& header) {
    const auto bytes = qel::Pack(header);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string Header(DWORD latestOffset, DWORD count, const GUID& guid = {}) {
    qel::CabinetHeader header;
    header.magic = qel::kCabinetMagic;
    header.latestOffset = latestOffset;
    header.versionCount = count;
    header.guid = guid;
    const qel::CheckSums sums = qel::CheckSumsOf(header);
    header.sum = sums.Sum();
    header.crc = sums.Crc();
    return Bytes(header);
}

// Sum and CRC are those of the text "x".
std::string Versioned(DWORD version, DWORD size, const std::string& data = "x") {
    qel::CheckSums sums;
    sums.Add({reinterpret_cast<const unsigned char*>("x"), 1});
    return Bytes(_CAB_VERSIONHEADER{qel::kVersionMagic, version, size, sums.Sum(), sums.Crc()}) + data;
}

}  // namespace

TEST_F(History, KeepsEveryVersion) {
    CHistoryCabinetFile cabinet;
    const CString deep = folder.Path("new") + "\\folder\\c";
    EXPECT_EQ(Line({Register(cabinet, "a"), cabinet.Open(deep, 0), cabinet.GetLatestVersionFile(folder.Path("t"))}),
              "0 0 0");
    ASSERT_EQ(cabinet.Create(deep), 1);
    EXPECT_EQ(fs::file_size(folder.Posix("new/folder/c")), 0u);
    EXPECT_EQ(cabinet.GetLatestVersionFile(folder.Path("t")), 0);
    ASSERT_EQ(Register(cabinet, "0123456789"), 1);
    EXPECT_EQ(fs::file_size(folder.Posix("new/folder/c")), 36u + 20 + 10);
    CHistoryCabinetFile copy = cabinet;
    ASSERT_EQ(Register(cabinet, "second"), 1);
    ASSERT_EQ(Register(copy, std::string(600'000, 'c')), 1) << "behind that of the other";
    EXPECT_EQ(Backups(), 0);
    const CGuid guid = cabinet.GetGUID();
    EXPECT_EQ(Line({cabinet.Close(), cabinet.Close()}), "1 1");
    EXPECT_EQ(Version(copy), "none") << "closed by the other";

    CHistoryCabinetFile reader, writer;
    ASSERT_EQ(Line({cabinet.Open(deep, 1), reader.Open(deep, 1)}), "1 1");
    EXPECT_EQ(Line({writer.Open(deep, 0), Register(cabinet, "read only"), Backups(), cabinet.GetVersionFile(1, deep)}),
              "0 0 0 0");
    EXPECT_EQ(cabinet.GetGUID(), guid);
    EXPECT_EQ(Line({Version(cabinet, 1), Version(cabinet, 2)}), "0123456789 second");
    EXPECT_EQ(Version(cabinet), std::string(600'000, 'c'));
    EXPECT_EQ(Line({cabinet.GetVersionFile(0, folder.Path("t")), cabinet.GetVersionFile(4, folder.Path("t"))}), "0 0");
    EXPECT_FALSE(folder.Has("t"));
    cabinet.Initialize();
    EXPECT_EQ(Line({cabinet.GetLatestVersion(), cabinet.GetGUID() == guid}), "0 0");
}

// Three versions, written once and read by every later release: "first", nothing, and 300 bytes. A cut registration
// left something after them.
TEST_F(History, KeptCabinetIsReadAndItsTailCut) {
    fs::copy_file(QELLIB10_TEST_DATA "/history.hcf", folder.Posix("cabinet"));
    const auto size = fs::file_size(folder.Posix("cabinet"));
    fs::resize_file(folder.Posix("cabinet"), size + 1000);
    CHistoryCabinetFile cabinet;
    ASSERT_EQ(Line({cabinet.Create(folder.Path("other")), Register(cabinet, "a"), Register(cabinet, "b")}), "1 1 1");
    EXPECT_EQ(Version(cabinet, 2), "b");
    ASSERT_EQ(cabinet.Open(path, 0), 1);
    EXPECT_EQ(cabinet.GetGUID().GetString(), "{B1D9A6A0-54D4-47F5-9D1A-3C1E9E1F6D20}");
    ASSERT_EQ(cabinet.GetLatestVersion(), 3u);
    EXPECT_EQ(Version(cabinet, 2), "");
    EXPECT_EQ(Version(cabinet, 1), "first");
    EXPECT_EQ(Version(cabinet), std::string(300, '\xFF'));
    EXPECT_EQ(Register(cabinet, "next"), 1);
    EXPECT_EQ(Version(cabinet, 4), "next");
    EXPECT_EQ(fs::file_size(folder.Posix("cabinet")), size + 20 + 4);
    fs::resize_file(folder.Posix("cabinet"), size + 20 + 2);
    EXPECT_EQ(Version(cabinet), "none");
    EXPECT_EQ(folder.Read("target"), "ne") << "what is left of it";
}

TEST_F(History, DamageIsFound) {
    const std::string whole = Header(57, 2) + Versioned(1, 1) + Versioned(2, 1);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string damaged = whole;
        damaged[i] = static_cast<char>(damaged[i] ^ (1 << (i % 8)));
        for (const std::string& bytes : {damaged, whole.substr(0, i)}) {
            folder.Write("cabinet", bytes);
            CHistoryCabinetFile cabinet;
            EXPECT_EQ(cabinet.Open(path, 0), i >= 36) << i;
            EXPECT_TRUE(Version(cabinet, 1) == "none" || Version(cabinet, 2) == "none") << i;
            EXPECT_TRUE(i >= 36 || Register(cabinet, "y") == 0) << i;
        }
    }
}

TEST_F(History, ForgedHeadersEndIn0) {
    constexpr DWORD k4GiB = 0xFFFFFFFF;
    constexpr GUID kLikeAVersion = {0x31485643, 1, 0, {}};  // "CVH1", version 1, no data
    const std::string one = Versioned(1, 1);
    struct Case {
        const char* name;
        std::string bytes;
        DWORD version;  // that cannot be taken out
        const char* latest = "none";
        int registered = 0;
    };
    for (const Case& c : {
             Case{"size beyond the end", Header(36, 1) + Versioned(1, k4GiB), 1},
             Case{"size one too large", Header(57, 2) + one + Versioned(2, 2), 2},
             Case{"version 0", Header(36, 1) + Versioned(0, 1), 1},
             Case{"version above the count", Header(57, 2) + Versioned(3, 1) + Versioned(2, 1), 2, "x", 1},
             Case{"same version for ever", Header(36, 2) + one + one + one, 2},
             Case{"no such version", Header(k4GiB, k4GiB) + one, k4GiB},
             Case{"highest count", Header(57, k4GiB) + one + Versioned(k4GiB, 1), 2, "x"},
             Case{"latest within the header", Header(12, 1, kLikeAVersion) + one, 2},
             Case{"latest within a version", Header(37, 1) + one, 2},
             Case{"latest is another one", Header(36, 2) + one + Versioned(2, 1), 3},
             Case{"no header of a version", Header(36, 1) + std::string(21, 'x'), 1},
             Case{"a size that wraps", Header(57, 2) + Versioned(1, k4GiB - 56) + Versioned(2, 1), 2, "x", 1},
         }) {
        SCOPED_TRACE(c.name);
        folder.Write("cabinet", c.bytes);
        CHistoryCabinetFile cabinet;
        ASSERT_EQ(cabinet.Open(path, 0), 1);
        EXPECT_EQ(Version(cabinet, c.version), "none");
        EXPECT_EQ(Version(cabinet), c.latest);
        EXPECT_LE(folder.Read("target").size(), 1u);
        EXPECT_EQ(Register(cabinet, "y"), c.registered);
        EXPECT_TRUE(c.registered != 0 || folder.Read("cabinet") == c.bytes);
    }
}

TEST_F(History, EndsBelow4GiB) {
    constexpr DWORD kRoomFor2Bytes = 0xFFFFFFFF - 36 - 20 - 20 - 2;
    folder.Write("cabinet", Header(36, 1) + Versioned(1, kRoomFor2Bytes, ""));
    fs::resize_file(folder.Posix("cabinet"), 36 + 20 + std::uint64_t{kRoomFor2Bytes});  // a hole
    CHistoryCabinetFile full, empty;
    EXPECT_EQ(Line({full.Open(path, 0), Register(full, "abc")}), "1 0");
    fs::resize_file(folder.Posix("source"), std::uint64_t{1} << 32);
    EXPECT_EQ(Line({empty.Create(folder.Path("e")), empty.RegistNewVersion(folder.Path("source"))}), "1 0");
    EXPECT_EQ(fs::file_size(folder.Posix("cabinet")) + fs::file_size(folder.Posix("e")) + 22, 0xFFFFFFFF);
}

// A cabinet that is listed from the first version to the last, as programs do that show a history.
TEST_F(History, AnyOfVeryManyVersionsIsFoundQuickly) {
    constexpr DWORD kCount = 300'000, kSome = 200;
    std::string bytes = Header(36 + (kCount - 1) * 21, kCount);
    for (DWORD version = 1; version <= kCount; ++version) bytes += Versioned(version, 1);
    folder.Write("cabinet", bytes);
    CHistoryCabinetFile cabinet;
    ASSERT_EQ(cabinet.Open(path, 1), 1);
    const auto take = [&](DWORD first, DWORD step) {
        const auto start = std::chrono::steady_clock::now();
        for (DWORD i = 0; i < kSome; ++i) EXPECT_EQ(Version(cabinet, first + i * step), "x") << first + i * step;
        return std::chrono::steady_clock::now() - start;
    };
    const auto near = take(1, 1);
    take(kCount, 0);  // finds them all once
    EXPECT_LT(take(kCount - kSome, 1), 20 * near);
    EXPECT_LT(take(7, 1499), 20 * near);
    EXPECT_LT(take(kCount, static_cast<DWORD>(-1499)), 20 * near);
    folder.Write("cabinet", bytes.substr(0, 36) + Versioned(2, 1) + bytes.substr(57));
    ASSERT_EQ(cabinet.Open(path, 1), 1);
    EXPECT_EQ(Line({Version(cabinet, 1), Version(cabinet, kCount)}), "none x");
}

// A version's length is its number. Copies are made while registrations are under way; one may get half of a header,
// and is refused.
TEST_F(History, OthersSeeWholeVersionsOrNone) {
    const auto content = [](DWORD n) { return std::string(n % 100, 'x'); };
    CHistoryCabinetFile cabinet;
    ASSERT_EQ(Line({cabinet.Create(path), Register(cabinet, content(1))}), "1 1");
    ChildProcess writer([&] {
        for (DWORD n = 2; Register(cabinet, content(n)) != 0; ++n) {
        }
        return 0;
    });
    DWORD whole = 0;
    const int copies = SoakCount(200);
    Tried("copies", copies);
    for (int i = 0; i < copies || (whole < 20 && i < 100'000); ++i) {
        CHistoryCabinetFile seen;
        EXPECT_EQ(seen.Open(path, 1), 0) << "open for writing";
        qel::CopyFile(path.View(), folder.Path("copy").View(), false);
        if (!seen.Open(folder.Path("copy"), 1)) continue;
        const DWORD count = seen.GetLatestVersion();
        for (DWORD n = count - std::min(count - 1, DWORD{2}); n <= count; ++n) {
            const std::string data = Version(seen, n);
            EXPECT_TRUE(data == "none" || data == content(n)) << n;
            if (data != "none") whole = n;
        }
    }
    EXPECT_GE(whole, 20u);
}

TEST(CabinetFileKind, IsKnownByTheFirstBytesAlsoWithADamagedHeader) {
    using enum qel::CabinetFileKind;
    const std::string header(36, 'x'), tag("\x10HistoryRenewInfo\x04", 18);
    for (const auto& [start, kind] : Cases<std::string, qel::CabinetFileKind>{
             {"HCF1", kCabinet},
             {"HCF", kOther},
             {header + "CVH1", kCabinet},
             {header + "CVH", kOther},
             {"x" + header + "CVH1", kOther},
             {tag + "1.00", kRenewals},
             {tag + "1.0", kOther},
         }) {
        EXPECT_EQ(qel::KindOfCabinetFile(start), kind) << start;
    }
    for (const auto& [rest, isCut] : Cases<std::string, bool>{
             {"", true}, {"CV", true}, {"CVH1", true}, {std::string(4, '\0'), true}, {"CVH2", false}, {"x", false}})
        EXPECT_EQ(qel::MayBeCutVersion(rest), isCut) << rest;
}
