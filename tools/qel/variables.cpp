#include "variables.h"

#include <charconv>

namespace tool {
namespace {

struct Head {
    CString tag, version;
    int count = 0;
};

Head LoadHead(CFile& file) {
    Head head;
    CArchive archive(&file, CArchive::load);
    archive >> head.tag >> head.version;
    if (head.version != "1.00" && head.version != "1.01") throw qel::DataError("an archive of an unknown version");
    if (head.version == "1.01") {
        BYTE flag = 0;
        int digit = 0;
        archive >> flag >> digit;
    }
    archive >> head.count;
    return head;
}

ULONGLONG StoredSize(CCalcVariableList& list, const Head& head) {
    constexpr ULONGLONG kRounding = 5;  // flag and digit, which are missing in a head of version 1.00
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    list.Serialize(archive);
    archive.Close();
    return file.GetLength() - (head.version == "1.00" ? kRounding : 0);
}

std::string Aligned(const std::string& text, std::size_t width) {
    return text + std::string(width > text.size() ? width - text.size() : 1, ' ');
}

}  // namespace

Failure Incomplete(const CCalcVariableList& list, int count, Status finding) {
    return Failure(
        "of " + std::to_string(count) + " variables " + std::to_string(list.GetVariableCount()) + " can be read",
        finding);
}

// The oldest layout starts with the count.
CCalcVariableList LoadOldest(CFile& file) {
    int count = 0;
    CArchive(&file, CArchive::load) >> count;
    file.SeekToBegin();
    CCalcVariableList list;
    CArchive archive(&file, CArchive::load);
    list.LoadOldVariableList(archive);
    if (list.GetVariableCount() != count) throw Incomplete(list, count, kInconsistent);
    return list;
}

// Serialize ends without an error at unknown data, so the number of variables read is compared with the count in the
// head.
CCalcVariableList LoadVariables(CFile& file) {
    const ULONGLONG begin = file.GetPosition();
    const Head head = LoadHead(file);
    const int count = std::max(head.count, 0);
    file.Seek(static_cast<LONGLONG>(begin), CFile::begin);
    CCalcVariableList list;
    Status finding = kInconsistent;
    try {
        CArchive archive(&file, CArchive::load);
        list.Serialize(archive);
        archive.Close();
        if (list.GetVariableCount() == count) return list;
    } catch (const CArchiveException& error) {
        // At the border between two variables the count is more likely wrong.
        if (begin + StoredSize(list, head) != file.GetLength()) finding = StatusOf(error);
    }
    throw Incomplete(list, count, finding);
}

CCalcVariableList ReadVariables(const std::string& path, bool oldest) {
    const CString name = Path(path);
    return OnFile(path, [&] {
        CFile file(name, CFile::modeRead | CFile::shareDenyWrite);
        std::string head(16, '\0');
        head.resize(file.Read(head.data(), 16));
        if (qel::IsCalcArchive(head) == oldest)
            throw Failure(oldest ? "has a head, it is of a newer layout" : "not an archived list of variables",
                          kUnknown);
        file.SeekToBegin();
        return oldest ? LoadOldest(file) : LoadVariables(file);
    });
}

std::string VariablesText(const CCalcVariableList& list) {
    std::string text;
    CCalcVariable variable;
    for (int i = 0; list.GetVariableData(i, &variable) != 0; ++i) {
        char value[32] = {};
        std::to_chars(value, value + sizeof value - 1, variable.m_dValue);
        text += Aligned(Shown(Utf8(variable.m_szName.View())), 16) + ' ';
        text += variable.m_szText.IsEmpty() ? value : Aligned(value, 24) + Shown(Utf8(variable.m_szText.View()));
        text += '\n';
    }
    return text;
}

Json VariablesJson(const CCalcVariableList& list) {
    Json json{
        {"rounded", list.GetRoundUpFlag() != 0}, {"digits", list.GetRoundUpDigit()}, {"variables", Json::array()}};
    CCalcVariable variable;
    for (int i = 0; list.GetVariableData(i, &variable) != 0; ++i) {
        json["variables"].push_back({{"name", Utf8(variable.m_szName.View())},
                                     {"value", variable.m_dValue},
                                     {"used", variable.m_nUse != 0},
                                     {"option1", variable.m_nOption1},
                                     {"option2", variable.m_nOption2},
                                     {"text", Utf8(variable.m_szText.View())}});
    }
    return json;
}

}  // namespace tool
