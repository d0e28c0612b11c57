#include <functional>
#include <string_view>
#include <thread>

#include "../support/registry_scope.h"
#include "../support/test.h"
#include "qellib10/calc/qw_calc.h"
#include "qellib10/file/check_datafile.h"
#include "qellib10/file/private_profile.h"
#include "qellib10/graph/back_buffer_dc.h"
#include "qellib10/graph/qel_graph.h"
#include "qellib10/platform/archive/archive_exception.h"
#include "qellib10/platform/archive/result.h"
#include "qellib10/platform/drawing/file_dc.h"
#include "qellib10/platform/drawing/page_picture.h"
#include "qellib10/platform/drawing/png_file.h"
#include "qellib10/platform/failure.h"
#include "qellib10/platform/failure_sentence.h"
#include "qellib10/platform/printing/print_spooler.h"
#include "qellib10/print/document_data.h"
#include "qellib10/runtime/memory_mapped_file.h"
#include "qellib10/secure/crypt_xml_document.h"
#include "qellib10/secure/history_cabinet_file.h"
#include "qellib10/user/system_setting.h"

namespace {

using qel::FailureKind;
using qel::LastFailure;

constexpr const char* kKinds[] = {"none",     "file",         "archive",      "data",     "memory",
                                  "argument", "state",        "missing",      "registry", "printer",
                                  "syntax",   "unknown name", "zero divisor", "too long", "refused"};

DWORD thePrinterNeeds = 0;

// The last failure as one text; of an item its last name.
std::string Reported() {
    const qel::Failure failure = LastFailure();
    std::string reported = kKinds[static_cast<int>(failure.kind)];
    if (failure.kind == FailureKind::kNone) return reported;
    reported += std::string(": ") + failure.operation + ": ";
    const std::size_t name = failure.item.find_last_of('\\') + 1;
    if (!failure.item.empty()) reported += failure.item.substr(name) + ": ";
    reported += failure.text;
    if (failure.systemError >= 0) reported += " (" + std::to_string(failure.systemError) + ")";
    if (failure.position >= 0) reported += " at " + std::to_string(failure.position);
    return reported;
}

// One operation that fails, and what is reported of it.
struct Case {
    std::function<int()> operation;
    std::string reported;
};
void EachReports(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(c.operation(), 0) << c.reported;
        EXPECT_EQ(Reported(), c.reported);
    }
}

class Failures : public testing::Test {
protected:
    CString Path(const char* name) const { return folder.Path(name); }
    CString Made(const char* name, const std::string& bytes) const {
        folder.Write(name, bytes);
        return Path(name);
    }
    // As @p ask with the file of that name, open with these flags.
    template <class Ask> int On(const char* name, Ask ask, UINT flags = CFile::modeReadWrite) const {
        CQFile file;
        return file.Open(Path(name), flags) ? ask(&file) : -1;
    }

    const TempFolder folder;
};

int Throwing(const std::function<void()>& thrown) { return qel::Succeeds("A::Step", thrown) ? 1 : 0; }

}  // namespace

TEST_F(Failures, ComeFromEachExceptionOfTheLibrary) {
    EachReports({
        {[] { return Throwing([] { throw CFileException(CFileException::diskFull, 112, "a\\b"); }); },
         "file: A::Step: b: disk full (112)"},
        {[] { return Throwing([] { throw CArchiveException(CArchiveException::endOfFile, "a\\b"); }); },
         "archive: A::Step: b: archive ends too early"},
        {[] { return Throwing([] { throw qel::DataError("no such thing"); }); }, "data: A::Step: no such thing"},
        {[] { return Throwing([] { throw std::bad_alloc(); }); }, "memory: A::Step: out of memory"},
        {[] { return qel::AsResult("A::Step", [] { return 0; }); }, "refused: A::Step: refused"},
    });
}

TEST_F(Failures, WithoutAReasonAreDescribedByTheCaller) {
    for (const auto& [kind, text, sentence] : Cases<FailureKind, const char*, const char*>{
             {FailureKind::kNone, "", "cannot be opened"},
             {FailureKind::kRefused, "refused", "cannot be opened"},
             {FailureKind::kMemory, "", "cannot be opened"},  // no memory for the text either
             {FailureKind::kFile, "disk full", "disk full"},
         }) {
        qel::Failure failure;
        failure.kind = kind;
        failure.text = text;
        EXPECT_EQ(qel::FailureSentence(failure, "cannot be opened"), sentence);
    }
}

