#include "qellib10/platform/archive/archive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
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
    CReading() { ++alive; }
    CReading(const CReading&) = delete;
    CReading& operator=(const CReading&) = delete;
    ~CReading() override { --alive; }

    static const CRuntimeClass* GetThisClass() {
        static const CRuntimeClass theClass = qel::DescribeClass<CReading, CObject>("Reading", 2);
        return &theClass;
    }
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    void Serialize(CArchive& archive) override { archive.IsStoring() ? archive << m_nVolume : archive >> m_nVolume; }

    static inline int alive = 0;
    BYTE m_nVolume = 0;
};

// One reading in a chain or ring; owns none of the others.
class CLinked : public CReading {
public:
    static const CRuntimeClass* GetThisClass() {
        static const CRuntimeClass theClass = qel::DescribeClass<CLinked, CReading>("Linked");
        return &theClass;
    }
    const CRuntimeClass* GetRuntimeClass() const override { return GetThisClass(); }
    void Serialize(CArchive& archive) override {
        CReading::Serialize(archive);
        archive.IsStoring() ? archive << m_pNext : archive >> m_pNext;
    }

    CLinked* m_pNext = nullptr;
};

const qel::RegisteredClass<CReading> registeredReading;
const qel::RegisteredClass<CLinked> registeredLinked;
const qel::RegisteredClass<CObject> registeredAbstract;

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

const Bytes kNewReading = Hex("FFFF 0200 0700 52656164696E67");
const Bytes kNewLinked = Hex("FFFF 0000 0600 4C696E6B6564");

using Use = std::function<void(CArchive&)>;

Bytes Stored(const Use& write) {
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

int CauseOfReading(const Bytes& bytes, const Use& read) {
    return CauseOf([&] {
        CMemFile file;
        file.Attach(bytes.data(), static_cast<UINT>(bytes.size()));
        CArchive archive(&file, CArchive::load);
        read(archive);
    });
}

template <class T> void ExpectBytes(const T& value, const char* hex) {
    SCOPED_TRACE(hex);
    EXPECT_EQ(Stored([&](CArchive& archive) { archive << value; }), Hex(hex));
    T read{};
    EXPECT_EQ(CauseOfReading(Hex(hex), [&](CArchive& archive) { archive >> read; }), CArchiveException::none);
    EXPECT_TRUE(read == value);
}

void ReadTwoReadings(CArchive& archive) {
    for (int i = 0; i < 2; ++i) {
        CReading* reading = nullptr;
        archive >> reading;
        delete reading;
    }
}

// A line to an instrument: no length, and writing fails.
class CLineFile : public CMemFile {
public:
    ULONGLONG GetLength() const override { qel::ThrowCode(qel::kGeneralFailure, "line"); }
    void Write(const void*, UINT) override { qel::ThrowCode(qel::kDiskFull, "line"); }
    UINT Read(void* buffer, UINT count) override {
        largest = std::max(largest, count);
        return CMemFile::Read(buffer, count);
    }

    UINT largest = 0;
};

}  // namespace

TEST(Object, KnowsItsClassAndIsMadeByName) {
    EXPECT_TRUE(CLinked().IsKindOf(CLinked::GetThisClass()));
    EXPECT_TRUE(CLinked().IsKindOf(CObject::GetThisClass()));
    EXPECT_FALSE(CReading().IsKindOf(CLinked::GetThisClass()));
    EXPECT_FALSE(CReading().IsKindOf(nullptr));
    std::optional<qel::RegisteredClass<CLinked>> twice(std::in_place);
    twice.reset();
    const std::unique_ptr<CObject> made(CRuntimeClass::FromName("Linked")->CreateObject());
    EXPECT_NE(dynamic_cast<CLinked*>(made.get()), nullptr);
    EXPECT_EQ(CRuntimeClass::FromName("CObject")->CreateObject(), nullptr);
    EXPECT_EQ(CRuntimeClass::FromName("linked"), nullptr);
}

