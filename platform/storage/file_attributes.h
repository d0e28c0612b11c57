#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel {

/// The extended attributes of a file. They are read by its path or through the open file, because the path may
/// meanwhile name another file. @p name is what exceptions call it.
class FileAttributes {
public:
    FileAttributes(std::string posixPath, std::string_view name) : m_path(std::move(posixPath)), m_name(name) {}
    FileAttributes(int file, std::string_view name) : m_file(file), m_name(name) {}

    /// @return nothing if the attribute does not exist or the caller may not read it
    /// @throws CFileException when the system fails
    std::optional<std::vector<std::byte>> Get(const std::string& attribute) const;
    /// The attributes that the caller may see. @throws CFileException
    std::vector<std::string> Names() const;

private:
    std::string m_path;
    int m_file = -1;  // if there is no path
    std::string m_name;
};

/// Whether @p error means that the caller may not, or the file system cannot, do this, as opposed to a failure.
bool IsNotAllowed(int error);

}  // namespace qel
