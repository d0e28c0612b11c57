#pragma once

#include <string>

namespace qel {

/// The three trees, in the order of their handles.
enum class RegistryRoot { ClassesRoot, CurrentUser, LocalMachine };
inline constexpr int kRegistryRoots = 3;

/// POSIX path of a tree's database; empty if it has no place, for example for a user without a home folder. Depends on
/// the environment at this moment.
std::string RegistryDatabase(RegistryRoot root);

}  // namespace qel
