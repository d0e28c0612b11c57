#include "qellib10/platform/archive/archive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "../support/cases.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/storage/mem_file.h"

namespace {

using Bytes = std::vector<BYTE>;

class CReading : public CObject {
public:
    explicit CReading(double volume = 0) : m_dVolume(volume) { ++alive; }
    CReading(const CReading&) = delete;
    CReading& operator=(const CReading&) = delete;
    ~CReading() override { --alive; }

    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    void Serialize(CArchive& archive) override {
        if (archive.IsStoring()) {
            archive << m_dVolume;
        } else {
            archive >> m_dVolume;
        }
    }

    static inline int alive = 0;
    double m_dVolume;
};

// One reading in a chain or ring; owns none of the others.
class CLinkedReading : public CReading {
public:
    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    void Serialize(CArchive& archive) override {
        CReading::Serialize(archive);
        if (archive.IsStoring()) {
            archive << m_pNext;
        } else {
            archive >> m_pNext;
        }
    }

    CReading* m_pNext = nullptr;
};

class CUnregistered : public CReading {
public:
    static const CRuntimeClass* GetThisClass();
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
};

class CAbstractReading : public CReading {
public:
    static const CRuntimeClass* GetThisClass();
    virtual int Kind() const = 0;
};

const CRuntimeClass* CReading::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CReading, CObject>("Reading", 2);
    return &theClass;
}

const CRuntimeClass* CLinkedReading::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CLinkedReading, CReading>("Linked");
    return &theClass;
}

const CRuntimeClass* CUnregistered::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CUnregistered, CReading>("Unregistered");
    return &theClass;
}

const CRuntimeClass* CAbstractReading::GetThisClass() {
    static const CRuntimeClass theClass = qel::DescribeClass<CAbstractReading, CReading>("Abstract");
    return &theClass;
}

const qel::RegisteredClass<CReading> registeredReading;
const qel::RegisteredClass<CLinkedReading> registeredLinked;
const qel::RegisteredClass<CAbstractReading> registeredAbstract;

Bytes Hex(const std::string& digits) {
    Bytes bytes;
    std::string pair;
    for (const char digit : digits) {
        if (digit != ' ') pair += digit;
        if (pair.size() < 2) continue;
        bytes.push_back(static_cast<BYTE>(std::stoi(pair, nullptr, 16)));
        pair.clear();
    }
    return bytes;
}

Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Bytes Stored(const std::function<void(CArchive&)>& write) {
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    write(archive);
    archive.Close();
    return file.Detach();
}

int CauseOf(const std::function<void()>& use) {
    try {
        use();
    } catch (const CArchiveException& exception) {
        return exception.m_cause;
    }
    return CArchiveException::none;
}

// The cause with which reading @p bytes ends.
int CauseOf(const Bytes& bytes, const std::function<void(CArchive&)>& read) {
    CMemFile file;
    file.Attach(bytes.data(), static_cast<UINT>(bytes.size()));
    return CauseOf([&] {
        CArchive archive(&file, CArchive::load);
        read(archive);
    });
}

const CReading kVolume(1.5);
const Bytes kNewReading = Hex("FFFF 0200 0700 52656164696E67");
const Bytes kNewLinked = Hex("FFFF 0000 0600 4C696E6B6564");
const Bytes kOneAndAHalf = Hex("000000000000F83F");
const Bytes kZero(8);

void ReadText(CArchive& archive) {
    CString text;
    archive >> text;
}

void ReadReading(CArchive& archive) {
    CReading* reading = nullptr;
    archive >> reading;
    delete reading;
}

}  // namespace

