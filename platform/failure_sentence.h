#pragma once

#include <string>
#include <string_view>

#include "qellib10/platform/export.h"
#include "qellib10/platform/failure.h"

namespace qel {

/// Why an operation failed, for the person who asked for it: the reason's text, or @p otherwise where no more is known
/// (kNone, kRefused). An application adds what it knows, the name of the file first of all:
///
/// @code
/// CHistoryCabinetFile cabinet;
/// if (cabinet.Open(R"(data\results.hcf)", 0) == 0)
///     std::puts(qel::FailureSentence(qel::LastFailure(), "cannot be opened").c_str());  // file not found
/// @endcode
///
/// @param why LastFailure() right after the operation
/// @return text in the process's code page, without a full stop. For formulas use FormulaSentence.
QELLIB10_API std::string FailureSentence(const Failure& why, std::string_view otherwise);

}  // namespace qel
