#pragma once

#include <set>
#include <string>

namespace tool {

/// A path of the command line without ".", from the root on. "link/.." is not the folder that the link is in, and
/// stays.
std::string AbsolutePath(const std::string& path);

/// What the paths of all that is in a folder start with.
std::string Below(const std::string& folder);

/// The one of @p folders that a file is in, or that is above; the nearest one, empty where none is. All are absolute
/// paths.
std::string NearestFolder(const std::set<std::string>& folders, const std::string& file);

}  // namespace tool