TEST(Archive, ScalarsAreTheirBytesLowestFirst) {
    const Bytes bytes = Stored([](CArchive& archive) {
        archive << BYTE{0xFE} << 'A' << true << WORD{0x0102} << short{-2} << 0x01020304 << UINT{0xFFFFFFFE} << 1.5F
                << 1.5 << LONGLONG{-2} << COleDateTime(2001, 1, 1, 0, 0, 0);
    });
    EXPECT_EQ(bytes, Hex("FE 41 01 0201 FEFF 04030201 FEFFFFFF 0000C03F 000000000000F83F FEFFFFFFFFFFFFFF"
                         "00000000 000000008003E240"));
    const auto read = [](CArchive& archive) {
        const auto next = [&](auto expected) {
            decltype(expected) value = {};
            archive >> value;
            return value == expected;
        };
        EXPECT_TRUE(next(BYTE{0xFE}) && next('A') && next(true) && next(WORD{0x0102}) && next(short{-2}));
        EXPECT_TRUE(next(0x01020304) && next(UINT{0xFFFFFFFE}) && next(1.5F) && next(1.5) && next(LONGLONG{-2}));
        EXPECT_TRUE(next(COleDateTime(2001, 1, 1, 0, 0, 0)));
        BYTE behind = 0;
        EXPECT_EQ(archive.Read(&behind, 1), 0u);
    };
    EXPECT_EQ(CauseOf(bytes, read), CArchiveException::none);
}

TEST(Archive, TextsTakeTheShortestLength) {
    // clang-format off
    const Cases<int, const char*> cases = {
        {0, "00"}, {4, "04"}, {254, "FE"}, {255, "FFFF00"}, {65533, "FFFDFF"}, {65534, "FFFFFFFEFF0000"},
        {65536, "FFFFFF00000100"}, {200000, "FFFFFF400D0300"}};
    // clang-format on
    for (const auto& [length, prefix] : cases) {
        SCOPED_TRACE(length);
        const CString text('x', length);
        const Bytes bytes = Stored([&](CArchive& archive) { archive << text; });
        EXPECT_EQ(bytes, Hex(prefix) + Bytes(static_cast<std::size_t>(length), 'x'));
        CString read;
        EXPECT_EQ(CauseOf(bytes, [&](CArchive& archive) { archive >> read; }), CArchiveException::none);
        EXPECT_EQ(read, text);
    }
}

TEST(Archive, ReadsTextsOfOtherWriters) {
    constexpr const char* kKept = "kept";
    const Cases<const char*, int, const char*> cases = {
        {"FF0200 4142", CArchiveException::none, "AB"},  // longer forms than needed
        {"FFFFFF02000000 4142", CArchiveException::none, "AB"},
        {"FFFFFFFFFFFFFF0200000000000000 4142", CArchiveException::none, "AB"},
        {"FFFEFF 02 41004200", CArchiveException::none, "AB"},  // UTF-16LE
        {"FFFEFF FF0100 B500", CArchiveException::none, "\x83\xCA"},
        {"FFFEFF FFFEFF 02 41004200", CArchiveException::genericException, kKept},
        {"FFFEFF 02 410042", CArchiveException::endOfFile, kKept},
        {"FFFEFF FFFFFFFFFFFFFF 0000000000000080 41", CArchiveException::endOfFile, kKept},
        {"FFFFFFFEFFFFFF 4142", CArchiveException::endOfFile, kKept},
        {"FFFFFFFFFFFFFF FFFFFFFFFFFFFFFF 41", CArchiveException::endOfFile, kKept},
        {"03 4142", CArchiveException::endOfFile, kKept},
        {"", CArchiveException::endOfFile, kKept}};
    for (const auto& [bytes, cause, expected] : cases) {
        SCOPED_TRACE(bytes);
        CString text(kKept);
        EXPECT_EQ(CauseOf(Hex(bytes), [&](CArchive& archive) { archive >> text; }), cause);
        EXPECT_EQ(text, expected);
    }
}

TEST(Archive, CountsAreNotBelieved) {
    EXPECT_EQ(Stored([](CArchive& archive) {
                  archive.WriteCount(0xFFFE);
                  archive.WriteCount(0xFFFF);
              }),
              Hex("FEFF FFFFFFFF0000"));
    DWORD count = 0;
    const auto read = [&](CArchive& archive) { count = archive.ReadCount(); };
    EXPECT_EQ(CauseOf(Hex("0200 0000"), read), CArchiveException::none);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(CauseOf(Hex("FFFF FFFF0000") + Bytes(65535), read), CArchiveException::none);
    EXPECT_EQ(count, 65535u);
    EXPECT_EQ(CauseOf(Hex("0300 0000"), read), CArchiveException::endOfFile);
    EXPECT_EQ(CauseOf(Hex("FFFF FFFFFFFF 00"), read), CArchiveException::endOfFile);
}

