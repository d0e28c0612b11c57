#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "../support/canvas.h"
#include "../support/cases.h"
#include "../support/child_process.h"
#include "../support/failing_memory.h"
#include "../support/interrupted.h"
#include "qellib10/calc/calc_variable_list.h"
#include "qellib10/calc/qw_calc.h"
#include "qellib10/file/check_datafile.h"
#include "qellib10/file/log.h"
#include "qellib10/file/private_profile.h"
#include "qellib10/platform/drawing/file_dc.h"
#include "qellib10/platform/error.h"
#include "qellib10/platform/storage/whole_file.h"
#include "qellib10/print/document_data.h"
#include "qellib10/print/queue_data.h"
#include "qellib10/runtime/check_repeat_exec.h"
#include "qellib10/runtime/memory_mapped_file.h"
#include "qellib10/secure/crypt_xml_document.h"
#include "qellib10/secure/history_cabinet_file.h"

// Operations of the classes that throw nothing, while memory runs out.

namespace {

using Step = std::function<int()>;

std::string Target(At at) { return at.Read("c"); }  // the next writer removes what was written beside
std::string Anything(At) { return ""; }             // a part may be done
std::string Kept(At at) { return Bytes(at).find("new") != std::string::npos ? "kept" : "lost"; }

// Everything that a call needs is there before it, and lives on after it.
struct Call {
    const char* name;
    std::function<Step(At)> prepare;
    std::function<std::string(At)> state = Sizes;  // as before the call, or as after it
};
void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }
std::string NameOfCall(const testing::TestParamInfo<Call>& call) { return call.param.name; }

template <class Object, class Ask> Step On(const std::shared_ptr<Object>& object, Ask ask) {
    return [=] { return ask(*object); };
}

auto Opened(const CString& path) {
    auto file = std::make_shared<CQFile>();
    file->Open(path, CFile::modeReadWrite);
    return file;
}
auto SealedFile(At at) {
    auto file = Opened(at.a);
    CCheckDatafile::PackNewData(file.get());
    return file;
}
std::string Seals(At at) {
    CCheckDatafile seal;
    CQFile file;
    const bool isSealed = file.Open(at.a, CFile::modeRead) && seal.ReadPackData(&file);
    return Sizes(at) + (isSealed ? std::to_string(seal.GetVersion()) : "none");
}
template <class Ask> std::function<Step(At)> WithSeal(Ask ask) {
    return [=](At at) { return On(SealedFile(at), ask); };
}

std::shared_ptr<CCryptXMLDocument> theDocument;  // the one of the last call
auto Document(int crypt) {
    theDocument = std::make_shared<CCryptXMLDocument>();
    theDocument->SetXMLString("<r a='1'><b>text &amp; more</b><c/></r>");
    theDocument->SetCryptMode(crypt);
    return theDocument;
}
// @p ask gets a document and the name of a file that holds another one.
template <int kCrypt, class Ask> std::function<Step(At)> WithXml(Ask ask) {
    return [=](At at) {
        auto document = Document(kCrypt);
        document->SaveXMLFile(at.c, 1);
        document->SetXMLString("<s><b>own</b></s>");
        return [=, path = at.c] { return ask(*document, path); };
    };
}
std::string TextInMemory(At) { return std::string(theDocument->GetXMLString().View()); }
// A text that is not taken may leave no document.
std::string TextIfLoaded(At at) {
    const std::string text = TextInMemory(at);
    return text.find("own") == std::string::npos ? text : "";
}
std::string TextOnDisk(At at) {
    CCryptXMLDocument document;
    return document.LoadXMLFile(at.c, 1) ? std::string(document.GetXMLString().View()) : "damaged";
}
std::string Free(At at) {
    CFile file;
    return file.Open(at.c, CFile::modeReadWrite | CFile::shareExclusive) ? "free" : "held";
}

