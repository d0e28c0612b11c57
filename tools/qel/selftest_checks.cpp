#include "selftest_checks.h"

#include <fstream>
#include <iterator>

namespace tool {
namespace {

std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteAll(const std::string& path, std::string_view bytes) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << bytes) || !file.flush()) throw Failure(Shown(path) + ": cannot be written", kFailed);
}

std::string Computed(const char* formula, std::vector<std::pair<const char*, double>> values) {
    CCalcVariableList list;
    for (const auto& [name, value] : values) {
        CCalcVariable variable;
        variable.m_szName = name;
        variable.m_dValue = value;
        list.AddVariableData(variable);
    }
    CQWCalc calculator;
    calculator.SetCalcVarList(list);
    double result = 0;
    if (calculator.ConcCalculation(formula, &result) == 0) return qel::FormulaSentence(formula, qel::LastFailure());
    return std::string(CQVariant::DoubleToStr(result, 4, 0));
}

std::string FoundEndPoint() {
    qel::TitrationCurve curve;
    curve.volume = {0, 1, 2, 3, 4, 4.5, 5, 5.5, 6, 7, 8, 9, 10};
    curve.signal = {2.9, 3.0, 3.2, 3.4, 3.7, 4.1, 7.0, 9.9, 10.3, 10.6, 10.8, 11.0, 11.1};
    return Guarded([&] { return std::string(CQVariant::DoubleToStr(qel::FindEndPoint(curve).volume, 2, 0)); });
}

int ReadSeal(const std::string& path) {
    CQFile file;
    Open(file, path, CFile::modeRead | CFile::shareDenyNone);
    CCheckDatafile seal;
    return seal.ReadPackData(&file);
}

// Each bit of a sealed file changed in turn.
std::string Sealed(const std::string& path) {
    WriteAll(path, "chloride 35.1 mg/L");
    {
        CQFile file;
        Open(file, path, CFile::modeReadWrite | CFile::shareExclusive);
        if (CCheckDatafile::PackNewData(&file) == 0) throw Failure(Why("cannot be sealed"));
    }
    if (ReadSeal(path) == 0) return "a whole file is refused";
    const std::string whole = ReadAll(path);
    std::size_t unnoticed = 0;
    for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
        std::string changed = whole;
        changed[bit / 8] ^= static_cast<char>(1 << bit % 8);
        WriteAll(path, changed);
        unnoticed += ReadSeal(path) != 0 ? 1 : 0;
    }
    WriteAll(path, whole);
    return std::to_string(unnoticed) + " of the changed bits were not noticed";
}

std::string Versions(const std::string& folder) {
    const std::string source = folder + "/version", target = folder + "/taken";
    CHistoryCabinetFile cabinet;
    if (cabinet.Create(Path(folder + "/cabinet.hcf")) == 0) throw Failure(Why("the cabinet is not made"));
    for (const char* const text : {"first", "second", "third"}) {
        WriteAll(source, text);
        if (cabinet.RegistNewVersion(Path(source)) == 0) throw Failure(Why("a version is not registered"));
    }
    std::string found;
    for (DWORD version = 1; version <= cabinet.GetLatestVersion(); ++version) {
        if (cabinet.GetVersionFile(version, Path(target)) == 0) throw Failure(Why("a version is not taken out"));
        found += ReadAll(target) + ' ';
    }
    cabinet.Close();
    std::string damaged = ReadAll(folder + "/cabinet.hcf");
    damaged.back() ^= 1;
    WriteAll(folder + "/cabinet.hcf", damaged);
    const bool isNoticed =
        cabinet.Open(Path(folder + "/cabinet.hcf"), 1) == 0 || cabinet.GetVersionFile(3, Path(target)) == 0;
    return found + (isNoticed ? "damage noticed" : "damage not noticed");
}

