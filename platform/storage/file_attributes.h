#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qel {

/// The extended attributes of a file, read by its path or, since a path may have got another file meanwhile, of the
/// file that is open. @p name is what exceptions call it.
class FileAttributes {
public:
    FileAttributes(std::string posixPath, std::string_view name) : m_path(std::move(posixPath)), m_name(name) {}
    FileAttributes(int file, std::string_view name) : m_file(file), m_name(name) {}

    /// @return none where there is no such attribute, or where the caller may not read it
    /// @throws CFileException when the system fails
    std::optional<std::vector<std::byte>> Get(const std::string& attribute) const;
    /// Those that the caller may see. @throws CFileException
    std::vector<std::string> Names() const;

private:
    std::string m_path;
    int m_file = -1;  // where there is no path
    std::string m_name;
};

/// Whether @p error says that the caller, or the file system, cannot do what was asked, and not that it has failed.
bool IsNotAllowed(int error);

}  // namespace qel