TEST_F(Failures, OfOperationsWithinOthersGetTheNameOfTheOuterOne) {
    const auto inner = [](int result) {
        return qel::AsResult(
            "B::Inner", [=] { return result != 0 ? 1 : qel::Refuse(FailureKind::kMissing, "thing", "not there"); });
    };
    const auto outer = [&](std::vector<int> results, int result) {
        return qel::AsResult("A::Outer", [&] {
            for (const int one : results) inner(one);
            return result;
        });
    };
    for (const auto& [results, result, reported] : Cases<std::vector<int>, int, const char*>{
             {{0}, 0, "missing: A::Outer: thing: not there"},
             {{0, 1}, 0, "missing: A::Outer: thing: not there"},  // it tidied up before it ended
             {{0}, 1, "none"},
             {{1}, 0, "refused: A::Outer: refused"},
             {{}, 0, "refused: A::Outer: refused"},
         }) {
        inner(0);  // replaced by the outer operation
        EXPECT_EQ(outer(results, result), result);
        EXPECT_EQ(Reported(), reported);
    }
}

TEST_F(Failures, BelongToTheirThreadAndGoWithItsNextSuccess) {
    qel::Refuse(FailureKind::kData, "", "mine");
    std::thread([] { EXPECT_EQ(Reported(), "none"); }).join();
    EXPECT_EQ(LastFailure().text, "mine");
    CFile file;
    EXPECT_TRUE(file.Open(Made("a", ""), CFile::modeRead));
    EXPECT_EQ(Reported(), "none");
}

TEST_F(Failures, OfFilesReportFileAndCause) {
    const CString a = Made("a", "some bytes"), b = Made("b", "other byte");
    DWORD number = 0;
    CString text;
    EachReports({
        {[&] { return CFile().Open(Path("none"), CFile::modeRead); }, "file: CFile::Open: none: file not found (2)"},
        {[&] { return CQFile::MoveFileReboot(Path("none"), Path("x"), nullptr, 0) >= 0; },
         "file: CQFile::MoveFileReboot: none: file not found (2)"},
        {[&] { return CFile().Open(Path("no") + "\\x", CFile::modeRead); }, "file: CFile::Open: x: bad path (3)"},
        {[&] { return CQFile::GetFileCRC(Path("none"), &number, 0); },
         "file: CQFile::GetFileCRC: none: file not found (2)"},
        {[&] { return CQFile().GetFileSum(&number, 0); }, "state: CQFile::GetFileSum: no file is open (6)"},
        {[&] { return CQFile::CompareFile(a, b); }, "data: CQFile::CompareFile: b: other bytes"},
        {[&] { return CQFile::GetFileSize(Path("none"), &number); },
         "file: CQFile::GetFileSize: none: file not found (2)"},
        {[&] { return On("a", [](CQFile* file) { return file->Find("zz", 2); }); },
         "missing: CQFile::Find: a: not found in the file"},
        {[&] { return CQFile::MoveFileA(Path("none"), Path("c"), 0); },
         "file: CQFile::MoveFileA: none: file not found (2)"},
        {[&] { return CQFile::MoveFileA(a, b, 0); }, "file: CQFile::MoveFileA: b: access denied (80)"},
        {[&] { return CQFile::CreateDirectories(a + "\\x"); },
         "file: CQFile::CreateDirectories: a: access denied (183)"},
        {[&] { return CQFile::DeleteShortcut(Path("none.lnk")); },
         "file: CQFile::DeleteShortcut: none.lnk: file not found (2)"},
        {[&] { return CQFile::GetVersionInfo(a, "FileVersion", &text); },
         "missing: CQFile::GetVersionInfo: a: no such version text"},
        {[&] { return CQFile::GetFileVersion(a, &text); }, "missing: CQFile::GetFileVersion: a: no such version text"},
        {[&] { return CQFile().CreateTempFile("a/b", 1); }, "file: CQFile::CreateTempFile: a/b: bad path (123)"},
        {[] { return CQFile::DelTree(""); }, "file: CQFile::DelTree: bad path (3)"},
        {[] { return CQFile::DeleteFiles("\\proc\\self\\status"); },
         "file: CQFile::DeleteFiles: status: access denied (5)"},
        {[&] { return On("a", [&](CQFile* file) { return file->CloseTo(b + "\\x"); }); },
         "file: CQFile::CloseTo: x: bad path (3)"},
        {[&] { return CQFile::GetModuleFolder(&number).GetLength(); },
         "missing: CQFile::GetModuleFolder: no module has this address"},
        {[&] { return CQFile::GetModuleIniFile(&number) == ".ini" ? 0 : 1; },
         "missing: CQFile::GetModuleIniFile: no module has this address"},
    });
    EXPECT_EQ(CQFile().CloseTo(b), 1);
    EXPECT_EQ(Reported(), "none");
}

