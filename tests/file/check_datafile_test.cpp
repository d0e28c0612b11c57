#include "qellib10/file/check_datafile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "../support/child_process.h"
#include "../support/full_disk.h"
#include "../support/temp_folder.h"
#include "qellib10/file/check_sums.h"

namespace {

std::string Number(DWORD value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> (8 * i));
    return bytes;
}

// Any bytes with a check block that is right about them.
std::string Checked(const std::string& bytes, DWORD trailerLength) {
    qel::CheckSums sums;
    sums.Add({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    return bytes + Number(sums.Crc()) + Number(sums.Sum()) + Number(trailerLength);
}

// What is read and sealed is a.dat.
class Sealed : public testing::Test {
protected:
    template <class Operation> int On(const char* name, Operation&& operation) {
        CQFile file;
        EXPECT_TRUE(file.Open(folder.Path(name), CFile::modeReadWrite));
        return operation(&file);
    }
    int Read(const char* name = "a.dat") {
        return On(name, [&](CQFile* file) { return seal.ReadPackData(file); });
    }
    int Update(int isNew, const char* name = "a.dat") {
        return On(name, [&](CQFile* file) { return seal.PackUpdateData(file, isNew); });
    }

    const std::string guid{"\x04\x03\x02\x01\x06\x05\x08\x07\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10", 16};
    const TempFolder folder;
    CCheckDatafile seal;
};

}  // namespace

TEST_F(Sealed, BytesAreTheDescribedOnes) {
    folder.Write("a.dat", Checked("data" + Number(26) + std::string("a.dat\0", 6) + Number(7) + guid, 38));
    ASSERT_EQ(Read(), 1);
    EXPECT_EQ(seal.GetFilename(), "a.dat");
    EXPECT_EQ(seal.GetVersion(), 7);
    EXPECT_EQ(seal.GetGUID().GetString(), "{01020304-0506-0708-090A-0B0C0D0E0F10}");
    folder.Write("b.dat", "");
    ASSERT_EQ(Update(1, "b.dat"), 1);
    EXPECT_EQ(folder.Read("b.dat"), Checked(Number(26) + std::string("b.dat\0", 6) + Number(8) + guid, 38));
}

TEST_F(Sealed, KeepsItsIdentityAndIsBoundToItsName) {
    folder.Write("a.dat", "data");
    EXPECT_EQ(Update(0), 0) << "not sealed yet";
    ASSERT_EQ(On("a.dat", CCheckDatafile::PackNewData) + Read(), 2);
    EXPECT_EQ(Update(1), 0) << "sealed already";
    const CCheckDatafile first = seal;
    EXPECT_EQ(Update(0) + Read(), 2);
    EXPECT_EQ(seal.GetVersion(), 2);
    EXPECT_EQ(seal.GetGUID(), first.GetGUID());
    EXPECT_TRUE(seal != first);

    std::filesystem::rename(folder.Posix("a.dat"), folder.Posix("A.dat"));
    EXPECT_EQ(Read("A.dat") + Update(0, "A.dat"), 0);
    CCheckDatafile other = seal;
    other.EnableCheckFilename(0);
    EXPECT_EQ(On("A.dat", [&](CQFile* file) { return other.PackUpdateData(file, 0); }), 1);
    EXPECT_EQ(Read("A.dat"), 1);
    std::filesystem::rename(folder.Posix("A.dat"), folder.Posix("b"));
    EXPECT_EQ(On("b", [&](CQFile* file) { return other.PackUpdateData(file, 0); }), 1);
    EXPECT_EQ(On("b", CCheckDatafile::IsPackData), 0) << "the longer old trailer is not cut";
}

TEST_F(Sealed, ComparesNamesByItsOwnFlagOnly) {
    const CCheckDatafile other;
    folder.Write("a.dat", Checked(Number(26) + std::string("a.dat\0", 6) + Number(0) + std::string(16, '\0'), 38));
    ASSERT_EQ(Read(), 1);
    EXPECT_TRUE(seal != other);
    seal.EnableCheckFilename(0);
    EXPECT_TRUE(seal == other && other != seal);
}

TEST_F(Sealed, DamageAndForgedLengthsAreFound) {
    const std::string record = Number(26) + std::string("a.dat\0", 6) + Number(0x7FFFFFFF) + guid;
    const std::string whole = Checked(record, 38);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string damaged = whole;
        damaged[i] = static_cast<char>(damaged[i] ^ (1 << (i % 8)));
        for (const std::string& bytes : {damaged, whole.substr(0, i)}) {
            folder.Write("a.dat", bytes);
            EXPECT_EQ(On("a.dat", CCheckDatafile::IsPackData), 0) << i;
        }
    }
    // Right checksums around: no room for a name, a GUID that is too short, no end of the name, lengths that wrap or
    // lead before the file's begin.
    for (const std::string& bytes :
         {Checked(Number(0), 12), Checked(Number(25) + record.substr(4, 25), 37),
          Checked(Number(600) + std::string(600, 'a'), 612), Checked(Number(0xFFFFFFF4) + record, 0),
          Checked(record, 0xFFFFFFFF), Checked(record, 0xFFFFFFFC), Checked(record, 39), Checked("", 8)}) {
        folder.Write("a.dat", bytes);
        EXPECT_EQ(Read(), 0) << bytes.size();
    }
    folder.Write("a.dat", whole);
    EXPECT_EQ(Update(0), 1);
    EXPECT_EQ(seal.GetVersion(), INT32_MIN) << "behind the highest version";
}

TEST_F(Sealed, AFileThatCannotBeSealedStaysAsItWas) {
    folder.Write("a.dat", std::string(100, 'x'));
    const auto sealOnFullDisk = [&] {
        FillDiskAt(135);  // the record fits, the check block does not
        return On("a.dat", CCheckDatafile::PackNewData) + Update(1) + seal.GetVersion();
    };
    EXPECT_EQ(InChild(sealOnFullDisk), 0);
    EXPECT_EQ(folder.Read("a.dat"), std::string(100, 'x'));
}