TEST(Archive, ScalarsAreTheirBytesLowestFirst) {
    ExpectBytes(BYTE{0xFE}, "FE");
    ExpectBytes('A', "41");
    ExpectBytes(true, "01");
    ExpectBytes(WORD{0x0102}, "0201");
    ExpectBytes(short{-2}, "FEFF");
    ExpectBytes(0x01020304, "04030201");
    ExpectBytes(1.5F, "0000C03F");
    ExpectBytes(1.5, "000000000000F83F");
    ExpectBytes(LONGLONG{-2}, "FEFFFFFFFFFFFFFF");
    ExpectBytes(COleDateTime(2001, 1, 1, 0, 0, 0), "00000000 000000008003E240");
}

TEST(Archive, TextsTakeTheShortestLength) {
    for (const auto& [length, prefix] : {std::pair{0, "00"},
                                         {4, "04"},
                                         {254, "FE"},
                                         {255, "FFFF00"},
                                         {65533, "FFFDFF"},
                                         {65534, "FFFFFFFEFF0000"},
                                         {65536, "FFFFFF00000100"},
                                         {200000, "FFFFFF400D0300"}}) {
        SCOPED_TRACE(length);
        const CString text('x', length);
        const Bytes bytes = Stored([&, &whole = text](CArchive& archive) { archive << whole; });
        EXPECT_EQ(bytes, Hex(prefix) + Bytes(static_cast<std::size_t>(length), 'x'));
        CString read;
        EXPECT_EQ(CauseOfReading(bytes, [&](CArchive& archive) { archive >> read; }), CArchiveException::none);
        EXPECT_EQ(read, text);
    }
}

TEST(Archive, ReadsTextsOfOtherWriters) {
    struct Case {
        const char* bytes;
        int cause;
        const char* text;
    };
    constexpr int kNone = CArchiveException::none, kEnd = CArchiveException::endOfFile;
    for (const Case& c :
         {Case{"FF0200 4142", kNone, "AB"},  // longer forms than needed
          Case{"FFFFFF02000000 4142", kNone, "AB"}, Case{"FFFFFFFFFFFFFF 0200000000000000 4142", kNone, "AB"},
          Case{"FFFEFF 02 41004200", kNone, "AB"},  // UTF-16LE
          Case{"FFFEFF FF0100 B500", kNone, "\x83\xCA"},
          Case{"FFFEFF FFFEFF 02 41004200", CArchiveException::genericException, "kept"},
          Case{"FFFEFF 02 410042", kEnd, "kept"}, Case{"FFFEFF FFFFFFFFFFFFFF 0000000000000080 41", kEnd, "kept"},
          Case{"FFFFFFFEFFFFFF 4142", kEnd, "kept"}, Case{"FFFFFFFFFFFFFF FFFFFFFFFFFFFFFF 41", kEnd, "kept"},
          Case{"03 4142", kEnd, "kept"}, Case{"", kEnd, "kept"}}) {
        SCOPED_TRACE(c.bytes);
        CString text("kept");
        EXPECT_EQ(CauseOfReading(Hex(c.bytes), [&](CArchive& archive) { archive >> text; }), c.cause);
        EXPECT_EQ(text, c.text);
    }
}

