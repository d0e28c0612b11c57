#include "demo/result/result_table.h"

#include <initializer_list>

#include <qellib10/qellib10.h>

#include "demo/support/file_step.h"

namespace titration {
namespace {

void WriteLine(CQCSVFile& file, std::initializer_list<CString> fields) {
    bool isFirst = true;
    for (const CString& field : fields) {
        if (!isFirst) file.WriteDelimiter();
        file.WriteCSVString(field);
        isFirst = false;
    }
    file.WriteCRLF();
}

int WriteLines(CQCSVFile& file, const Result& result) {
    WriteLine(file, {"name", "value", "unit"});
    CCalcVariable variable;
    int used = 0;
    for (; result.variables.GetUseVariableData(used, &variable) != 0; ++used) {
        CString value;
        value.Format("%.10g", variable.m_dValue);
        WriteLine(file, {variable.m_szName, value, ""});
    }
    WriteLine(file, {result.name.c_str(), result.text.c_str(), result.unit.c_str()});
    return used + 2;
}

}  // namespace

int WriteResultTable(const Result& result, const std::string& path) {
    return OnFile(path, [&] {
        CQCSVFile file;
        Open(file, path, CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);
        const int lines = WriteLines(file, result);
        file.Close();
        return lines;
    });
}

}  // namespace titration