TEST_F(Failures, OfSharedBlocksReportNameAndNumber) {
    CMemoryMappedFile closed, block;
    CAutoLockedMemoryMappedFile locked;
    ASSERT_EQ(Line({block.Open(6, "last failure", 8), locked.Open(6, "last failure", 8)}), "1 1");
    const auto map = [](CMemoryMappedFile& mapped) { return mapped.GetDataPtr(4, 1 << 20) != nullptr; };
    EachReports({
        {[&] { return closed.Open(6, "last\\failure", 8); },
         "argument: CMemoryMappedFile::Open: failure: a backslash in the name (3)"},
        {[&] { return map(closed); }, "state: CMemoryMappedFile::GetDataPtr: no block is open"},
        {[&] { return map(block); },
         "argument: CMemoryMappedFile::GetDataPtr: last failure: more bytes than the block has (5)"},
        {[&] { return map(locked); },
         "argument: CAutoLockedMemoryMappedFile::GetDataPtr: last failure: more bytes than the block has (5)"},
        {[&] { return block.SetData(nullptr, 0, nullptr); },
         "state: CMemoryMappedFile::SetData: last failure: only written through its view (6)"},
    });
    EXPECT_NE(locked.GetDataPtr(4, 0), nullptr);
    EXPECT_EQ(Reported(), "none");
}

TEST_F(Failures, OfSealsReportWhatIsWrongWithTheSeal) {
    Made("short", "data");
    Made("plain", std::string(100, '\x7F'));
    Made("a", std::string(100, 'd'));
    const auto pack = [](CQFile* file) { return CCheckDatafile::PackNewData(file); };
    const auto read = [](CQFile* file) { return CCheckDatafile().ReadPackData(file); };
    const auto update = [](int isNew) {
        return [=](CQFile* file) { return CCheckDatafile().PackUpdateData(file, isNew); };
    };
    ASSERT_EQ(On("a", pack), 1);
    Made("renamed", folder.Read("a"));
    Made("changed", "D" + folder.Read("a").substr(1));
    EachReports({
        {[&] { return On("short", read); }, "data: CCheckDatafile::ReadPackData: short: not sealed"},
        {[&] { return On("plain", read); }, "data: CCheckDatafile::ReadPackData: plain: not sealed"},
        {[&] { return On("renamed", read); }, "data: CCheckDatafile::ReadPackData: renamed: sealed under another name"},
        {[&] { return On("changed", read); },
         "data: CCheckDatafile::ReadPackData: changed: not sealed, or changed since"},
        {[&] { return On("a", update(1)); }, "data: CCheckDatafile::PackUpdateData: a: sealed already"},
        {[&] { return On("plain", update(0)); }, "data: CCheckDatafile::PackUpdateData: plain: not sealed"},
        {[&] { return On("a", update(0), CFile::modeRead); },
         "file: CCheckDatafile::PackUpdateData: a: access denied (5)"},
        {[&] { return On("a", pack, CFile::modeRead); }, "file: CCheckDatafile::PackNewData: a: access denied (5)"},
        {[&] { return CCheckDatafile::IsPackData(nullptr); }, "argument: CCheckDatafile::IsPackData: a null pointer"},
    });
}

