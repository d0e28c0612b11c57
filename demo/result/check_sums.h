#pragma once

#include <string>

#include <qellib10/qellib10.h>

namespace titration {

/// CRC and sum of bytes, as in sealed files and cabinets.
struct CheckSums {
    DWORD crc = 0, sum = 0;

    bool operator==(const CheckSums&) const = default;
};

/// Of the first @p size bytes of an open file.
/// @throws Failure
CheckSums CheckSumsOf(CQFile& file, DWORD size);
/// Of a whole file, also while others write to it.
/// @throws Failure if it cannot be read
CheckSums CheckSumsOf(const std::string& path);

/// "CRC 89AB0123, sum 00004567"
std::string Shown(const CheckSums& sums);

}  // namespace titration
