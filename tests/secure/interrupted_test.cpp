#include "../support/interrupted.h"

#include "cabinet_folder.h"
#include "qellib10/file/q_file.h"
#include "qellib10/secure/crypt_xml_document.h"

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
template <int kVersions> void Versions(At at) {
    for (int version = 0; version < kVersions; ++version) {
        at.Write("a", Data(version + 1));
        version == 0 ? RegisterFirst(at) : RegisterNext(at);
    }
    at.Write("a", Data(kVersions + 1));
}
// What a killed program leaves behind the versions.
void TornVersions(At at) {
    Versions<3>(at);
    at.Write("cabinet", at.Read("cabinet") + Data(9).substr(0, 2000));
}
int TakeOut(At at) {
    CHistoryCabinetFile cabinet;
    return cabinet.Open(Cabinet(at), 1) && cabinet.GetVersionFile(2, at.c);
}
std::string TakenOut(At at) { return at.Read("c"); }

// How many versions there are. All are whole, registering goes on, and nothing is left behind them.
std::string WholeVersions(At at) {
    CHistoryCabinetFile cabinet;
    if (!cabinet.Open(Cabinet(at), 0)) cabinet.Create(Cabinet(at));
    const DWORD next = cabinet.GetLatestVersion() + 1;
    at.Write("a", Data(next));
    std::string found = std::to_string(next - 1) + (cabinet.RegistNewVersion(at.a) ? "" : ", no next one");
    std::size_t size = 36;
    for (DWORD version = 1; version <= next; ++version) {
        if (!cabinet.GetVersionFile(version, at.c) || at.Read("c") != Data(version)) found += ", one is lost";
        size += 20 + Data(version).size();
    }
    return found + (std::filesystem::file_size(at.Posix("cabinet")) == size ? "" : ", something behind");
}

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
    {"CabinetTakeOut", TakeOut, TakenOut, Versions<3>, true},
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Secure, FailingCalls, testing::ValuesIn(kOperations), NameOf);
INSTANTIATE_TEST_SUITE_P(Secure, PowerCuts, testing::ValuesIn(WithPromise(kOperations)), NameOf);