TEST_F(Failures, OfCabinetsReportWhatCannotBeRead) {
    const CString source = Made("source", "a version"), path = Path("c");
    CHistoryCabinetFile cabinet, closed, reading;
    ASSERT_EQ(Line({cabinet.Create(path), cabinet.RegistNewVersion(source), cabinet.Close()}), "1 1 1");
    std::string bytes = folder.Read("c");
    bytes.back() = '?';
    const CString changed = Made("changed", bytes);
    bytes[4] = '?';
    const CString damaged = Made("damaged", bytes);
    ASSERT_EQ(reading.Open(path, 1), 1);
    CHistoryCabinetFile ofChanged;
    ASSERT_EQ(ofChanged.Open(changed, 1), 1);
    const CString target = Path("target");
    EachReports({
        {[&] { return closed.Open(Path("none"), 0); }, "file: CHistoryCabinetFile::Open: none: file not found (2)"},
        {[&] { return closed.Open(source, 0); }, "file: CHistoryCabinetFile::Open: source: end of file"},
        {[&] { return closed.Open(damaged, 0); }, "data: CHistoryCabinetFile::Open: damaged: a damaged cabinet header"},
        {[&] { return closed.Create(source + "\\c"); }, "file: CHistoryCabinetFile::Create: c: bad path (3)"},
        {[&] { return closed.RegistNewVersion(source); },
         "state: CHistoryCabinetFile::RegistNewVersion: no file is open (6)"},
        {[&] { return reading.RegistNewVersion(source); },
         "file: CHistoryCabinetFile::RegistNewVersion: c: access denied (5)"},
        {[&] { return closed.GetLatestVersionFile(target); },
         "state: CHistoryCabinetFile::GetLatestVersionFile: no cabinet is open"},
        {[&] { return reading.GetVersionFile(2, target); },
         "missing: CHistoryCabinetFile::GetVersionFile: c: no such version"},
        {[&] { return reading.GetVersionFile(1, Path("no") + "\\x"); },
         "file: CHistoryCabinetFile::GetVersionFile: x: bad path (3)"},
        {[&] { return ofChanged.GetVersionFile(1, target); },
         "data: CHistoryCabinetFile::GetVersionFile: changed: the version's data are changed"},
    });
}

TEST_F(Failures, OfFormulasReportKindAndPosition) {
    CCalcVariableList list;
    CCalcVariable variable;
    variable.m_szName = "EP";
    list.AddVariableData(variable);  // 0
    CQWCalc calc;
    calc.SetCalcVarList(list);
    double result = 0;
    const auto check = [&](const std::string& formula) { return calc.CheckCalcFormula("", CString(formula)); };
    const auto compute = [&](const std::string& formula) { return calc.ConcCalculation(CString(formula), &result); };
    for (const auto& [formula, kind, text] : Cases<std::string, std::string, const char*>{
             {"1 + 2*-3", "syntax", "syntax error at 6"},
             {"(1 + EP", "syntax", "syntax error at 7"},
             {"1.2.3", "syntax", "syntax error at 3"},
             {"1 = 2", "syntax", "syntax error at 2"},
             {"2 * (EP - BLA NK)", "unknown name", "BLANK: unknown name at 10"},
             {"4 / (1 - 1) * NONE", "zero divisor", "division by zero at 2"},
             {std::string(256, '1'), "too long", "more than 255 bytes at 255"},
         }) {
        EXPECT_EQ(check(formula), 0);
        EXPECT_EQ(Reported(), kind + ": CQWCalc::CheckCalcFormula: " + text);
        EXPECT_EQ(compute(formula), 0);
        EXPECT_EQ(Reported(), kind + ": CQWCalc::ConcCalculation: " + text);
    }
    EXPECT_EQ(check("1 / EP"), 1);
    EXPECT_EQ(compute("1 / EP"), 0);
    EXPECT_EQ(Reported(), "zero divisor: CQWCalc::ConcCalculation: division by zero at 2");
    EXPECT_EQ(compute("1 + EP"), 1);
    EXPECT_EQ(Reported(), "none");
}