auto Cabinet(At at, int versions) {
    auto cabinet = std::make_shared<CHistoryCabinetFile>();
    cabinet->Create(at.c);
    for (int version = 0; version < versions; ++version) cabinet->RegistNewVersion(at.b);
    return cabinet;
}
template <int kVersions, class Ask> std::function<Step(At)> WithCabinet(Ask ask) {
    return [=](At at) {
        return [=, cabinet = Cabinet(at, kVersions), a = at.a, path = at.c] { return ask(*cabinet, a, path); };
    };
}
// The copy of a failed registration may be there.
std::string Versions(At at) {
    const auto size = std::filesystem::exists(at.Posix("c")) ? std::filesystem::file_size(at.Posix("c")) : 0;
    CHistoryCabinetFile cabinet;
    const bool isWhole = size == 0 || (cabinet.Open(at.c, 1) && cabinet.GetLatestVersionFile(at.b));
    return std::to_string(size) + (isWhole ? " whole" : "") + at.Read("b");
}

auto Job() {
    auto job = std::make_shared<CQelPrintJobQueueData>();
    job->AddMillimetreCommandText(CRect(1, 2, 3, 4), "text", 1);
    return job;
}

// A document that has a job, and the folder that it is printed into.
struct Report {
    explicit Report(At at)
        : server("CUPS_SERVER", at.Posix("no").c_str()), target("QELLIB10_PDF_DIR", at.Posix().c_str()) {
        CQelPrintJobQueueData job;
        job.GetPageStyle().SetPrinterDevice("PDF");
        job.GetPageStyle().SetStyleName("report");
        job.AddMillimetreCommandText(CRect(10, 20, 300, 40), "text", 1);
        job.SaveJobFile(at.c);
        document.CheckAndAddJobFile(job);
        document.SetPdfInfo(qel::PdfInfo{"", "a name that does not fit into the object", "", {}});
    }
    EnvironmentScope server, target;
    CQelPrintJobDocumentData document;
};
std::shared_ptr<Report> theReport;  // the one of the last call
template <class Ask> std::function<Step(At)> WithReport(Ask ask) {
    return [=](At at) {
        theReport.reset();
        theReport = std::make_shared<Report>(at);
        return [ask, path = at.c] { return ask(theReport->document, path); };
    };
}
std::string PrintedOrAdded(At at) {
    const std::string state = Names(at) + std::to_string(theReport->document.GetBlockCount());
    theReport.reset();
    return state;
}

auto Calculator() {
    CCalcVariableList list;
    CCalcVariable variable;
    variable.m_szName = "EP";
    variable.m_dValue = 16.519;
    list.AddVariableData(variable);
    auto calculator = std::make_shared<CQWCalc>();
    calculator->SetCalcVarList(list);
    return calculator;
}

// The mark and the block are those of this program while it has them; another run of it has others.
const std::string theShared = "a name that does not fit into the object " + std::to_string(::getpid());
std::string IsMarked(At) { return CCheckRepeatExec().CheckRepeatExecute(theShared.c_str()) != 0 ? "marked" : "free"; }
template <class Kind> auto Block(DWORD size) {
    auto block = std::make_shared<Kind>();
    if (size != 0) block->Open(6, theShared.c_str(), size);
    return block;
}

Step Log(At at) {
    at.Write("c", "line\n");
    CLog::SetLogFile(at.c);
    return [path = at.Posix("c").native()] {
        CLog::LogOut(0, "a message that does not fit into the object", "bytes", 5);
        struct stat status = {};
        return ::stat(path.c_str(), &status) == 0 && status.st_size > 5 ? 1 : 0;
    };
}
std::string LogSize(At at) {
    CLog::SetLogFile(nullptr);
    return Sizes(at);
}

