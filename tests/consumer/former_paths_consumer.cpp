// What an application has that includes headers by their former paths.
#include <qellib10/base/q_csv_file.h>
#include <qellib10/platform/storage/ini_file.h>
#include <qellib10/platform/storage/restart_queue.h>
#include <qellib10/runtime/qel_resource.h>

int main() {
    const bool isTable = CQCSVFile().GetDelimiter() == ",";
    const bool isUnit = CQELResource::GetUnitText(2056) == "mol/L";
    const bool isSetting = qel::ReadProfileString("a", "b", "c", 10, "/no.ini") == "c";
    const bool isQueue = qel::RestartQueue("/no.queue").Waiting().empty();
    return isTable && isUnit && isSetting && isQueue ? 0 : 1;
}
