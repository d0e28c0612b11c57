#include "qellib10/platform/archive/archive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <span>
#include <string>
#include <vector>

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

// The cause with which reading @p bytes ends.
int CauseOf(const Bytes& bytes, const std::function<void(CArchive&)>& read) {
    CMemFile file;
    file.Attach(bytes.data(), static_cast<UINT>(bytes.size()));
    try {
        CArchive archive(&file, CArchive::load);
        read(archive);
    } catch (const CArchiveException& exception) {
        return exception.m_cause;
    }
    return CArchiveException::none;
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
    EXPECT_EQ(CauseOf(bytes,
                      [](CArchive& archive) {
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
                          COleDateTime time;
                          archive >> byte >> character >> yes >> word >> brief >> number >> natural >> single >> real;
                          archive >> wide >> time;
                          EXPECT_TRUE(byte == 0xFE && character == 'A' && yes && word == 0x0102 && brief == -2);
                          EXPECT_TRUE(number == 0x01020304 && natural == 0xFFFFFFFE && single == 1.5F && real == 1.5);
                          EXPECT_TRUE(wide == -2 && time == COleDateTime(2001, 1, 1, 0, 0, 0));
                          EXPECT_EQ(archive.Read(&byte, 1), 0u);
                      }),
              CArchiveException::none);
}

TEST(Archive, TextsTakeTheShortestLength) {
    struct Case {
        int length;
        const char* prefix;
    };
    for (const Case& c :
         {Case{0, "00"}, Case{4, "04"}, Case{254, "FE"}, Case{255, "FFFF00"}, Case{65533, "FFFDFF"},
          Case{65534, "FFFFFFFEFF0000"}, Case{65536, "FFFFFF00000100"}, Case{200000, "FFFFFF400D0300"}}) {
        SCOPED_TRACE(c.length);
        const CString text('x', c.length);
        const Bytes bytes = Stored([&](CArchive& archive) { archive << text; });
        EXPECT_EQ(bytes, Hex(c.prefix) + Bytes(static_cast<std::size_t>(c.length), 'x'));
        CString read;
        EXPECT_EQ(CauseOf(bytes, [&](CArchive& archive) { archive >> read; }), CArchiveException::none);
        EXPECT_EQ(read, text);
    }
}

TEST(Archive, ReadsTextsOfOtherWriters) {
    struct Case {
        const char* bytes;
        int cause;
        const char* text;
    };
    constexpr const char* kKept = "kept";
    for (const Case& c :
         {Case{"FF0200 4142", CArchiveException::none, "AB"},  // longer forms than needed
          Case{"FFFFFF02000000 4142", CArchiveException::none, "AB"},
          Case{"FFFFFFFFFFFFFF0200000000000000 4142", CArchiveException::none, "AB"},
          Case{"FFFEFF 02 41004200", CArchiveException::none, "AB"},  // UTF-16LE
          Case{"FFFEFF FF0100 B500", CArchiveException::none, "\x83\xCA"},
          Case{"FFFEFF FFFEFF 02 41004200", CArchiveException::genericException, kKept},
          Case{"FFFEFF 02 410042", CArchiveException::endOfFile, kKept},
          Case{"FFFEFF FFFFFFFFFFFFFF 0000000000000080 41", CArchiveException::endOfFile, kKept},
          Case{"FFFFFFFEFFFFFF 4142", CArchiveException::endOfFile, kKept},
          Case{"FFFFFFFFFFFFFF FFFFFFFFFFFFFFFF 41", CArchiveException::endOfFile, kKept},
          Case{"03 4142", CArchiveException::endOfFile, kKept}, Case{"", CArchiveException::endOfFile, kKept}}) {
        SCOPED_TRACE(c.bytes);
        CString text(kKept);
        EXPECT_EQ(CauseOf(Hex(c.bytes), [&](CArchive& archive) { archive >> text; }), c.cause);
        EXPECT_EQ(text, c.text);
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
    EXPECT_EQ(CauseOf(bytes,
                      [&](CArchive& archive) {
                          std::vector<CReading*> read(kObjects);
                          for (CReading*& reading : read) archive >> reading;
                          CReading *brief, *big, *linked, *again = nullptr;
                          archive >> brief >> big >> linked >> again;
                          EXPECT_TRUE(brief == read[0x7FFC] && big == read[0x7FFD] && again == linked);
                          for (const CReading* reading : read) delete reading;
                          delete linked;
                      }),
              CArchiveException::none);
}

TEST(Archive, DamagedObjectHeadersEndInTheirCause) {
    struct Case {
        const char* title;
        Bytes bytes;
        int cause;
    };
    const Bytes one = kNewReading + kOneAndAHalf;
    for (const Case& c :
         {Case{"object not given out", one + Hex("0300"), CArchiveException::badIndex},
          Case{"object number of a class", one + Hex("0100"), CArchiveException::badIndex},
          Case{"class number of an object", one + Hex("0280"), CArchiveException::badIndex},
          Case{"class number 0", one + Hex("0080"), CArchiveException::badIndex},
          Case{"huge object number", one + Hex("FF7FFFFFFF7F"), CArchiveException::badIndex},
          Case{"huge class number", one + Hex("FF7FFFFFFFFF"), CArchiveException::badIndex},
          Case{"unknown class", one + Hex("FFFF 0000 0200 5858"), CArchiveException::badClass},
          Case{"class name too long", one + Hex("FFFF 0000 4000") + Bytes(64, 'x'), CArchiveException::badClass},
          Case{"abstract class", one + Hex("FFFF 0000 0800 4162737472616374"), CArchiveException::badClass},
          Case{"other schema", one + Hex("FFFF 0100 0700 52656164696E67"), CArchiveException::badSchema},
          Case{"header cut", one + Hex("FFFF 0200 0700 5265"), CArchiveException::endOfFile},
          Case{"object cut", one + Hex("0180 0000"), CArchiveException::endOfFile}}) {
        EXPECT_EQ(CauseOf(c.bytes,
                          [](CArchive& archive) {
                              ReadReading(archive);
                              ReadReading(archive);
                          }),
                  c.cause)
            << c.title;
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
    const auto cause = [](auto&& use) {
        try {
            use();
        } catch (const CArchiveException& exception) {
            return exception.m_cause;
        }
        return int{CArchiveException::none};
    };
    CArchive storing(&file, CArchive::store);
    CArchive loading(&file, CArchive::load);
    int number = 7;
    EXPECT_EQ(cause([&] { storing >> number; }), CArchiveException::writeOnly);
    EXPECT_EQ(cause([&] { loading << number; }), CArchiveException::readOnly);
    EXPECT_EQ(cause([&] { storing.BytesLeft(); }), CArchiveException::writeOnly);
    loading.Close();
    EXPECT_EQ(cause([&] { loading.BytesLeft(); }), CArchiveException::genericException);
    const CUnregistered unregistered;
    EXPECT_EQ(cause([&] { storing << &unregistered; }), CArchiveException::badClass);
    storing.Close();
    EXPECT_EQ(cause([&] { storing << number; }), CArchiveException::genericException);
    EXPECT_EQ(cause([] { const CArchive none(nullptr, CArchive::load); }), CArchiveException::genericException);
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