TEST(Archive, ObjectsKeepClassAndIdentity) {
    const CReading other(0);
    const Bytes bytes = Stored([&](CArchive& archive) {
        const CReading* const none = nullptr;
        archive << &kVolume << &other << &kVolume << none;
    });
    EXPECT_EQ(bytes, kNewReading + kOneAndAHalf + Hex("0180") + kZero + Hex("0200 0000"));
    const auto read = [](CArchive& archive) {
        CReading *first, *second, *again, *none = nullptr;
        archive >> first >> second >> again >> none;
        EXPECT_EQ(first->m_dVolume, 1.5);
        EXPECT_EQ(second->m_dVolume, 0);
        EXPECT_EQ(again, first);
        EXPECT_EQ(none, nullptr);
        delete first;
        delete second;
    };
    EXPECT_EQ(CauseOf(bytes, read), CArchiveException::none);
    // The long form of small numbers is read as well.
    const Bytes big = kNewReading + kOneAndAHalf + Hex("FF7F01000080") + kZero + Hex("FF7F02000000 0000");
    EXPECT_EQ(CauseOf(big, read), CArchiveException::none);
}

TEST(Archive, ObjectsMayFormARing) {
    CLinkedReading first;
    CLinkedReading second;
    first.m_pNext = &second;
    second.m_pNext = &first;
    const Bytes bytes = Stored([&](CArchive& archive) { archive << &first; });
    EXPECT_EQ(bytes, kNewLinked + kZero + Hex("0180") + kZero + Hex("0200"));
    const auto read = [](CArchive& archive) {
        CReading* reading = nullptr;
        archive >> reading;  // by way of the base: the class in the archive decides
        ASSERT_TRUE(reading->IsKindOf(CLinkedReading::GetThisClass()));
        CReading* const next = static_cast<CLinkedReading*>(reading)->m_pNext;
        EXPECT_EQ(static_cast<CLinkedReading*>(next)->m_pNext, reading);
        delete next;
        delete reading;
    };
    EXPECT_EQ(CauseOf(bytes, read), CArchiveException::none);
}

