#pragma once

#include "tool.h"

namespace tool {

/// The variables of an archived list, which may be sealed. @param oldest the list has no head
/// @throws Failure when the file is no such list, or a part of it is missing
CCalcVariableList ReadVariables(const std::string& path, bool oldest);

std::string VariablesText(const CCalcVariableList& list);
Json VariablesJson(const CCalcVariableList& list);

/// Reads a list from where @p file stands and leaves it behind the list.
/// @throws CArchiveException, DataError for what is no list, Failure when it lacks variables that its head counts
CCalcVariableList LoadVariables(CFile& file);

/// Whether bytes at the begin of a file are the tag of a list.
bool IsVariablesTag(std::string_view bytes);

}  // namespace tool