TEST_F(Failures, OfDocumentsReportNodeStateAndFile) {
    CCryptXMLDocument none, document, locked;
    ASSERT_EQ(document.SetXMLString("<r><a>1</a></r>"), 1);
    const CString saved = Path("saved"), plain = Made("plain", "<r>"), enciphered = Made("enciphered", "\x01garbage");
    document.SaveXMLFile(saved, 1);
    ASSERT_EQ(locked.LockFile(saved, 1, 0), 1);
    CCryptXMLDocument readsPlain;
    readsPlain.SetCryptMode(0);
    CString text;
    const auto reported = [](auto operation) {
        operation();
        return LastFailure();
    };
    EXPECT_EQ(reported([&] { readsPlain.LoadXMLFile(plain, 1); }).item, std::string(plain.View()));
    EXPECT_EQ(LastFailure().kind, FailureKind::kData);
    EXPECT_EQ(reported([&] { document.LoadXMLFile(enciphered, 1); }).kind, FailureKind::kData);
    EXPECT_EQ(none.GetTagCount("a"), -1);
    EXPECT_EQ(Reported(), "state: CCryptXMLDocument::GetTagCount: there is no document");
    EachReports({
        {[&] { return none.LoadXMLFile(Path("none"), 1); },
         "file: CCryptXMLDocument::LoadXMLFile: none: file not found (2)"},
        {[&] { return none.SaveXMLFile(Path("empty"), 1); },
         "state: CCryptXMLDocument::SaveXMLFile: empty: there is no document"},
        {[&] { return none.SetNodeText("a", "1"); }, "state: CCryptXMLDocument::SetNodeText: there is no document"},
        {[&] { return document.GetNodeText("b", text); }, "missing: CCryptXMLDocument::GetNodeText: b: no such node"},
        {[&] { return document.GetNodeXml("b", text); }, "missing: CCryptXMLDocument::GetNodeXml: b: no such node"},
        {[&] { return document.DeleteTag("b"); }, "missing: CCryptXMLDocument::DeleteTag: b: no such node"},
        {[&] { return document.LockCommit(); }, "state: CCryptXMLDocument::LockCommit: no file is locked"},
        {[&] { return document.LockRollback(); }, "state: CCryptXMLDocument::LockRollback: no file is locked"},
        {[&] { return locked.LockFile(saved, 1, 0); },
         "state: CCryptXMLDocument::LockFile: saved: a file is locked already"},
        {[&] { return locked.SetCryptMode(0), locked.LoadXMLFile(saved, 1); },
         "state: CCryptXMLDocument::LoadXMLFile: saved: a file is locked already"},
    });
}

TEST_F(Failures, OfSettingsReportEntryAndPlace) {
    const RegistryScope registry;
    CPrivateProfile ini(Path("a.ini")), noFile(Path("d.ini")), missing(Path("no") + "\\a.ini"), nowhere,
        keys("HKEY_CURRENT_USER\\Meter", 1);
    ASSERT_EQ(Line({ini.Set("s", "k", "v"), keys.Set("s", "k", "v")}), "1 1");
    std::filesystem::create_directory(folder.Posix("d.ini"));
    DWORD size = 1;
    char bytes[1] = {};
    CStringArray list;
    qel::RegistryValue value;
    EachReports({
        {[&] { return ini.Set("s", "k", "two\nlines"); },
         "argument: CPrivateProfile::Set: a.ini: a name or text that the file cannot hold"},
        {[&] { return missing.Set("s", "k", "v"); }, "file: CPrivateProfile::Set: a.ini: bad path (3)"},
        {[&] { return nowhere.Set("s", "k", "v"); }, "state: CPrivateProfile::Set: no profile is open"},
        {[&] { return nowhere.Open("HKEY_NONE\\x", 1); },
         "argument: CPrivateProfile::Open: x: not below a root of the registry"},
        {[&] { return ini.SetDouble("s", "k", 1.0 / 0.0); },
         "argument: CPrivateProfile::SetDouble: k: infinite or not a number"},
        {[&] { return ini.Get("s", "none", 0); }, "missing: CPrivateProfile::Get: none: not in the file"},
        {[&] { return missing.Get("s", "k", 0); }, "missing: CPrivateProfile::Get: k: file not found (2)"},
        {[&] { return noFile.Get("s", "k", 0); }, "data: CPrivateProfile::Get: d.ini: not an ordinary file"},
        {[&] { return ini.Get("s", "k", bytes, &size); }, "state: CPrivateProfile::Get: only in the registry"},
        {[&] { return ini.Delete("s"); }, "state: CPrivateProfile::Delete: only in the registry"},
        {[&] { return keys.GetAllStrings("s", list); }, "state: CPrivateProfile::GetAllStrings: only of an INI file"},
        {[&] { return keys.Get("s", "none", 0); }, "missing: CPrivateProfile::Get: none: no such key or value (2)"},
        {[&] { return keys.Get("s", "k", 0); }, "data: CPrivateProfile::Get: k: not a value of this type"},
        {[&] { return ini.GetDouble("s", "k", 0) > 0; },
         "data: CPrivateProfile::GetDouble: k: not a value of this type"},
        {[&] { return nowhere.Get("s", "k", 0); }, "state: CPrivateProfile::Get: no profile is open"},
        {[&] { return keys.Delete("none"); }, "missing: CPrivateProfile::Delete: none: no such key or value (2)"},
        {[&] { return keys.Restore(".none"); },
         "missing: CPrivateProfile::Restore: Meter.none: no such key or value (2)"},
        {[&] { return CSystemSetting(nullptr).GetUserInfo("x", nullptr); },
         "state: CSystemSetting::GetUserInfo: no connection to a user store"},
        {[&] { return qel::ReadRegistryValue(HKEY_CURRENT_USER, "Meter\\s", "none", value) == 0; },
         "missing: qel::ReadRegistryValue: none: no such key or value (2)"},
        {[&] { return qel::DeleteRegistryTree(HKEY_CURRENT_USER, "") == 0; },
         "registry: qel::DeleteRegistryTree: access denied (5)"},
        {[&] { return keys.Backup(""); }, "argument: CPrivateProfile::Backup: names no key beside a profile's own"},
    });
    keys.Get("s", "k", "");
    EXPECT_EQ(Reported(), "none");
}

