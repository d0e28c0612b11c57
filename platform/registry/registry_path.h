#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qel {

/// A name as it is stored, in UTF-8, and its folded form, which is the same for names that differ only in case.
struct RegistryName {
    std::string name;
    std::string fold;

    /// @param text in the code page @throws RegistryError above 16383 characters
    static RegistryName OfValue(std::string_view text);
};

/// The names of a path, checked.
class RegistryPath {
public:
    static constexpr std::size_t kMaxNames = 512;

    /// @param path in the code page @throws RegistryError
    explicit RegistryPath(std::string_view path);

    std::size_t Size() const noexcept { return m_names.size(); }
    std::string_view Name(std::size_t index) const { return Piece(m_text.name, index); }
    std::string_view Fold(std::size_t index) const { return Piece(m_text.fold, index); }

private:
    struct Place {
        std::size_t at, size;
    };

    std::string_view Piece(std::string_view text, std::size_t index) const {
        return text.substr(m_names[index].at, m_names[index].size);
    }

    RegistryName m_text;  // folding keeps the size of each character, so names are at the same places in both
    std::vector<Place> m_names;
};

}  // namespace qel
