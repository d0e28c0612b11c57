#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace qel {

/// Put this into a program or shared library so that CQFile::GetVersionInfo finds texts in its file: keys and values in
/// UTF-8, each followed by a zero byte. One in a source file of the module is enough; it survives stripping and section
/// garbage collection.
///
///     [[gnu::section(".note.qellib10"), gnu::used, gnu::aligned(4)]]
///     constexpr auto kVersion = qel::MakeVersionNote("FileVersion\0" "2.1.0\0" "ProductName\0" "Titrator\0");
///
/// The bytes are an ELF note: sizes of name and description, type 1, name, description.
template <std::size_t kSize> struct VersionNote {
    std::uint32_t nameSize = 8;
    std::uint32_t descriptionSize = kSize;
    std::uint32_t type = 1;
    char name[8] = {'Q', 'E', 'L', 'L', 'I', 'B', '1', '\0'};
    char description[(kSize + 3) / 4 * 4] = {};
};

template <std::size_t kSize> consteval VersionNote<kSize> MakeVersionNote(const char (&texts)[kSize]) {
    VersionNote<kSize> note;
    std::ranges::copy(texts, note.description);
    return note;
}

}  // namespace qel
