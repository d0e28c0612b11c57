#include "qellib10/base/q_binary.h"

#include <array>
#include <climits>

#include "../support/archive_bytes.h"
#include "../support/test.h"

namespace {

using namespace std::string_literals;

struct Buffer : CQBinary {
    using CQBinary::CQBinary;
    using CQBinary::GetCapacity;
};

std::string Contents(const CQBinary& buffer) {
    return buffer.GetSize() > 0 ? std::string(buffer, static_cast<std::size_t>(buffer.GetSize())) : "";
}

// A file that does not know its length, as a pipe.
class CEndless : public CMemFile {
public:
    ULONGLONG GetLength() const override { throw CFileException(); }
};

}  // namespace

TEST(QBinary, CapacityTakesSteps) {
    Buffer buffer;
    EXPECT_EQ(static_cast<unsigned char*>(buffer), nullptr);
    buffer.AddByte(7);
    for (const auto& [size, capacity] : Cases<int, int>{
             {1024, 1024},
             {1025, 2048},
             {2049, 3072},
             {6144, 7168},
         }) {
        EXPECT_EQ(Line({buffer.Resize(size), buffer.GetCapacity()}), Line({1, capacity})) << size;
        EXPECT_EQ(Contents(buffer), "\7"s.append(static_cast<std::size_t>(size - 1), '\0'));
    }
    buffer.Initialize();
    EXPECT_EQ(Buffer(buffer).GetCapacity(), 7168);
}

// A plain text takes the same steps, with the buffer's own bytes as the source.
TEST(QBinary, OwnBytesStayRightWhileTheBufferMoves) {
    CQBinary buffer("seed", 4);
    std::string model = "seed";
    for (int step = 0; step < 5; ++step) {
        buffer.AddBinary(static_cast<char*>(buffer) + 1, buffer.GetSize() - 1);
        buffer += buffer;
        model += model.substr(1);
        model += std::string(model);
        for (const auto& [at, from, size] : Cases<int, int, int>{
                 {2, 1, 3},
                 {3, 0, 4},
                 {1, 2, 2},
             }) {  // in quarters
            const int quarter = buffer.GetSize() / 4;
            buffer.SetBinary(at * quarter, static_cast<char*>(buffer) + from * quarter, size * quarter);
            model = model.substr(0, at * quarter) + model.substr(from * quarter, size * quarter);
            ASSERT_EQ(Contents(buffer), model) << step;  // the bytes after it are cut
        }
    }
}

TEST(QBinary, RefusesImpossibleSizes) {
    CQBinary buffer("abc", 3);
    const char* const volatile one = "x";  // or the compiler sees through it and warns
    EXPECT_EQ(Line({buffer.SetBinary(nullptr, 3), buffer.SetBinary(one, INT_MIN), buffer.SetBinary(-1, one, 1)}),
              "0 0 0");
    EXPECT_EQ(Line({buffer.SetBinary(INT_MAX, one, 1), buffer.SetBinary(INT_MAX - 1, one, 1), buffer.SetSize(-1)}),
              "0 0 0");
    EXPECT_EQ(Line({buffer.Resize(-1), buffer.Resize(INT_MAX)}), "0 0");
    buffer.AddBinary(one, INT_MAX);
    buffer.AddString(nullptr);
    buffer.DeleteTop(INT_MIN);
    buffer.DebugDump(0);
    EXPECT_EQ(Contents(buffer), "abc");
    buffer.AddBinary(nullptr, 2);
    EXPECT_EQ(Contents(buffer), "abc\0\0"s);
}

TEST(QBinary, ReadsAndComparesWithinItsSize) {
    const CQBinary buffer("abc\0def", 7);
    char target[8] = {};
    for (const int pos : {7, 9, INT_MAX}) EXPECT_EQ(buffer.GetBinary(pos, target, 1), 7 - pos);
    EXPECT_EQ(Line({buffer.GetBinary(INT_MIN, target, INT_MAX), buffer.GetBinary(0, target, -1)}), "0 0");
    EXPECT_EQ(buffer.GetBinary(5, target, INT_MAX), 2);
    EXPECT_EQ(target, "ef"s);
    EXPECT_EQ(Line({buffer.Compare(5, target, 2), buffer.Compare(7, target, 0)}), "1 1");
    EXPECT_EQ(Line({buffer.Compare(4, target, 2), buffer.Compare(6, target, 2), buffer.Compare(8, target, 0)}),
              "0 0 0");
    EXPECT_EQ(Line({buffer.Compare(-1, target, 2), buffer.Compare(9, target, -3), buffer.Compare(7, target, INT_MAX)}),
              "0 0 0");
    EXPECT_EQ(Line({buffer.GetString(1, INT_MAX), buffer.GetString(4, 2), buffer.GetString(7, 1)}), "bc de ");
}

