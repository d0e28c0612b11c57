#include "result_file.h"

#include "failure.h"

namespace titration {
namespace {

void Serialize(CCalcVariableList& list, const std::string& path, UINT fileMode, UINT archiveMode) {
    try {
        CFile file(path.c_str(), fileMode | CFile::shareExclusive);
        CArchive archive(&file, archiveMode);
        list.Serialize(archive);
        archive.Close();
        file.Close();
    } catch (const CFileException& error) {
        throw Failure(path + ": " + error.what());
    } catch (const CArchiveException& error) {
        throw Failure(path + ": " + error.what());
    }
}

}  // namespace

void StoreVariables(const CCalcVariableList& list, const std::string& path) {
    CCalcVariableList copy = list;
    Serialize(copy, path, CFile::modeCreate | CFile::modeWrite, CArchive::store);
}

CCalcVariableList LoadVariables(const std::string& path) {
    CCalcVariableList list;
    Serialize(list, path, CFile::modeRead, CArchive::load);
    return list;
}

}  // namespace titration