template <class Ask> std::function<Step(At)> WithNames(Ask ask) {
    return [=](At at) { return [=, a = at.a, c = at.c, tree = at.tree] { return ask(a, c, tree); }; };
}
auto Profile(const CString& location, int mode) { return std::make_shared<CPrivateProfile>(location, mode); }
template <class Ask> std::function<Step(At)> WithIni(Ask ask) {
    return [=](At at) {
        at.Write("c", "[s]\nk=1\n");
        return On(Profile(at.c, CPrivateProfile::iniMode), ask);
    };
}
template <class Ask> std::function<Step(At)> WithRegistry(Ask ask) {
    return [=](At) {
        auto profile = Profile("HKEY_CURRENT_USER\\k", CPrivateProfile::registryMode);
        profile->Set("s", "k", "1");
        return On(profile, ask);
    };
}
std::string ValuesOf(At at) {
    std::string values = at.Read("c");
    for (const char* key : {"HKEY_CURRENT_USER\\k", "HKEY_CURRENT_USER\\k.bak"})
        values += Profile(key, CPrivateProfile::registryMode)->Get("s", "k", "-").View();
    return values;
}

using Doc = CCryptXMLDocument;
using History = CHistoryCabinetFile;
using Settings = CPrivateProfile;

const Call kCalls[] = {
    {"Seal", [](At at) { return On(Opened(at.a), [](CQFile& f) { return CCheckDatafile::PackNewData(&f); }); }, Seals},
    {"SealAgain", WithSeal([](CQFile& f) { return CCheckDatafile().PackUpdateData(&f, 0); }), Seals},
    {"SealRead", WithSeal([](CQFile& f) { return CCheckDatafile().ReadPackData(&f); }), Seals},
    {"SealCheck", WithSeal([](CQFile& f) { return CCheckDatafile::IsPackData(&f); }), Seals},
    {"FileCompare", WithNames([](auto& a, auto&, auto&) { return CQFile::CompareFile(a, a); })},
    {"FileCrc", WithNames([](auto& a, auto&, auto&) {
         DWORD crc;
         return CQFile::GetFileCRC(a, &crc, 0);
     })},
    {"FileFind", [](At at) { return On(Opened(at.a), [](CQFile& f) { return f.Find("w", 1); }); }},
    {"FileIsFree", WithNames([](auto& a, auto&, auto&) { return CQFile::IsCanOverwrite(a); })},
    {"FileMove", WithNames([](auto& a, auto& c, auto&) { return CQFile::MoveFileA(a, c, 0); }), Kept},
    {"FileMoveAtRestart",
     WithNames([](auto& a, auto& c, auto&) { return CQFile::MoveFileReboot(a, c, nullptr, 0) >= 0; }), Kept},
    {"FileDelete", WithNames([](auto& a, auto&, auto&) { return CQFile::DeleteFileReboot(a, 1) >= 0; }), Anything},
    {"FileTemporary",
     [](At) { return On(std::make_shared<CQFile>(), [](CQFile& f) { return f.CreateTempFile("t", 0); }); },
     [](At at) { return std::to_string(at.Count()); }},
    {"FileFolders", WithNames([](auto&, auto&, auto& tree) { return CQFile::CreateDirectories(tree); }), Anything},
    {"FileClosed", [](At at) { return On(Opened(at.a), [c = at.c](CQFile& f) { return f.CloseTo(c); }); }, Kept},
    {"IniSet", WithIni([](Settings& p) { return p.Set("s", "k", "2"); }), ValuesOf},
    {"IniGet", WithIni([](Settings& p) { return p.Get("s", "k", 0); }), ValuesOf},
    {"RegistrySet", WithRegistry([](Settings& p) { return p.Set("s", "k", "2"); }), ValuesOf},
    {"RegistryGet", WithRegistry([](Settings& p) {
         char b[9];
         DWORD n = 9;
         return p.Get("s", "k", b, &n);
     }),
     ValuesOf},
    {"RegistryBackup", WithRegistry([](Settings& p) { return p.Backup(".bak"); }), ValuesOf},
    {"RegistryDelete", WithRegistry([](Settings& p) { return p.Delete("s"); }), ValuesOf},
    {"XmlLoad", WithXml<1>([](Doc& d, auto& path) { return d.LoadXMLFile(path, 1); }), TextIfLoaded},
    {"XmlLoadPlain", WithXml<0>([](Doc& d, auto& path) { return d.LoadXMLFile(path, 1); }), TextIfLoaded},
    {"XmlSave", WithXml<1>([](Doc& d, auto& path) { return d.SaveXMLFile(path, 1); }), TextOnDisk},
    {"XmlSavePlain", WithXml<0>([](Doc& d, auto& path) { return d.SaveXMLFile(path, 1); }), TextOnDisk},
    {"XmlLock", WithXml<1>([](Doc& d, auto& path) { return d.LockFile(path, 1, 0); }), Free},
    {"XmlLockCommit",
     WithXml<0>([](Doc& d, auto& path) { return d.LockFile(path, 1, 0) && d.DeleteTag("b") && d.LockCommit(); }),
     TextOnDisk},
    {"XmlSetText", WithXml<1>([](Doc& d, auto&) { return d.SetNodeText("b", "text"); }), TextInMemory},
    {"XmlCount", WithXml<1>([](Doc& d, auto&) { return static_cast<int>(d.GetTagCount("b")) + 1; }), TextInMemory},
    {"XmlDelete", WithXml<1>([](Doc& d, auto&) { return d.DeleteTag("b"); }), TextInMemory},
    {"CabinetFirst", WithCabinet<0>([](History& h, auto& a, auto&) { return h.RegistNewVersion(a); }), Versions},
    {"CabinetNext", WithCabinet<1>([](History& h, auto& a, auto&) { return h.RegistNewVersion(a); }), Versions},
    {"CabinetTakeOut", WithCabinet<2>([](History& h, auto& a, auto&) { return h.GetVersionFile(2, a); }), Versions},
    {"CabinetOpen", WithCabinet<1>([](History& h, auto&, auto& c) { return h.Open(c, 1); }), Versions},
    {"CabinetCreate",
     [](At at) { return On(std::make_shared<History>(), [c = at.c](History& h) { return h.Create(c); }); }, Versions},
    {"JobText", [](At) { return On(Job(), [](auto& j) { return j.AddMillimetreCommandText(CRect(), "t", 1); }); }},
    {"JobSave", [](At at) { return On(Job(), [c = at.c](auto& j) { return j.SaveJobFile(c); }); }, Target},
    {"JobLoad",
     [](At at) {
         Job()->SaveJobFile(at.c);
         return On(Job(), [c = at.c](auto& j) { return j.LoadJobFile(c); });
     }},
    {"ReportAdd", WithReport([](auto& r, auto& c) { return r.CheckAndAddJobFile(c); }), PrintedOrAdded},
    {"ReportPrint", WithReport([](auto& r, auto&) { return r.PrintOut(); }), PrintedOrAdded},
    {"ReportContext", WithReport([](auto& r, auto&) { return ::DeleteDC(r.GetPageStyle().GetPrinterDC()); }),
     PrintedOrAdded},
    {"FormulaCheck", [](At) { return On(Calculator(), [](auto& c) { return c.CheckCalcFormula("", "ep*2+1"); }); }},
    {"FormulaValue",
     [](At) {
         return On(Calculator(), [](auto& c) {
             double value;
             return c.ConcCalculation("ep*2", &value);
         });
     }},
    {"BlockOpen",
     [](At) { return On(Block<CMemoryMappedFile>(0), [](auto& b) { return b.Open(6, theShared.c_str(), 8); }); }},
    {"BlockView",
     [](At) { return On(Block<CMemoryMappedFile>(8), [](auto& b) { return b.GetDataPtr(2, 0) != nullptr; }); }},
    {"BlockLocked",
     [](At) {
         return On(Block<CAutoLockedMemoryMappedFile>(8), [](auto& b) { return b.GetDataPtr(2, 0) != nullptr; });
     }},
    {"InstanceMark",
     [](At) {
         return On(std::make_shared<CCheckRepeatExec>(),
                   [](auto& c) { return !c.CheckRepeatExecute(theShared.c_str()); });
     },
     IsMarked},
    {"LogLine", Log, LogSize},
};

