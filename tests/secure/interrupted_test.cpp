#include "../support/interrupted.h"
#include "../support/disk_record.h"
#include "../support/soak.h"

#include "cabinet_folder.h"
#include "qellib10/file/q_file.h"
#include "qellib10/platform/error.h"
#include "qellib10/secure/crypt_xml_document.h"
#include "qellib10/secure/renewal_history.h"

namespace {

std::string Xml(const char* item) {
    std::string xml = "<r>";
    for (int i = 0; i < 100; ++i) xml += item;
    return xml + "</r>";
}

class Document : public CCryptXMLDocument {
public:
    using CCryptXMLDocument::SavePlainXMLFile;
    Document(const char* item, int crypt) {
        SetXMLString(Xml(item).c_str());
        SetCryptMode(crypt);
    }
};

template <int kCrypt> int Save(At at) { return Document("<new>text</new>", kCrypt).SaveXMLFile(at.Path("xml"), 1); }
int SaveByPath(At at) { return Document("<new>text</new>", 0).SavePlainXMLFile(at.Path("xml"), 1); }
template <int kCrypt> int ChangeLocked(At at) {
    CCryptXMLDocument document;
    document.SetCryptMode(kCrypt);
    if (!document.LockFile(at.Path("xml"), 1, 1)) return 0;
    document.SetXMLString(Xml("<n/>").c_str());
    return document.LockCommit();
}
int SaveBesideAndMove(At at) {
    return Document("<new>text</new>", 1).SaveXMLFile(at.a, 1) && CQFile::MoveFileA(at.a, at.Path("xml"), 1);
}
template <int kCrypt> void Old(At at) { Document("<old>text</old>", kCrypt).SaveXMLFile(at.Path("xml"), 1); }
int Load(At at) {
    CCryptXMLDocument document;
    const int loaded = document.LoadXMLFile(at.Path("xml"), 1);
    EXPECT_EQ(document.GetTagCount("old"), loaded != 0 ? 100 : -1);
    return loaded;
}

// A file that was only made is an empty document, as is none.
std::string Text(At at) {
    CCryptXMLDocument document;
    document.LoadXMLFile(at.Path("xml"), 1);
    return std::string(document.GetXMLString().View());
}
std::string TextAndNames(At at) { return Text(at) + at.Files(Place::About::kNames, "xml"); }

CString Cabinet(At at) { return at.Path("cabinet"); }
// The file "a" holds what is to be the next version.
int RegisterFirst(At at) {
    CHistoryCabinetFile cabinet;
    return cabinet.Create(Cabinet(at)) && cabinet.RegistNewVersion(at.a);
}
int RegisterNext(At at) {
    CHistoryCabinetFile cabinet;
    return cabinet.Open(Cabinet(at), 0) && cabinet.RegistNewVersion(at.a);
}
// Of a cabinet whose versions have no records yet.
int RegisterRecorded(At at) {
    try {
        qel::RenewalHistory(Cabinet(at).View(), at.Path("records").View()).Register(at.a.View(), "Mori", "");
        return 1;
    } catch (const qel::DataError&) {
        return 0;
    } catch (const CFileException&) {
        return 0;
    }
}
template <int kVersions> void Versions(At at) {
    for (int version = 0; version < kVersions; ++version) {
        at.Write("a", Data(version + 1));
        version == 0 ? RegisterFirst(at) : RegisterNext(at);
    }
    at.Write("a", Data(kVersions + 1));
}
// What a killed program leaves after the versions.
void TornVersions(At at) {
    Versions<3>(at);
    at.Write("cabinet", at.Read("cabinet") + Data(9).substr(0, 2000));
}
int TakeOut(At at) {
    CHistoryCabinetFile cabinet;
    return cabinet.Open(Cabinet(at), 1) && cabinet.GetVersionFile(2, at.c);
}
std::string TakenOut(At at) { return at.Read("c"); }

std::string WholeVersions(At at) { return VersionsIn(at, "cabinet"); }

const Operation kOperations[] = {
    {"XmlSave", Save<1>, TextAndNames, Old<1>, false, Cut::kOnlyOnceDone},
    {"XmlSavePlain", Save<0>, TextAndNames, Old<0>, false, Cut::kOnlyOnceDone},
    {"XmlSaveNew", Save<1>, TextAndNames, Nothing, false, Cut::kOnlyOnceDone},
    {"XmlSaveByPath", SaveByPath, TextAndNames, Old<0>, false, Cut::kOnlyOnceDone},
    {"XmlLockCommit", ChangeLocked<1>, TextAndNames, Old<1>, false, Cut::kOnlyOnceDone},
    {"XmlLockCommitPlain", ChangeLocked<0>, TextAndNames, Old<0>, false, Cut::kOnlyOnceDone},
    {"XmlSaveBesideAndMove", SaveBesideAndMove, Text, Old<1>},
    {"XmlLoad", Load, TextAndNames, Old<1>, false, Cut::kAnything},
    {"CabinetFirstVersion", RegisterFirst, WholeVersions, Versions<0>},
    {"CabinetSecondVersion", RegisterNext, WholeVersions, Versions<1>},
    {"CabinetLongVersion", RegisterNext, WholeVersions, Versions<3>},
    {"CabinetBehindTornVersion", RegisterNext, WholeVersions, TornVersions},
    {"CabinetEmptyVersion", RegisterNext, WholeVersions, Versions<5>},
    {"CabinetRecordedVersion", RegisterRecorded, WholeVersions, Versions<3>},
    {"CabinetTakeOut", TakeOut, TakenOut, Versions<3>, true},
};

// Two that register a short version.
std::vector<Operation> CabinetOperations() {
    std::vector<Operation> found(std::begin(kOperations), std::end(kOperations));
    std::erase_if(found, [](const Operation& operation) {
        const std::string_view name = operation.name;
        return name != "CabinetFirstVersion" && name != "CabinetSecondVersion";
    });
    return found;
}

// How many versions an operation finds.
DWORD CabinetVersions(const Operation& operation) {
    const Place place;
    operation.prepare(place);
    CHistoryCabinetFile cabinet;
    cabinet.Open(Cabinet(place), 1);
    return cabinet.GetLatestVersion();
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Secure, FailingCalls, testing::ValuesIn(kOperations), NameOf);
INSTANTIATE_TEST_SUITE_P(Secure, DeadDisks, testing::ValuesIn(WithPromise(kOperations, Cut::kOnlyOnceDone)), NameOf);
INSTANTIATE_TEST_SUITE_P(Secure, PowerCuts, testing::ValuesIn(WithPromise(kOperations)), NameOf);

using FailedRegistrations = Interrupted;

TEST_P(FailedRegistrations, LeaveTheVersionsWhenTheDiskStaysDead) {
    const DWORD versions = CabinetVersions(GetParam());
    int refused = 0;
    for (const CallFailure failure : {CallFailure::kEio, CallFailure::kEnospc}) {
        for (int number = 1, done = 0; done == 0; ++number) {
            SCOPED_TRACE(number);
            const Place place;
            GetParam().prepare(place);
            CHistoryCabinetFile cabinet;
            ASSERT_EQ(versions == 0 ? cabinet.Create(Cabinet(place)) : cabinet.Open(Cabinet(place), 0), 1);
            m_failFrom(failure, number);
            done = cabinet.RegistNewVersion(place.a);
            m_fail(failure, 0);
            // Undone, or untouched, it goes on; else not before it is opened again.
            const int next = cabinet.RegistNewVersion(place.a);
            cabinet.Close();
            if (done != 0) break;
            const std::string found = WholeVersions(place);
            EXPECT_TRUE(found == std::to_string(versions + 1) || (next == 0 && found == std::to_string(versions)))
                << found;
            refused += next == 0 ? 1 : 0;
        }
    }
    EXPECT_GT(refused, 0);
}

TEST_P(FailedRegistrations, AreUndoneAtEveryPowerCut) {
    std::minstd_rand random(SoakSeed());
    const int tries = SoakCount(2);
    for (int number = 1, left = 0; left == 0; ++number) {
        const Place place;
        GetParam().prepare(place);
        DiskRecord disk(place);
        m_watch(DiskRecord::Take);
        m_fail(CallFailure::kEio, number);
        const bool done = Run(place);
        left = m_left();
        m_fail(CallFailure::kEio, 0);
        m_watch(nullptr);
        const std::string before = std::to_string(CabinetVersions(GetParam()));
        const std::string after = std::to_string(CabinetVersions(GetParam()) + 1);
        for (std::size_t calls = 1; calls <= disk.Calls(); ++calls) {
            Tried("power cuts", tries);
            for (int i = 0; i < tries; ++i) {
                disk.CutAfter(calls, random);
                const std::string now = WholeVersions(place);
                const bool isOver = calls == disk.Calls();
                ASSERT_TRUE(now == (done ? after : before) || (!isOver && (now == before || now == after)))
                    << "failed call " << number << ", cut after call " << calls << ": " << now;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Secure, FailedRegistrations, testing::ValuesIn(CabinetOperations()), NameOf);