TEST(Archive, ClassesAreKnownByNameWhileRegistered) {
    EXPECT_TRUE(CLinkedReading().IsKindOf(CReading::GetThisClass()) && kVolume.IsKindOf(CObject::GetThisClass()));
    EXPECT_FALSE(kVolume.IsKindOf(CLinkedReading::GetThisClass()) || kVolume.IsKindOf(nullptr));
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
    const Bytes bytes = Stored([&](CArchive& archive) {
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
        {"object not given out", one + Hex("0300"), CArchiveException::badIndex},
        {"object number of a class", one + Hex("0100"), CArchiveException::badIndex},
        {"class number of an object", one + Hex("0280"), CArchiveException::badIndex},
        {"class number 0", one + Hex("0080"), CArchiveException::badIndex},
        {"huge object number", one + Hex("FF7FFFFFFF7F"), CArchiveException::badIndex},
        {"huge class number", one + Hex("FF7FFFFFFFFF"), CArchiveException::badIndex},
        {"unknown class", one + Hex("FFFF 0000 0200 5858"), CArchiveException::badClass},
        {"class name too long", one + Hex("FFFF 0000 4000") + Bytes(64, 'x'), CArchiveException::badClass},
        {"abstract class", one + Hex("FFFF 0000 0800 4162737472616374"), CArchiveException::badClass},
        {"other schema", one + Hex("FFFF 0100 0700 52656164696E67"), CArchiveException::badSchema},
        {"object cut", one + Hex("0180 0000"), CArchiveException::endOfFile}};
    for (const auto& [title, bytes, cause] : cases) {
        EXPECT_EQ(CauseOf(bytes,
                          [](CArchive& archive) {
                              ReadReading(archive);
                              ReadReading(archive);
                          }),
                  cause)
            << title;
    }
    EXPECT_EQ(CauseOf(one,
                      [](CArchive& archive) {
                          CLinkedReading* linked = nullptr;
                          archive >> linked;
                      }),
              CArchiveException::badClass);
    // A cut anywhere is noticed, and every object made until then is gone again.
    const int alive = CReading::alive;
    for (std::size_t length = 0; length < one.size(); ++length) {
        EXPECT_EQ(CauseOf(Bytes(one.begin(), one.begin() + static_cast<int>(length)), ReadReading),
                  CArchiveException::endOfFile);
    }
    EXPECT_EQ(CReading::alive, alive);
}

TEST(Archive, AnObjectGivenUpCannotBeNamed) {
    const Bytes bytes = kNewLinked + kOneAndAHalf + Hex("0500 0200");
    EXPECT_EQ(CauseOf(bytes,
                      [](CArchive& archive) {
                          CReading* reading = nullptr;
                          EXPECT_THROW(archive >> reading, CArchiveException);
                          archive >> reading;
                      }),
              CArchiveException::badIndex);
}

TEST(Archive, NestingIsLimitedInBothDirections) {
    Bytes bytes = kNewLinked + kZero;
    for (int depth = 1; depth < CArchive::kMaxNesting; ++depth) bytes = bytes + Hex("0180") + kZero;
    const auto read = [](CArchive& archive) {
        CReading* reading = nullptr;
        archive >> reading;
        while (reading != nullptr) {
            CReading* const next = static_cast<CLinkedReading*>(reading)->m_pNext;
            delete reading;
            reading = next;
        }
    };
    EXPECT_EQ(CauseOf(bytes + Hex("0000"), read), CArchiveException::none);
    EXPECT_EQ(CauseOf(bytes + Hex("0180") + kZero + Hex("0000"), read), CArchiveException::genericException);

    std::vector<CLinkedReading> chain(CArchive::kMaxNesting + 1);
    for (std::size_t i = 1; i < chain.size(); ++i) chain[i - 1].m_pNext = &chain[i];
    EXPECT_THROW(Stored([&](CArchive& archive) { archive << &chain[0]; }), CArchiveException);
    EXPECT_EQ(Stored([&](CArchive& archive) { archive << &chain[1]; }), bytes + Hex("0000"));
}

TEST(Archive, RefusesWhatItCouldNotDo) {
    CMemFile file;
    CArchive storing(&file, CArchive::store);
    CArchive loading(&file, CArchive::load);
    int number = 7;
    EXPECT_EQ(CauseOf([&] { storing >> number; }), CArchiveException::writeOnly);
    EXPECT_EQ(CauseOf([&] { loading << number; }), CArchiveException::readOnly);
    EXPECT_EQ(CauseOf([&] { storing.BytesLeft(); }), CArchiveException::writeOnly);
    loading.Close();
    EXPECT_EQ(CauseOf([&] { loading.BytesLeft(); }), CArchiveException::genericException);
    const CUnregistered unregistered;
    EXPECT_EQ(CauseOf([&] { storing << &unregistered; }), CArchiveException::badClass);
    storing.Close();
    EXPECT_EQ(CauseOf([&] { storing << number; }), CArchiveException::genericException);
    EXPECT_EQ(CauseOf([] { const CArchive none(nullptr, CArchive::load); }), CArchiveException::genericException);
    EXPECT_EQ(number, 7);
}

TEST(Archive, CloseLeavesTheFileAtTheFirstByteNotConsumed) {
    CMemFile file;
    const Bytes bytes(20000, 1);
    file.Write(bytes.data(), 20000);
    for (const UINT consumed : {0u, 1u, 4095u, 4096u, 4097u, 12000u, 20000u}) {
        SCOPED_TRACE(consumed);
        file.Seek(0, CFile::begin);
        Bytes read(30000);
        CArchive archive(&file, CArchive::load);
        EXPECT_EQ(archive.Read(read.data(), consumed / 3) + archive.Read(read.data(), consumed - consumed / 3),
                  consumed);
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
    file.Attach(bytes.data(), static_cast<UINT>(bytes.size()));
    EXPECT_THROW(
        {
            CArchive archive(&file, CArchive::load);
            ReadText(archive);
        },
        CArchiveException);
    EXPECT_LE(file.largest, 64u * 1024);
}

TEST(Archive, DestructorTellsLostBytesUnlessAnExceptionIsUnderWay) {
    CLineFile file;
    EXPECT_THROW({ CArchive(&file, CArchive::store) << 1; }, CFileException);
    EXPECT_THROW(
        {
            CArchive archive(&file, CArchive::store);
            archive << 1;
            throw qel::DataError("first");
        },
        qel::DataError);
    EXPECT_EQ(qel::AsResult([&] {
                  CArchive(&file, CArchive::store) << 1;
                  return 1;
              }),
              0);
}