TEST(Archive, WithoutALengthMemoryGrowsWithWhatArrives) {
    const Bytes bytes = Hex("FFFFFFFFFFFF7F") + Bytes(100000, 'x');
    CLineFile file;
    file.Attach(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive archive(&file, CArchive::load);
    CString text;
    EXPECT_EQ(CauseOf([&] { archive >> text; }), CArchiveException::endOfFile);
    EXPECT_LE(file.largest, 64u * 1024);
}

TEST(Archive, CountsAreNotBelieved) {
    EXPECT_EQ(Stored([](CArchive& archive) { archive.WriteCount(0xFFFE); }), Hex("FEFF"));
    EXPECT_EQ(Stored([](CArchive& archive) { archive.WriteCount(0xFFFF); }), Hex("FFFFFFFF0000"));
    DWORD count = 0;
    const Use read = [&](CArchive& archive) { count = archive.ReadCount(); };
    EXPECT_EQ(CauseOfReading(Hex("FFFF FFFF0000") + Bytes(65535), read), CArchiveException::none);
    EXPECT_EQ(count, 65535u);
    EXPECT_EQ(CauseOfReading(Hex("0300 0000"), read), CArchiveException::endOfFile);
    EXPECT_EQ(CauseOfReading(Hex("FFFF FFFFFFFF 00"), read), CArchiveException::endOfFile);
}

TEST(Archive, ObjectsKeepClassAndIdentity) {
    const CReading one, two;
    const CReading* const none = nullptr;
    const Bytes bytes = Stored([&](CArchive& archive) { archive << &one << &two << &one << none; });
    EXPECT_EQ(bytes, kNewReading + Hex("00 0180 00 0200 0000"));
    const Use read = [](CArchive& archive) {
        CReading *first, *second, *again, *null = nullptr;
        archive >> first >> second >> again >> null;
        EXPECT_TRUE(first != second && again == first && null == nullptr);
        delete first;
        delete second;
    };
    EXPECT_EQ(CauseOfReading(bytes, read), CArchiveException::none);
    // The long form of small numbers is read as well.
    EXPECT_EQ(CauseOfReading(kNewReading + Hex("00 FF7F01000080 00 FF7F02000000 0000"), read), CArchiveException::none);
}

TEST(Archive, ObjectsMayFormARing) {
    CLinked first, second;
    first.m_pNext = &second;
    second.m_pNext = &first;
    const Bytes bytes = Stored([&](CArchive& archive) { archive << &first; });
    EXPECT_EQ(bytes, kNewLinked + Hex("00 0180 00 0200"));
    CauseOfReading(bytes, [](CArchive& archive) {
        CReading* read = nullptr;
        archive >> read;  // by way of the base: the class in the archive decides
        auto* const linked = dynamic_cast<CLinked*>(read);
        ASSERT_NE(linked, nullptr);
        EXPECT_EQ(linked->m_pNext->m_pNext, linked);
        delete linked->m_pNext;
        delete linked;
    });
}

TEST(Archive, NumbersFrom7FFFTakeTheLongForm) {
    const std::vector<CReading> readings(0x8000);  // numbers 2 to 8001; the next class is 8002
    CLinked last;
    const Bytes bytes = Stored([&](CArchive& archive) {
        for (const CReading& reading : readings) archive << &reading;
        archive << &readings[0x7FFC] << &readings[0x7FFD] << &last << &last;
    });
    const Bytes end = Hex("FE7F FF7FFF7F0000") + kNewLinked + Hex("00 0000 FF7F03800000");
    EXPECT_TRUE(std::ranges::equal(std::span(bytes).last(end.size()), end));
    const Use read = [](CArchive& archive) {
        std::vector<std::unique_ptr<CReading>> all;
        CReading* next = nullptr;
        while (all.size() < 0x8000) all.emplace_back((archive >> next, next));
        archive >> next;
        EXPECT_EQ(next, all[0x7FFC].get());
        archive >> next;
        EXPECT_EQ(next, all[0x7FFD].get());
        const std::unique_ptr<CReading> linked((archive >> next, next));
        archive >> next;
        EXPECT_EQ(next, linked.get());
    };
    EXPECT_EQ(CauseOfReading(bytes, read), CArchiveException::none);
}

TEST(Archive, DamagedObjectsEndInTheirCause) {
    struct Case {
        const char* title;
        Bytes second;
        int cause;
    };
    const Bytes one = kNewReading + Hex("00");
    for (const Case& c : {Case{"object not given out", Hex("0300"), CArchiveException::badIndex},
                          Case{"object number of a class", Hex("0100"), CArchiveException::badIndex},
                          Case{"class number of an object", Hex("0280"), CArchiveException::badIndex},
                          Case{"class number 0", Hex("0080"), CArchiveException::badIndex},
                          Case{"huge object number", Hex("FF7FFFFFFF7F"), CArchiveException::badIndex},
                          Case{"huge class number", Hex("FF7FFFFFFFFF"), CArchiveException::badIndex},
                          Case{"unknown class", Hex("FFFF 0000 0200 5858"), CArchiveException::badClass},
                          Case{"long class name", Hex("FFFF 0000 4000") + Bytes(64), CArchiveException::badClass},
                          Case{"abstract class", Hex("FFFF 0000 0700 434F626A656374"), CArchiveException::badClass},
                          Case{"other schema", Hex("FFFF 0100 0700 52656164696E67"), CArchiveException::badSchema},
                          Case{"link of another class", kNewLinked + Hex("00 0180 00"), CArchiveException::badClass}}) {
        EXPECT_EQ(CauseOfReading(one + c.second, ReadTwoReadings), c.cause) << c.title;
    }
    // A cut anywhere is noticed, and every object made until then is gone again.
    const int alive = CReading::alive;
    const Bytes whole = one + kNewLinked + Hex("00 0380 00 0000");
    for (auto end = whole.begin(); end != whole.end(); ++end)
        EXPECT_EQ(CauseOfReading(Bytes(whole.begin(), end), ReadTwoReadings), CArchiveException::endOfFile);
    EXPECT_EQ(CReading::alive, alive);
    // And no number reaches it.
    EXPECT_EQ(CauseOfReading(kNewLinked + Hex("00 0500 0200"),
                             [](CArchive& archive) {
                                 EXPECT_THROW(ReadTwoReadings(archive), CArchiveException);
                                 ReadTwoReadings(archive);
                             }),
              CArchiveException::badIndex);
}

TEST(Archive, NestingIsLimitedInBothDirections) {
    std::vector<CLinked> chain(CArchive::kMaxNesting + 1);
    for (std::size_t i = 1; i < chain.size(); ++i) chain[i - 1].m_pNext = &chain[i];
    const auto store = [&](std::size_t from) { return Stored([&](CArchive& archive) { archive << &chain[from]; }); };
    EXPECT_EQ(CauseOf([&] { store(0); }), CArchiveException::genericException);

    const Bytes deepest = store(1);
    const Use read = [](CArchive& archive) {
        CLinked* linked = nullptr;
        archive >> linked;
        while (linked != nullptr) delete std::exchange(linked, linked->m_pNext);
    };
    EXPECT_EQ(CauseOfReading(deepest, read), CArchiveException::none);
    const Bytes deeper = Bytes(deepest.begin(), deepest.end() - 2) + Hex("0180 00 0000");
    EXPECT_EQ(CauseOfReading(deeper, read), CArchiveException::genericException);
}

TEST(Archive, IsForOneDirectionUntilItIsClosed) {
    CMemFile file;
    CArchive storing(&file, CArchive::store);
    CArchive loading(&file, CArchive::load);
    int number = 7;
    EXPECT_EQ(CauseOf([&] { storing >> number; }), CArchiveException::writeOnly);
    EXPECT_EQ(CauseOf([&] { loading << number; }), CArchiveException::readOnly);
    storing.Close();
    EXPECT_EQ(CauseOf([&] { storing << number; }), CArchiveException::genericException);
    EXPECT_EQ(CauseOf([] { const CArchive none(nullptr, CArchive::load); }), CArchiveException::genericException);
}

TEST(Archive, CloseLeavesTheFileAtTheFirstByteNotConsumed) {
    CMemFile file;
    Bytes bytes(20000, 1);
    file.Write(bytes.data(), 20000);
    for (const UINT consumed : {0u, 1u, 4095u, 4096u, 4097u, 12000u, 20000u}) {
        SCOPED_TRACE(consumed);
        file.Seek(0, CFile::begin);
        CArchive archive(&file, CArchive::load);
        EXPECT_EQ(archive.Read(bytes.data(), consumed / 3), consumed / 3);
        EXPECT_EQ(archive.Read(bytes.data(), consumed - consumed / 3), consumed - consumed / 3);
        archive.Close();
        archive.Close();
        EXPECT_EQ(file.GetPosition(), consumed);
    }
}

TEST(Archive, DestructorTellsLostBytesUnlessAnExceptionIsUnderWay) {
    CLineFile file;
    const auto storeAndThrow = [&] {
        CArchive archive(&file, CArchive::store);
        archive << 1;
        throw std::runtime_error("first");
    };
    EXPECT_THROW(storeAndThrow(), std::runtime_error);
    EXPECT_THROW({ CArchive(&file, CArchive::store) << 1; }, CFileException);
    EXPECT_EQ(qel::AsResult([&] { return CArchive(&file, CArchive::store).operator<<(1).IsStoring(); }), 0);
}
