#include "qellib10/platform/archive/archive.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "qellib10/platform/storage/mem_file.h"

namespace {

std::vector<BYTE> Stored(const std::function<void(CArchive&)>& write) {
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    write(archive);
    archive.Close();
    return file.Detach();
}

std::vector<BYTE> Bytes(const char* hex) {
    std::vector<BYTE> bytes;
    for (const char* at = hex; *at != '\0'; at += 2) {
        bytes.push_back(static_cast<BYTE>(std::stoi(std::string(at, 2), nullptr, 16)));
        while (at[2] == ' ') ++at;
    }
    return bytes;
}

}  // namespace

TEST(Archive, ScalarsAreTheirBytesLowestFirst) {
    const auto bytes = Stored([](CArchive& archive) {
        archive << BYTE{0xFE} << 'A' << true << WORD{0x0102} << short{-2} << 0x01020304 << UINT{0xFFFFFFFE} << 1.5F
                << 1.5 << LONGLONG{-2} << ULONGLONG{1};
    });
    EXPECT_EQ(bytes, Bytes("FE 41 01 0201 FEFF 04030201 FEFFFFFF 0000C03F 000000000000F83F FEFFFFFFFFFFFFFF "
                           "0100000000000000"));
    CMemFile file;
    file.Attach(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive archive(&file, CArchive::load);
    BYTE byte = 0;
    char character = 0;
    bool yes = false;
    WORD word = 0;
    short brief = 0;
    int number = 0;
    UINT natural = 0;
    float single = 0;
    double real = 0;
    LONGLONG wide = 0;
    ULONGLONG wideNatural = 0;
    archive >> byte >> character >> yes >> word >> brief >> number >> natural >> single >> real >> wide >> wideNatural;
    EXPECT_EQ(byte, 0xFE);
    EXPECT_EQ(character, 'A');
    EXPECT_TRUE(yes);
    EXPECT_EQ(word, 0x0102);
    EXPECT_EQ(brief, -2);
    EXPECT_EQ(number, 0x01020304);
    EXPECT_EQ(natural, 0xFFFFFFFE);
    EXPECT_EQ(single, 1.5F);
    EXPECT_EQ(real, 1.5);
    EXPECT_EQ(wide, -2);
    EXPECT_EQ(wideNatural, 1U);
}
