#include "qellib10/file/check_datafile.h"

#include <atomic>
#include <random>

#include "../support/full_disk.h"
#include "../support/shared_state.h"
#include "../support/test.h"
#include "qellib10/file/check_sums.h"
#include "qellib10/platform/endian.h"

namespace {

std::string Number(DWORD value) {
    const auto bytes = qel::ToLittleEndian(value);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

const std::string kGuid("\x04\x03\x02\x01\x06\x05\x08\x07\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10", 16);

std::string Record(DWORD version, const std::string& name) {
    return Number(static_cast<DWORD>(name.size() + 21)) + name + '\0' + Number(version) + kGuid;
}

// Any bytes with a check block that is right about them.
std::string Checked(const std::string& bytes, DWORD trailerLength) {
    qel::CheckSums sums;
    sums.Add({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    return bytes + Number(sums.Crc()) + Number(sums.Sum()) + Number(trailerLength);
}

class Sealed : public testing::Test {
protected:
    template <class Operation> int On(const char* name, Operation&& operation) {
        CQFile file;
        EXPECT_TRUE(file.Open(folder.Path(name), CFile::modeReadWrite));
        return operation(&file);
    }
    int Read(CCheckDatafile& by, const char* name = "a.dat") {
        return On(name, [&](CQFile* file) { return by.ReadPackData(file); });
    }
    int Update(int isNew, const char* name = "a.dat") {
        return On(name, [&](CQFile* file) { return seal.PackUpdateData(file, isNew); });
    }

    const TempFolder folder;
    CCheckDatafile seal, other;
};

}  // namespace

TEST_F(Sealed, BytesAreTheDescribedOnes) {
    folder.Write("a.dat", Checked("data" + Record(7, "a.dat"), 38));
    ASSERT_EQ(Read(seal), 1);
    EXPECT_EQ(Line({seal.GetFilename(), seal.GetVersion()}), "a.dat 7");
    EXPECT_EQ(seal.GetGUID().GetString(), "{01020304-0506-0708-090A-0B0C0D0E0F10}");
    folder.Write("b", "");
    ASSERT_EQ(Update(1, "b"), 1);
    EXPECT_EQ(folder.Read("b"), Checked(Record(8, "b"), 34));
    // Only the name differs now, and the left one's flag counts.
    folder.Write("a.dat", Checked(Record(8, "a.dat"), 38));
    ASSERT_EQ(Read(other), 1);
    other.EnableCheckFilename(0);
    EXPECT_NE(seal, other);
    EXPECT_EQ(other, seal);
}

TEST_F(Sealed, KeepsItsIdentityAndIsBoundToItsName) {
    folder.Write("a.dat", "data");
    EXPECT_EQ(Update(0), 0) << "not sealed yet";
    ASSERT_EQ(Line({On("a.dat", CCheckDatafile::PackNewData), Read(seal), Read(other)}), "1 1 1");
    EXPECT_EQ(Update(1), 0) << "sealed already";
    EXPECT_EQ(Line({Update(0), Read(seal)}), "1 1");
    EXPECT_EQ(Line({seal.GetVersion(), other.GetVersion()}), "2 1");
    EXPECT_EQ(seal.GetGUID(), other.GetGUID());
    EXPECT_TRUE(seal != other);

    std::filesystem::rename(folder.Posix("a.dat"), folder.Posix("A.dat"));
    EXPECT_EQ(Line({Read(seal, "A.dat"), Update(0, "A.dat")}), "0 0");
    seal.EnableCheckFilename(0);
    EXPECT_EQ(Line({Update(0, "A.dat"), Read(other, "A.dat")}), "1 1");
    std::filesystem::rename(folder.Posix("A.dat"), folder.Posix("b"));
    EXPECT_EQ(Update(0, "b"), 1);
    EXPECT_EQ(On("b", CCheckDatafile::IsPackData), 0) << "the longer old trailer is not cut";
}

TEST_F(Sealed, DamageAndForgedLengthsAreFound) {
    const std::string record = Record(0x7FFFFFFF, "a.dat"), whole = Checked(record, 38);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string damaged = whole;
        damaged[i] = static_cast<char>(damaged[i] ^ (1 << (i % 8)));
        for (const std::string& bytes : {damaged, whole.substr(0, i)}) {
            folder.Write("a.dat", bytes);
            EXPECT_EQ(On("a.dat", CCheckDatafile::IsPackData), 0) << i;
        }
    }
    // Right checksums around what is wrong.
    for (const auto& [what, bytes] : Cases<const char*, std::string>{
             {"no room for a name", Checked(Number(0), 12)},
             {"a GUID that is too short", Checked(Number(25) + record.substr(4, 25), 37)},
             {"no end of the name", Checked(Number(600) + std::string(600, 'a'), 612)},
             {"a length of the record that wraps", Checked(Number(0xFFFFFFF4) + record, 0)},
             {"the longest trailer", Checked(record, 0xFFFFFFFF)},
             {"a length of the trailer that wraps", Checked(record, 0xFFFFFFFC)},
             {"a trailer from before the start", Checked(record, 39)},
             {"a trailer without a record", Checked("", 8)},
         }) {
        folder.Write("a.dat", bytes);
        EXPECT_EQ(Read(seal), 0) << what;
    }
    folder.Write("a.dat", whole);
    EXPECT_EQ(Update(0), 1);
    EXPECT_EQ(seal.GetVersion(), INT32_MIN) << "after the highest version";
}

TEST_F(Sealed, AFileThatCannotBeSealedStaysAsItWas) {
    folder.Write("a.dat", std::string(100, 'x'));
    const auto sealOnFullDisk = [&] {
        EXPECT_EQ(Line({On("a.dat", CCheckDatafile::PackNewData), Update(1), seal.GetVersion()}), "0 0 0");
        return testing::Test::HasFailure() ? 1 : 0;
    };
    EXPECT_EQ(OnFullDisk(135, sealOnFullDisk), 0);  // the record fits, the check block does not
    EXPECT_EQ(folder.Read("a.dat"), std::string(100, 'x'));
}

TEST_F(Sealed, AKillWhileItIsSealedAgainCostsNoSeal) {
    folder.Write("a.dat", std::string(1 << 20, 'x'));
    ASSERT_EQ(Update(1), 1);
    const CGuid guid = seal.GetGUID();
    auto& sealed = SharedWithChildren<std::atomic<int>>();
    sealed = 1;
    std::minstd_rand random(SoakSeed());
    for (int kills = SoakCount(40); kills > 0; --kills) {
        ChildProcess child([&] {
            while (Update(0) != 0) sealed = seal.GetVersion();
            return 0;
        });
        ::usleep(static_cast<useconds_t>(random() % 8000));
        child.Kill();
        ASSERT_EQ(Read(seal), 1);
        EXPECT_EQ(seal.GetGUID(), guid);
        EXPECT_GE(seal.GetVersion(), sealed);
    }
    EXPECT_GT(seal.GetVersion(), 1) << "they were killed at work";
}
