#pragma once

#include <string>
#include <vector>

#include "checked_file.h"
#include "tree.h"

// The lists of qel verify, and what has to be sealed.
namespace tool {

struct ListOptions {
    std::string saveList, against;
    bool force = false;

    bool AreThere() const { return !saveList.empty() || !against.empty(); }
};

/// @throws CLI::ValidationError, Failure for lists that the paths do not allow
void RequireTreeForLists(const ListOptions& options, const std::vector<std::string>& paths);

/// Saves the list of a folder's files, and compares them with another one; what is found is in @p files.
/// @param others what is no file there: a list has it as well. @throws Failure
void UseLists(std::vector<CheckedFile>& files, const std::vector<Tree::Other>& others, const std::string& folder,
              const ListOptions& options);

}  // namespace tool
