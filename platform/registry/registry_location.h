#pragma once

#include <string>

namespace qel {

/// The three trees, in the order of their handles.
enum class RegistryRoot { ClassesRoot, CurrentUser, LocalMachine };
inline constexpr int kRegistryRoots = 3;

/// POSIX path of the database of a tree; empty when there is no place for it, as for a user without a home. It depends
/// on the environment of this moment.
std::string RegistryDatabase(RegistryRoot root);

}  // namespace qel
