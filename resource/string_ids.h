#pragma once

#include "qellib10/platform/types.h"

// Ids of the library's own string table. Applications keep the ids and the order of units and default texts in settings
// and documents.
namespace qel {

inline constexpr UINT kFirstUnitId = 2048;  ///< %, then one id per unit
inline constexpr UINT kLastUnitId = 2079;
inline constexpr UINT kFirstModelId = 3001;  ///< display names of the instrument models
inline constexpr UINT kLastModelId = 3007;

inline constexpr UINT kNoControlCodeId = 27010;  ///< the word for an empty terminator of a serial line

inline constexpr UINT kCsvLineEndId = 28001;
inline constexpr UINT kCsvDelimiterId = 28002;
inline constexpr UINT kCsvQuotationMarkId = 28003;

}  // namespace qel