class ShortMemory : public testing::TestWithParam<Call> {
protected:
    // The state after the call with one allocation failing; @p number 0: none, -1: without the call.
    std::string StateAfter(int number) {
        const Place place;
        const Step step = GetParam().prepare(place);
        FailAllocation(number < 0 ? 0 : number);
        m_done = number < 0 ? 0 : step();
        m_left = AllocationsLeft();
        FailAllocation(0);
        return GetParam().state(place);
    }

    int m_done = 0, m_left = 0;
};

}  // namespace

TEST_P(ShortMemory, IsAFailureThatLeavesTheOldOrTheNew) {
    const std::string before = StateAfter(-1), after = StateAfter(0);
    ASSERT_NE(m_done, 0);
    int number = 0;
    do {
        SCOPED_TRACE(++number);
        const std::string now = StateAfter(number);
        EXPECT_TRUE(now == after || (m_done == 0 && now == before)) << m_done << '\n' << now;
        EXPECT_TRUE(m_done != 0 || m_left == 0);
    } while (m_left == 0);
    EXPECT_GT(number, 1);
}
INSTANTIATE_TEST_SUITE_P(System, ShortMemory, testing::ValuesIn(kCalls), NameOfCall);

TEST(ShortMemory, AnAssignedListIsTheOldOrTheNew) {
    const auto made = [](std::initializer_list<const char*> names) {
        CCalcVariableList list;
        CCalcVariable variable;
        for (const char* name : names) {
            variable.m_szName = name;
            variable.m_dValue = static_cast<double>(names.size());
            list.AddVariableData(variable);
        }
        list.DeleteVariableAtName("none");  // it has looked for a name, so its index is there
        return list;
    };
    const CCalcVariableList other = made({"a", "b", "c"});
    int number = 0, left = 0;
    do {
        SCOPED_TRACE(++number);
        CCalcVariableList list = made({"b", "a"});
        double expected = 3;
        FailAllocation(number);
        try {
            list = other;
        } catch (const std::bad_alloc&) {
            expected = 2;
        }
        left = AllocationsLeft();
        FailAllocation(0);
        CCalcVariable found;
        EXPECT_EQ(list.GetVariableDataAtName("a", &found), 1);
        EXPECT_EQ(found.m_dValue, expected);
    } while (left == 0);
    EXPECT_GT(number, 1);
}