std::string Document(const std::string& path) {
    CCryptXMLDocument document, read;
    if (document.LockFile(Path(path), 0, 1) == 0 || document.SetXMLString("<Method/>") == 0 ||
        document.SetNodeText("EndPoint/Limit", "8.2 secret") == 0 || document.LockCommit() == 0)
        throw Failure(Why("the document is not saved"));
    CString text;
    if (read.LoadXMLFile(Path(path), 0) == 0) throw Failure(Why("the document is not read"));
    read.GetNodeText("EndPoint/Limit", text);
    const bool isPlain = ReadAll(path).find("secret") != std::string::npos;
    return std::string(text) + (isPlain ? ", readable" : ", enciphered");
}

std::string Locked(const std::string& path) {
    WriteAll(path, "x");
    CQFile first, second;
    Open(first, path, CFile::modeReadWrite | CFile::shareExclusive);
    const bool isKeptOut = second.Open(Path(path), CFile::modeRead | CFile::shareDenyNone) == 0;
    first.Flush();
    first.Close();
    const bool isFree = second.Open(Path(path), CFile::modeRead | CFile::shareDenyNone) != 0;
    return std::string(isKeptOut ? "others kept out" : "others not kept out") +
           (isFree ? ", then free" : ", never free");
}

std::string Printed(const std::string& path) {
    qel::PageSetup page;
    page.sheet = {21'000, 29'700};
    page.dotsPerInch = {300, 300};
    CDC dc;
    if (!dc.Attach(qel::CreatePdfDC(Path(path), page))) throw Failure(Why("no PDF can be made"));
    DOCINFO info = {};
    info.cbSize = sizeof(DOCINFO);
    info.lpszDocName = "selftest";
    const bool isDone = dc.StartDoc(&info) > 0 && dc.StartPage() > 0 && dc.TextOut(100, 100, "35.1") != 0 &&
                        dc.EndPage() > 0 && dc.EndDoc() > 0;
    if (!isDone) throw Failure(Why("the PDF cannot be drawn"));
    return ReadAll(path).substr(0, 5);
}

}  // namespace

std::vector<SelfCheck> SelfChecks(const std::string& folder) {
    std::vector<SelfCheck> checks = {
        {"exact sum of 0.1 and 0.2", "0.30",
         [] { return std::string((CBCD("0.1") + CBCD("0.2")).GetString(2, DEC_ROUND_HALF_UP)); }},
        {"1 / 3 to 15 decimals", "0.333333333333333",
         [] { return std::string((CBCD("1") / 3).GetString(15, DEC_ROUND_HALF_UP)); }},
        {"2.675 rounded half up", "2.68", [] { return std::string(CBCD("2.675").GetString(2, DEC_ROUND_HALF_UP)); }},
        {"a double exactly between two texts", "75223483557905.38",
         [] { return std::string(CQVariant::DoubleToStr(75223483557905.375, 2, 0)); }},
        {"a result formula", "49.3743",
         [] {
             return Computed("(EP - BLANK) * C * M / V",
                             {{"EP", 16.47}, {"BLANK", 0.03}, {"C", 0.1}, {"M", 60.066}, {"V", 2}});
         }},
        {"a formula with a wrong name", "the formula names \"BLANC\", which has no value",
         [] {
             return Computed("EP - BLANC", {{"EP", 1}});
         }},
        {"the end point of a curve", "5.00", FoundEndPoint},
        {"each bit of a sealed file changed", "0 of the changed bits were not noticed",
         [=] { return Sealed(folder + "/sealed"); }},
        {"versions of a document", "first second third damage noticed", [=] { return Versions(folder); }},
        {"an enciphered document", "8.2 secret, enciphered", [=] { return Document(folder + "/document.xml"); }},
        {"locks of files in the folder", "others kept out, then free", [=] { return Locked(folder + "/locked"); }},
        {"a printed page", "%PDF-", [=] { return Printed(folder + "/page.pdf"); }},
    };
#ifdef QEL_WITH_QUANTITY
    AddTraceCheck(checks);
#endif
#ifdef QEL_WITH_TRAIL
    AddTrailChecks(checks, folder);
#endif
    return checks;
}

}  // namespace tool
