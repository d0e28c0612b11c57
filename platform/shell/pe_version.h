#pragma once

#include <cstddef>
#include <vector>

#include "qellib10/platform/shell/file_bytes.h"

namespace qel {

/// The version resource of a Windows program file, as TextOfVersionBlock needs it; empty if it has none. If there are
/// several (they differ in name or language), the first.
///
///     0     "MZ" ... at 3C the offset P of:
///     P     "PE\0\0", +6 number of sections, +20 size S of the optional header
///     P+24  optional header: 10B (32 bits) or 20B (64 bits); then the data directories, the third one being
///           address and size of the resources
///     P+24+S  section headers of 40 bytes: +12 address, +16 size in the file, +20 offset in the file
///
/// Resources are a tree of three levels, type, name, language. Each node is 16 bytes (+12 named entries, +14 entries
/// with a number), followed by entries of 8: number, and offset from the start of the tree, with the top bit set if
/// another node follows there.
/// @throws DataError when an offset points outside the file or to nothing
std::vector<std::byte> ReadPeVersionBlock(const FileBytes& file);

}  // namespace qel