struct ChoosesPdf : qel::PrintDialogProvider {
    ChoosesPdf() { qel::SetPrintDialogProvider(this); }
    ~ChoosesPdf() override { qel::SetPrintDialogProvider(nullptr); }
    std::optional<qel::PrintChoice> Choose(const qel::PrintDialogRequest&) override {
        return qel::PrintChoice{"PDF", std::nullopt};
    }
};

TEST(ShortMemory, APrinterIsSelectedWheneverItSaysSo) {
    const ChoosesPdf provider;
    const Place place;
    int number = 0, left = 0;
    do {
        SCOPED_TRACE(++number);
        Report report(place);
        CQelPrintJobPageStyle& style = report.document.GetPageStyle();
        FailAllocation(number);
        const int done = style.SelectPrinter();
        left = AllocationsLeft();
        FailAllocation(0);
        EXPECT_EQ(style.GetSelectedPrinterDC() != nullptr, done != 0);
    } while (left == 0);
    EXPECT_GT(number, 1);
}

// A document that memory ran out for blocks the selected context until it is aborted.
TEST(ShortMemory, ASelectedPrinterIsUsableAgainOnceTheDocumentIsAborted) {
    const ChoosesPdf provider;
    const Place place;
    int number = 0, left = 0, aborted = 0;
    do {
        SCOPED_TRACE(++number);
        Report report(place);
        CQelPrintJobDocumentData& document = report.document;
        FailAllocation(number);
        int done = document.GetPageStyle().SelectPrinter() && document.PrintOut();
        left = AllocationsLeft();
        FailAllocation(0);
        if (document.GetPageStyle().GetSelectedPrinterDC() == nullptr) done = document.GetPageStyle().SelectPrinter();
        if (done == 0) aborted += document.AbortPrintOut();
        EXPECT_EQ(document.PrintOut(), 1);
        EXPECT_EQ(document.AbortPrintOut(), 0);
        std::filesystem::remove(place.Posix("report.pdf"));
        std::filesystem::remove(place.Posix("report (2).pdf"));
    } while (left == 0);
    EXPECT_GT(aborted, 1);
}

