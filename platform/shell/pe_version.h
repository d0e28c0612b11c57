#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/platform/shell/file_bytes.h"

namespace qel {

/// The version resource of a Windows program file, as TextOfVersionBlock takes it; empty when it has none. Of several
/// (they differ in name or language) the first.
///
///     0     "MZ" ... at 3C the offset P of:
///     P     "PE\0\0", +6 number of sections, +20 size S of the optional header
///     P+24  optional header: 10B (32 bits) or 20B (64 bits); behind it the data directories, the third being
///           address and size of the resources
///     P+24+S  section headers of 40 bytes: +12 address, +16 size in the file, +20 offset in the file
///
/// Resources are a tree of three levels, type, name, language; each node is 16 bytes (+12 named entries, +14 entries
/// with a number) and entries of 8: number, and offset from the tree's begin, its top bit set where another node
/// stands.
/// @throws DataError when an offset leads out of the file or into nothing
std::vector<std::byte> ReadPeVersionBlock(const FileBytes& file);

}  // namespace qel