TEST_F(Failures, OfJobsPicturesAndPrintersReportFileAndPrinter) {
    Made("f", "");
    const EnvironmentScope server("CUPS_SERVER", "127.0.0.1:1"), pdf("QELLIB10_PDF_DIR", folder.Posix("f").c_str());
    CQelPrintJobQueueData job, other;
    other.GetPageStyle().SetPaperForm(8);
    CQelPrintJobDocumentData document;
    ASSERT_EQ(document.CheckAndAddJobFile(job), 1);
    CBitmap bitmap;
    bitmap.CreateBitmap(1, 1, 1, 32, nullptr);
    HANDLE printer = nullptr;
    CDC paper;
    ASSERT_TRUE(paper.CreateDC(nullptr, "PDF", nullptr, nullptr));
    CBackBufferDC back;
    ASSERT_EQ(back.Create(1, 1, nullptr), 1);
    CPoint point;
    CQelPrintJobPageStyle style;
    style.SetPrinterDevice("none");
    CQelPrintJobQueueData styled;
    styled.GetPageStyle() = style;
    CQelGraph graph;
    CPrintDialog dialog(0);
    const CString nowhere = Path("no") + "\\x";
    const auto isNull = [](HDC dc) { return dc == nullptr ? 0 : 1; };
    const auto step = [](int result) { return result > 0 ? 1 : 0; };
    EachReports({
        {[&] { return job.LoadJobFile(Path("none")); },
         "file: CQelPrintJobQueueData::LoadJobFile: none: file not found (2)"},
        {[&] { return job.SaveJobFile(nowhere); }, "file: CQelPrintJobQueueData::SaveJobFile: x: bad path (3)"},
        {[&] { return document.CheckAndAddJobFile(Path("none")); },
         "file: CQelPrintJobDocumentData::CheckAndAddJobFile: none: file not found (2)"},
        {[&] { return document.CheckAndAddJobFile(other); },
         "data: CQelPrintJobDocumentData::CheckAndAddJobFile: the job has another page style"},
        {[&] { return document.PrintOut(); },
         "printer: CQelPrintJobDocumentData::PrintOut: the print server does not respond"},
        {[&] { return qel::SavePng(bitmap, nowhere, 96); }, "file: qel::SavePng: x: bad path (3)"},
        {[&] { return qel::SavePng(CBitmap(), nowhere, 96); }, "state: qel::SavePng: no bitmap"},
        {[&] {
             return isNull(qel::CreateSvgDC(nowhere, {0, 1}, 96));
         },
         "argument: qel::CreateSvgDC: a null pointer, or a size or resolution that cannot be drawn on"},
        {[&] { return OpenPrinter("none", &printer, nullptr); },
         "printer: OpenPrinter: none: the print server does not respond"},
        {[&] { return GetPrinter(nullptr, 1, nullptr, 0, &thePrinterNeeds); }, "argument: GetPrinter: no open printer"},
        {[&] { return isNull(CreateDC(nullptr, "none", nullptr, nullptr)); },
         "printer: CreateDC: none: the print server does not respond"},
        {[&] { return paper.CreateDC(nullptr, "PDF", nullptr, nullptr); },
         "state: CDC::CreateDC: it has a device context already"},
        {[&] { return CDC().CreateDC(nullptr, "none", nullptr, nullptr); },
         "printer: CDC::CreateDC: none: the print server does not respond"},
        {[&] { return CBitmap().CreateBitmap(0, 1, 1, 32, nullptr); },
         "argument: CBitmap::CreateBitmap: a size that no bitmap has"},
        {[&] { return bitmap.CreateBitmap(1, 1, 1, 32, nullptr); },
         "state: CBitmap::CreateBitmap: it has a handle already"},
        {[&] { return static_cast<int>(CBitmap().GetBitmapBits(4, &thePrinterNeeds)); },
         "state: CBitmap::GetBitmapBits: no bitmap"},
        {[] { return CPen().CreatePenIndirect(nullptr); }, "argument: CPen::CreatePenIndirect: a null pointer"},
        {[&] { return paper.BitBlt(0, 0, 1, 1, &paper, 0, 0); }, "state: CDC::BitBlt: the source has no pixels"},
        {[] { return qel::FlushDC(nullptr); }, "argument: qel::FlushDC: not a device context"},
        {[&] { return step(paper.AbortDoc()); }, "state: CDC::AbortDoc: no document is open"},
        {[&] { return back.Create(1, 1, nullptr); }, "state: CBackBufferDC::Create: it was created already"},
        {[] { return CBackBufferDC().FillSolidRect(nullptr, 0); },
         "state: CBackBufferDC::FillSolidRect: it was not created"},
        {[&] { return qel::DrawPagePicture(bitmap, paper, 0, [](CDC&) { return true; }); },
         "argument: qel::DrawPagePicture: a resolution that is not from 1 to 9600 dots per inch"},
        {[&] { return qel::DrawPagePicture(bitmap, paper, 9, [](CDC&) { return false; }); },
         "refused: qel::DrawPagePicture: the caller's drawing failed"},
        {[&] { return CBackBufferDC().Resize(1, 1); }, "state: CBackBufferDC::Resize: it was not created"},
        {[&] { return other.GetPageStyle().GetPrinterFromDC(nullptr, nullptr); },
         "printer: CQelPrintJobPageStyle::GetPrinterFromDC: the printer has no settings"},
        {[&] { return style.ConvertMillimetreToPixel(point); },
         "state: CQelPrintJobPageStyle::ConvertMillimetreToPixel: the page style has no resolution"},
        {[&] { return style.MovePrinterDC(style); },
         "state: CQelPrintJobPageStyle::MovePrinterDC: no printer is selected"},
        {[&] { return style.SelectPrinter(); },
         "state: CQelPrintJobPageStyle::SelectPrinter: the application has no print dialog"},
        {[&] { return isNull(style.GetPrinterDC()); },
         "printer: CQelPrintJobPageStyle::GetPrinterDC: none: the print server does not respond"},
        {[&] { return graph.GetPrintJob(&styled, {}, nullptr); },
         "printer: CQelGraph::GetPrintJob: none: the print server does not respond"},
        {[&] { return document.AbortPrintOut(); },
         "state: CQelPrintJobDocumentData::AbortPrintOut: no printer is selected"},
        {[&] { return document.PrintOutMain(nullptr, 1, 0); },
         "data: CQelPrintJobDocumentData::PrintOutMain: no such unit, or a context without a resolution"},
        {[&] { return dialog.SelectPrinter("none"); },
         "printer: CPrintDialog::SelectPrinter: none: the print server does not respond"},
        {[&] { return isNull(dialog.CreatePrinterDC()); },
         "printer: CPrintDialog::CreatePrinterDC: the print server does not respond"},
        {[&] { return step(paper.EndPage()); }, "state: CDC::EndPage: not the next step of a document"},
        {[&] { return step(paper.StartDoc("x")); }, "file: CDC::StartDoc: f: bad path (3)"},
    });
}

TEST_F(Failures, AReplacedSheetIsNotAFailure) {
    for (const auto& [form, isOther] : Cases<short, bool>{
             {0, false},
             {DMPAPER_A4, false},
             {9999, true},
         }) {
        DEVMODE mode{};
        mode.dmFields = DM_PAPERSIZE;
        mode.dmPaperSize = form;
        const HDC dc = CreateDC(nullptr, "PDF", nullptr, &mode);
        EXPECT_EQ(qel::HasOtherSheet(dc), isOther) << form;
        EXPECT_EQ(Reported(), "none");
        DeleteDC(dc);
    }
    EXPECT_FALSE(qel::HasOtherSheet(nullptr));
}