TEST(ShortMemory, WideLinesHeldBackAreDrawnWithoutIt) {
    for (const auto& [penWidth, x] : Cases<int, int>{
             {3, 20},
             {9, 0},  // the clip cuts the pen off
             {40, 20},
         }) {
        SCOPED_TRACE(penWidth);
        Canvas canvas;
        CPen pen(PS_SOLID, penWidth, kRed);
        canvas.dc.SelectObject(&pen);
        canvas.dc.MoveTo(x, 5);
        canvas.dc.LineTo(x, 15);
        FailAllocation(1);
        canvas.dc.DeleteDC();
        FailAllocation(0);
        canvas.dc.CreateCompatibleDC(nullptr);
        canvas.dc.SelectObject(&canvas.bitmap);
        EXPECT_EQ(canvas.At(x, 10), kRed);
    }
}

TEST(ShortMemory, AContextOfADocumentEndsWithItsLinesOrWithoutThem) {
    int number = 0, left = 0;
    do {
        CDC dc;
        ASSERT_TRUE(dc.Attach(qel::CreatePdfDC("unused", {})));
        dc.StartDoc("lines");
        dc.StartPage();
        dc.MoveTo(5, 5);
        for (const int y : {20, 2, 10}) dc.LineTo(5, y);
        FailAllocation(++number);
        dc.DeleteDC();
        left = AllocationsLeft();
        FailAllocation(0);
    } while (left == 0);
    EXPECT_GT(number, 1);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // these need all the addresses that there are
TEST(ShortMemory, FilesThatItDoesNotHoldAreRefused) {
    const Place place;
    const std::string huge = place.Posix("c");
    place.Write("c", std::string(1, '\0'));
    std::filesystem::resize_file(huge, std::uint64_t{1900} << 20);  // a hole
    const auto inOneGiB = [&](const std::function<int()>& body) {
        return InChild([&] {
            const rlimit limit = {1 << 30, 1 << 30};
            return ::setrlimit(RLIMIT_AS, &limit) == 0 ? body() : 98;
        });
    };
    for (const int crypt : {0, 1}) {
        EXPECT_EQ(inOneGiB([&] { return Document(crypt)->LoadXMLFile(place.c, 1); }), 0) << crypt;
        EXPECT_EQ(inOneGiB([&] {
                      const auto document = Document(crypt);
                      EXPECT_EQ(document->LockFile(place.c, 1, 0), 0);
                      EXPECT_EQ(Free(place), "free");
                      return testing::Test::HasFailure() ? 1 : 0;
                  }),
                  0)
            << crypt;
    }
    EXPECT_EQ(inOneGiB([&] { return Job()->LoadJobFile(place.c); }), 0);
    EXPECT_EQ(inOneGiB([&] {
                  try {
                      return static_cast<int>(qel::ReadWholeFile(place.c).size());
                  } catch (const qel::DataError&) {  // it has not tried
                      return 0;
                  }
              }),
              0);
}
#endif