TEST(QBinary, ByteOrderIsPartOfTheValue) {
    CQBinary buffer("abc", 3);
    buffer.SetEndian(1);
    CQBinary copy(buffer);
    EXPECT_EQ(copy.GetEndian(), 1);
    EXPECT_EQ(copy, buffer);
    copy.SetEndian(0);
    EXPECT_FALSE(copy == buffer);
    buffer.Initialize();
    EXPECT_EQ(buffer.GetEndian(), 0);
    copy.AddString("de");
    char target[4] = {};
    EXPECT_EQ(copy.GetBinary(target, 3), 3);
    EXPECT_EQ(Line({Contents(copy), target}), "abcde abc");
    copy.DeleteTop(4);
    EXPECT_TRUE(copy.Resize(5));
    EXPECT_EQ(Contents(copy), "e\0\0\0\0"s);  // zeros after what is left
    EXPECT_TRUE(copy.SetSize(2));
    EXPECT_EQ(Contents(copy), "\0\0"s);
}

TEST(QBinary, DeleteTopResetsCapacityAndByteOrder) {
    Buffer buffer(std::string(3000, 'a').data(), 3000);
    for (const auto& [n, size, capacity, endian] : Cases<int, int, int, int>{
             {1500, 1500, 1500, 0},
             {1499, 1, 1024, 0},
             {2, 0, 1024, 1},
             {0, 0, 1024, 0},
         }) {
        buffer.SetEndian(1);
        buffer.DeleteTop(n);
        EXPECT_EQ(Contents(buffer), std::string(static_cast<std::size_t>(size), 'a'));
        EXPECT_EQ(std::pair(buffer.GetCapacity(), buffer.GetEndian()), std::pair(capacity, endian));
    }
}

TEST(QBinary, NumbersHaveTheByteOrderThatIsSet) {
    for (const auto& [endian, expected] : {
             std::pair{1, "\1\xFE\xD4\4"s},
             {2, "\4\xD4\xFE\1"s},
         }) {
        CQBinary buffer;
        buffer.SetEndian(endian);
        buffer.AddInt(0x01020304);
        buffer.SetShort(1, short{-300});
        for (const int pos : {-1, 4, INT_MIN, INT_MAX}) {
            buffer.SetByte(pos, 1);
            buffer.SetShort(pos == 4 ? 3 : pos, 1);
            buffer.SetInt(pos == 4 ? 1 : pos, 1);
            EXPECT_EQ(Line({buffer.GetByte(pos), buffer.GetShort(pos), buffer.GetInt(pos)}), "0 0 0");
        }
        EXPECT_EQ(Contents(buffer), expected);
        EXPECT_EQ(buffer.GetShort(1), -300);
        EXPECT_EQ(buffer.GetInt(0), 0x01FED404);
    }
}

TEST(QBinary, TheSignIsFirstAndFieldsKeepTheirWidth) {
    CQBinary buffer, doubles;
    for (const auto& [value, width] : Cases<int, int>{
             {-5, 4},
             {12345, 4},
             {-12345, 4},
             {INT_MIN, 13},
             {7, INT_MIN},
             {7, 34},
             {7, INT_MAX},
         })
        buffer.AddStrIntTopSign(value, width);
    EXPECT_EQ(Contents(buffer),
              "- -5 345-345- -2147483648 " + std::string(33, ' ') + "7" + std::string(512, ' ') + "7");
    for (const auto& [value, width] : Cases<double, int>{
             {1.5, 6},
             {-1.5, 7},
             {1234.5, 5},
             {2.5, INT_MAX},
             {-3.0, 0},
             {4e9, 14},
             {75223483557905.375, 18},
         })
        doubles.AddDoubleTopSign(value, width, 2, 0);
    EXPECT_EQ(Contents(doubles), "  1.50- -1.50 4.50           2.50- 4000000000.00 75223483557905.38");
}

TEST(QBinary, ArchivedSizesAreNotBelieved) {
    constexpr int kCut = -CArchiveException::endOfFile;
    CQBinary buffer("abc", 3), large(std::string(200000, 'l').data(), 200000);
    const std::string bytes = Stored(buffer);
    EXPECT_EQ(bytes, "\3\0\0\0abc\0\0\0\0"s);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        CQBinary cut("before", 6);
        EXPECT_EQ(Load(cut, bytes.substr(0, length)), kCut);
        EXPECT_EQ(Contents(cut), length < 4 ? "before" : length < 7 ? "" : "abc");
    }
    large.SetEndian(1);
    for (const auto load : {Load<CMemFile, CQBinary>, Load<CEndless, CQBinary>}) {
        EXPECT_EQ(load(buffer, Stored(large)), 0);
        EXPECT_EQ(buffer, large);
        EXPECT_EQ(load(buffer, "\xFF\xFF\xFF\x7Fxy"), kCut);
        EXPECT_EQ(static_cast<char*>(buffer), nullptr);
        EXPECT_EQ(Line({load(buffer, "\xFE\xFF\xFF\xFF\1\0\0\0"s), buffer.GetSize(), buffer.GetEndian()}), "0 0 1");
    }
}
