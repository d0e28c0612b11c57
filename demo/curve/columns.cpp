#include "demo/curve/columns.h"

namespace titration {

bool FindNames(const Row& row, std::size_t line, Columns& columns) {
    if (!columns.haveNames) return false;
    const auto volume = FindIn(row, columns.volumeName);
    const auto signal = FindIn(row, columns.signalName);
    if (!volume || !signal) return false;
    columns.volume = *volume;
    columns.signal = *signal;
    columns.namesLine = line;
    columns.namesFields = row.size();
    return true;
}

}  // namespace titration
