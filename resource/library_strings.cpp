#include <algorithm>
#include <functional>
#include <iterator>

#include "qellib10/platform/text/own_strings.h"
#include "qellib10/resource/string_ids.h"

namespace qel {
namespace {

// clang-format off
constexpr StringTableEntry kStrings[] = {
    // Units of results. If a unit is the same in both languages, so are the columns.
    {2048, "%", "%"},
    {2049, "ppm", "ppm"},
    {2050, "ppb", "ppb"},
    {2051, "g/L", "g/L"},
    {2052, "mg/L", "mg/L"},
    {2053, "µg/L", "µg/L"},
    {2054, "mg/mL", "mg/mL"},
    {2055, "mg/g", "mg/g"},
    {2056, "mol/L", "mol/L"},
    {2057, "mmol/L", "mmol/L"},
    {2058, "mmol/g", "mmol/g"},
    {2059, "meq/L", "meq/L"},
    {2060, "mgKOH/g", "mgKOH/g"},
    {2061, "pH", "pH"},
    {2062, "mV", "mV"},
    {2063, "mL", "mL"},
    {2064, "µL", "µL"},
    {2065, "L", "L"},
    {2066, "g", "g"},
    {2067, "mg", "mg"},
    {2068, "kg", "kg"},
    {2069, "µg", "µg"},
    {2070, "mL/min", "mL/min"},
    {2071, "mV/mL", "mV/mL"},
    {2072, "µS/cm", "µS/cm"},
    {2073, "mS/cm", "mS/cm"},
    {2074, "µA", "µA"},
    {2075, "°C", "℃"},
    {2076, "s", "秒"},
    {2077, "min", "分"},
    {2078, "h", "時間"},
    {2079, "times", "回"},

    // Instrument models.
    {3001, "Titrator T1", "滴定装置 T1"},
    {3002, "Titrator T2", "滴定装置 T2"},
    {3003, "Moisture titrator M1", "水分測定装置 M1"},
    {3004, "pH meter P1", "pH計 P1"},
    {3005, "Conductivity meter C1", "導電率計 C1"},
    {3006, "Dosing unit D1", "分注装置 D1"},
    {3007, "Sample changer S1", "試料交換装置 S1"},

    // Default texts.
    {kNoControlCodeId, "None", "なし"},
    {kCsvLineEndId, "\r\n", "\r\n"},
    {kCsvDelimiterId, ",", ","},
    {kCsvQuotationMarkId, "\"", "\""},
};
// clang-format on

constexpr auto CountBetween(UINT first, UINT last) {
    return std::ranges::count_if(
        kStrings, [=](UINT id) { return id >= first && id <= last; }, &StringTableEntry::id);
}
static_assert(std::ranges::adjacent_find(kStrings, std::ranges::greater_equal{}, &StringTableEntry::id) ==
              std::end(kStrings));
static_assert(CountBetween(kFirstUnitId, kLastUnitId) == kLastUnitId - kFirstUnitId + 1);
static_assert(CountBetween(kFirstModelId, kLastModelId) == kLastModelId - kFirstModelId + 1);

// Before main, so that an application's first object finds the texts.
[[maybe_unused]] const bool isRegistered = [] {
    RegisterOwnStringTable(kStrings);
    return true;
}();

}  // namespace
}  // namespace qel
