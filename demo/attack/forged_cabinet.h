#pragma once

#include <string>
#include <vector>

namespace titration {

/// A cabinet taken apart, and put together again with right checksums: no key is needed for that. docs/formats.md has
/// the format.
struct ForgedCabinet {
    std::string guid;  // 16 bytes
    std::vector<std::string> versions;

    /// @throws Failure for what is no whole cabinet
    explicit ForgedCabinet(const std::string& bytes);
    std::string Bytes() const;
};

/// The bytes as 4 bytes of CRC and sum, in the order of a sealed file's trailer.
std::string SumsOf(const std::string& bytes);

}  // namespace titration
