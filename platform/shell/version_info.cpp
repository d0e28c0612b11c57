#include "qellib10/platform/shell/version_info.h"

#include <algorithm>
#include <array>
#include <string>

#include "qellib10/platform/shell/elf_version.h"
#include "qellib10/platform/shell/file_bytes.h"
#include "qellib10/platform/shell/pe_version.h"
#include "qellib10/platform/shell/version_block.h"
#include "qellib10/platform/text/code_page.h"

namespace qel {
namespace {

constexpr std::uint16_t kPeMagic = 0x5A4D;       // "MZ"
constexpr std::uint32_t kElfMagic = 0x464C457F;  // 7F "ELF"

std::optional<CString> AsText(const std::optional<std::string>& text) {
    if (!text) return std::nullopt;
    return CString(*text);
}

}  // namespace

std::optional<CString> VersionText(CFile& file, std::string_view key) {
    const FileBytes bytes(file);
    if (file.GetLength() < sizeof kElfMagic) return std::nullopt;
    const auto magic = bytes.Number<std::uint32_t>(0);
    if (magic == kElfMagic) return AsText(TextOfElfNotes(bytes, key));
    if (static_cast<std::uint16_t>(magic) != kPeMagic) return std::nullopt;
    return AsText(TextOfVersionBlock(ReadPeVersionBlock(bytes), key));
}

}  // namespace qel
