#pragma once

#include "tool.h"

namespace tool {

/// The variables of an archived list, which may be sealed. @param oldest the list has no head
/// @throws Failure if the file is not such a list, or a part of it is missing
CCalcVariableList ReadVariables(const std::string& path, bool oldest);

std::string VariablesText(const CCalcVariableList& list);
Json VariablesJson(const CCalcVariableList& list);

/// Reads a list from the current position of @p file, which is then after the list.
/// @throws CArchiveException, DataError for data that are not a list, Failure if variables counted in its head are
/// missing
CCalcVariableList LoadVariables(CFile& file);

}  // namespace tool
