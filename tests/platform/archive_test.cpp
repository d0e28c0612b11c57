#include "qellib10/platform/archive/archive.h"

#include <algorithm>
#include <functional>
#include <span>

#include "../support/archive_bytes.h"
#include "../support/test.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/mem_file.h"

namespace {

using Bytes = std::string;
using Cause = CArchiveException;

class CReading : public Archived<CReading, CObject> {
public:
    explicit CReading(double volume = 0) : m_dVolume(volume) { ++alive; }
    CReading(const CReading&) = delete;
    CReading& operator=(const CReading&) = delete;
    ~CReading() override { --alive; }
    void Serialize(CArchive& archive) override { Exchange(archive, m_dVolume); }

    static constexpr const char* kName = "Reading";
    static constexpr UINT kSchema = 2;
    static inline int alive = 0;
    double m_dVolume;
};

// One reading in a chain or ring; owns none of the others.
class CLinkedReading : public Archived<CLinkedReading, CReading> {
public:
    void Serialize(CArchive& archive) override {
        CReading::Serialize(archive);
        Exchange(archive, m_pNext);
    }

    static constexpr const char* kName = "Linked";
    static constexpr UINT kSchema = 0;
    CReading* m_pNext = nullptr;
};

class CUnregistered : public Archived<CUnregistered, CReading> {
public:
    static constexpr const char* kName = "Unregistered";
};

CReading* Next(const CReading* reading) { return static_cast<const CLinkedReading*>(reading)->m_pNext; }

const qel::RegisteredClass<CReading> registeredReading;
const qel::RegisteredClass<CLinkedReading> registeredLinked;
const qel::RegisteredClass<CObject> registeredAbstract;

Bytes Hex(const std::string& digits) {  // in pairs, which blanks may part
    Bytes bytes;
    for (std::size_t at = 0; (at = digits.find_first_not_of(' ', at)) < digits.size(); at += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
    return bytes;
}

// What is to be done with an archive.
struct Steps {
    std::function<void(CArchive&)> Serialize;
};

Bytes Written(const std::function<void(CArchive&)>& write) {
    Steps steps{write};
    return Stored(steps);
}

int CauseOf(const std::function<void()>& use) {
    try {
        use();
    } catch (const CArchiveException& exception) {
        return exception.m_cause;
    }
    return Cause::none;
}

// The cause with which reading @p bytes ends.
int CauseOf(const Bytes& bytes, const std::function<void(CArchive&)>& read) {
    Steps steps{read};
    return std::max(0, -Load(steps, bytes));
}

const CReading kVolume(1.5);
const Bytes kNewReading = Hex("FFFF 0200 0700 52656164696E67");
const Bytes kNewLinked = Hex("FFFF 0000 0600 4C696E6B6564");
const Bytes kOneAndAHalf = Hex("000000000000F83F");
const Bytes kZero(8, '\0');

void ReadObject(CArchive& archive) {
    CObject* object = nullptr;
    archive >> object;
    delete object;
}

}  // namespace

TEST(Archive, ScalarsAreTheirBytesLowestFirst) {
    std::tuple written(BYTE{0xFE}, 'A', true, WORD{0x0102}, short{-2}, 0x01020304, UINT{0xFFFFFFFE}, 1.5F, 1.5,
                       LONGLONG{-2}, COleDateTime(2001, 1, 1, 0, 0, 0));
    decltype(written) read;
    const auto each = [](auto& values) {
        return Steps{
            [&](CArchive& archive) { std::apply([&](auto&... value) { Exchange(archive, value...); }, values); }};
    };
    Steps store = each(written), load = each(read);
    const Bytes bytes = Stored(store);
    EXPECT_EQ(bytes, Hex("FE 41 01 0201 FEFF 04030201 FEFFFFFF 0000C03F 000000000000F83F FEFFFFFFFFFFFFFF"
                         "00000000 000000008003E240"));
    EXPECT_EQ(Load(load, bytes), 0);  // none is left
    EXPECT_TRUE(read == written);
}

TEST(Archive, TextsTakeTheShortestLength) {
    for (const auto& [length, prefix] : Cases<int, const char*>{
             {0, "00"},
             {254, "FE"},
             {255, "FFFF00"},
             {65534, "FFFFFFFEFF0000"},
             {65536, "FFFFFF00000100"},
         }) {
        SCOPED_TRACE(length);
        const CString text('x', length);
        const Bytes bytes = Written([&](CArchive& archive) { archive << text; });
        EXPECT_EQ(bytes, Hex(prefix) + Bytes(static_cast<std::size_t>(length), 'x'));
        CString read;
        EXPECT_EQ(CauseOf(bytes, [&](CArchive& archive) { archive >> read; }), Cause::none);
        EXPECT_EQ(read, text);
    }
}

TEST(Archive, ReadsTextsOfOtherWriters) {
    constexpr const char* kKept = "kept";
    for (const auto& [bytes, cause, expected] : Cases<const char*, int, const char*>{
             {"FF0200 4142", Cause::none, "AB"},
             {"FFFFFFFFFFFFFF0200000000000000 4142", Cause::none, "AB"},
             {"FFFEFF 02 41004200", Cause::none, "AB"},
             {"FFFEFF FF0100 B500", Cause::none, "\x83\xCA"},  // UTF-16LE
             {"FFFEFF FFFEFF 02 41004200", Cause::genericException, kKept},
             {"FFFEFF 02 410042", Cause::endOfFile, kKept},
             {"FFFEFF FFFFFFFFFFFFFF 0000000000000080 41", Cause::endOfFile, kKept},
             {"FFFFFFFFFFFFFF FFFFFFFFFFFFFFFF 41", Cause::endOfFile, kKept},
             {"", Cause::endOfFile, kKept},
         }) {
        SCOPED_TRACE(bytes);
        CString text(kKept);
        EXPECT_EQ(CauseOf(Hex(bytes), [&](CArchive& archive) { archive >> text; }), cause);
        EXPECT_EQ(text, expected);
    }
}

TEST(Archive, CountsAreNotBelieved) {
    const auto write = [](CArchive& archive) { archive.WriteCount(0xFFFE), archive.WriteCount(0xFFFF); };
    EXPECT_EQ(Written(write), Hex("FEFF FFFFFFFF0000"));
    for (const auto& [bytes, count, cause] :
         Cases<Bytes, DWORD, int>{{Hex("0200 0000"), 2, Cause::none},
                                  {Hex("FFFF FFFF0000") + Bytes(65535, '\0'), 65535, Cause::none},
                                  {Hex("0300 0000"), 9, Cause::endOfFile},
                                  {Hex("FFFF FFFFFFFF 00"), 9, Cause::endOfFile}}) {
        DWORD read = 9;
        EXPECT_EQ(CauseOf(bytes, [&read](CArchive& archive) { read = archive.ReadCount(); }), cause);
        EXPECT_EQ(read, count);
    }
}

TEST(Archive, ObjectsKeepClassAndIdentityAlsoInARing) {
    CLinkedReading first, second;
    first.m_pNext = &second;
    second.m_pNext = &first;
    const auto form = [](const char* itsClass, const char* itself) {
        return kNewLinked + kZero + Hex(itsClass) + kZero + Hex(itself) + kNewReading + kOneAndAHalf + Hex(itself) +
               Hex("0000");
    };
    const CReading* const none = nullptr;
    EXPECT_EQ(Written([&](CArchive& archive) { archive << &first << &kVolume << &first << none; }),
              form("0180", "0200"));
    const auto read = [](CArchive& archive) {
        CReading *reading, *volume, *again, *null;
        archive >> reading >> volume >> again >> null;  // by way of the base: the class in the archive decides
        EXPECT_EQ(volume->m_dVolume, 1.5);
        EXPECT_EQ(again, reading);
        EXPECT_EQ(null, nullptr);
        ASSERT_TRUE(reading->IsKindOf(CLinkedReading::GetThisClass()));
        EXPECT_EQ(Next(Next(reading)), reading);
        for (const CReading* made : {volume, Next(reading), reading}) delete made;
    };
    // The long form of small numbers is read as well.
    for (const Bytes& bytes : {form("0180", "0200"), form("FF7F01000080", "FF7F02000000")})
        EXPECT_EQ(CauseOf(bytes, read), Cause::none);
}

TEST(Archive, ClassesAreKnownByNameWhileRegistered) {
    EXPECT_EQ(Line({CLinkedReading().IsKindOf(CReading::GetThisClass()), kVolume.IsKindOf(CObject::GetThisClass())}),
              "1 1");
    EXPECT_EQ(Line({kVolume.IsKindOf(CLinkedReading::GetThisClass()), kVolume.IsKindOf(nullptr)}), "0 0");
    EXPECT_EQ(CObject::GetThisClass()->CreateObject(), nullptr);
    EXPECT_EQ(CRuntimeClass::FromName("Unregistered"), nullptr);
    {
        const qel::RegisteredClass<CUnregistered> registered;
        { const qel::RegisteredClass<CUnregistered> twice; }
        EXPECT_EQ(CRuntimeClass::FromName("Unregistered"), CUnregistered::GetThisClass());
    }
    EXPECT_EQ(CRuntimeClass::FromName("Unregistered"), nullptr);
}

TEST(Archive, NumbersFrom7FFFTakeTheLongForm) {
    constexpr std::size_t kObjects = 0x8000;
    const std::vector<CReading> readings(kObjects);
    CLinkedReading last;
    const Bytes bytes = Written([&](CArchive& archive) {
        for (const CReading& reading : readings) archive << &reading;
        archive << &readings[0x7FFC] << &readings[0x7FFD] << &last << &last;
    });
    const Bytes end = Hex("FE7F FF7FFF7F0000") + kNewLinked + kZero + Hex("0000 FF7F03800000");
    ASSERT_GT(bytes.size(), end.size());
    EXPECT_TRUE(std::ranges::equal(std::span(bytes).last(end.size()), end));
}

TEST(Archive, DamagedObjectHeadersEndInTheirCause) {
    const Bytes one = kNewReading + kOneAndAHalf;
    const Cases<const char*, Bytes, int> cases = {
        {"object not given out", Hex("0300"), Cause::badIndex},
        {"object number of a class", Hex("0100"), Cause::badIndex},
        {"class number of an object", Hex("0280"), Cause::badIndex},
        {"class number 0", Hex("0080"), Cause::badIndex},
        {"huge object number", Hex("FF7FFFFFFF7F"), Cause::badIndex},
        {"unknown class", Hex("FFFF 0000 0200 5858"), Cause::badClass},
        {"class name too long", Hex("FFFF 0000 4000") + Bytes(64, 'x'), Cause::badClass},
        {"abstract class", Hex("FFFF 0000 0700 434F626A656374"), Cause::badClass},
        {"other schema", Hex("FFFF 0100 0700 52656164696E67"), Cause::badSchema},
    };
    const int alive = CReading::alive;
    for (const auto& [title, bytes, cause] : cases) {
        const auto read = [](CArchive& archive) { ReadObject(archive), ReadObject(archive); };
        EXPECT_EQ(CauseOf(one + bytes, read), cause) << title;
    }
    CLinkedReading* linked = nullptr;
    EXPECT_EQ(CauseOf(one, [&](CArchive& archive) { archive >> linked; }), Cause::badClass);
    const auto readAgain = [](CArchive& archive) {  // an object that was given up cannot be named
        EXPECT_THROW(ReadObject(archive), CArchiveException);
        ReadObject(archive);
    };
    EXPECT_EQ(CauseOf(kNewLinked + kOneAndAHalf + Hex("0500 0200"), readAgain), Cause::badIndex);
    for (int length = 0; length < static_cast<int>(one.size()); ++length)
        EXPECT_EQ(CauseOf(Bytes(one.begin(), one.begin() + length), ReadObject), Cause::endOfFile);
    EXPECT_EQ(CReading::alive, alive) << "every object made until then is gone again";
}

TEST(Archive, NestingIsLimitedInBothDirections) {
    Bytes bytes = kNewLinked + kZero;
    for (int depth = 1; depth < CArchive::kMaxNesting; ++depth) bytes = bytes + Hex("0180") + kZero;
    const auto read = [](CArchive& archive) {
        CReading* reading = nullptr;
        archive >> reading;
        while (reading != nullptr) delete std::exchange(reading, Next(reading));
    };
    EXPECT_EQ(CauseOf(bytes + Hex("0000"), read), Cause::none);
    EXPECT_EQ(CauseOf(bytes + Hex("0180") + kZero + Hex("0000"), read), Cause::genericException);

    std::vector<CLinkedReading> chain(CArchive::kMaxNesting + 1);
    for (std::size_t i = 1; i < chain.size(); ++i) chain[i - 1].m_pNext = &chain[i];
    EXPECT_THROW(Written([&](CArchive& archive) { archive << &chain[0]; }), CArchiveException);
    EXPECT_EQ(Written([&](CArchive& archive) { archive << &chain[1]; }), bytes + Hex("0000"));
}

TEST(Archive, AClosedOneAndTheWrongDirectionAreRefused) {
    CMemFile file;
    CArchive storing(&file, CArchive::store), loading(&file, CArchive::load);
    const CUnregistered unregistered;
    int number = 7;
    for (const auto& [use, cause] : Cases<std::function<void()>, int>{
             {[&] { storing >> number; }, Cause::writeOnly},
             {[&] { loading << number; }, Cause::readOnly},
             {[&] { storing.BytesLeft(); }, Cause::writeOnly},
             {[&] { loading.Close(), loading.BytesLeft(); }, Cause::genericException},
             {[&] { storing << &unregistered; }, Cause::badClass},
             {[&] { storing.Close(), storing << number; }, Cause::genericException},
             {[] { const CArchive none(nullptr, CArchive::load); }, Cause::genericException}})
        EXPECT_EQ(CauseOf(use), cause);
    EXPECT_EQ(number, 7);
}

TEST(Archive, CloseLeavesTheFileAtTheFirstByteNotConsumed) {
    CMemFile file;
    const Bytes bytes(20000, 1);
    file.Write(bytes.data(), 20000);
    for (const UINT consumed : {0u, 1u, 4095u, 4096u, 4097u, 12000u, 20000u}) {
        file.Seek(0, CFile::begin);
        Bytes read(30000, '\0');
        CArchive archive(&file, CArchive::load);
        EXPECT_EQ(Line({archive.Read(read.data(), consumed / 3), archive.Read(read.data(), consumed - consumed / 3)}),
                  Line({consumed / 3, consumed - consumed / 3}));
        archive.Close();
        archive.Close();
        EXPECT_EQ(file.GetPosition(), consumed);
    }
    file.Seek(5, CFile::begin);
    int number = 0;
    CArchive(&file, CArchive::load) >> number;  // the destructor closes
    EXPECT_EQ(file.GetPosition(), 9u);
}

namespace {

// A line to an instrument: no length, no position, and writing can fail.
class CLineFile : public CMemFile {
public:
    ULONGLONG GetLength() const override { qel::ThrowCode(qel::kGeneralFailure, "line"); }
    UINT Read(void* buffer, UINT count) override {
        largest = std::max(largest, count);
        return CMemFile::Read(buffer, count);
    }
    void Write(const void*, UINT) override { qel::ThrowCode(qel::kDiskFull, "line"); }

    UINT largest = 0;
};

}  // namespace

TEST(Archive, WithoutALengthMemoryGrowsWithWhatArrives) {
    const Bytes bytes = Hex("FFFFFFFFFFFF7F") + Bytes(100000, 'x');
    CLineFile file;
    file.Attach(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    CString text;
    EXPECT_THROW(CArchive(&file, CArchive::load) >> text, CArchiveException);
    EXPECT_LE(file.largest, 64u * 1024);
}

TEST(Archive, TheDestructorReportsLostBytesUnlessAnExceptionIsUnderWay) {
    CLineFile file;
    const auto store = [&] { return CArchive(&file, CArchive::store) << 1, 1; };
    EXPECT_THROW(store(), CFileException);
    EXPECT_EQ(qel::AsResult(store), 0);
    const auto storeAndThrow = [&] {
        CArchive archive(&file, CArchive::store);
        archive << 1;
        throw qel::DataError("first");
    };
    EXPECT_THROW(storeAndThrow(), qel::DataError);
}
