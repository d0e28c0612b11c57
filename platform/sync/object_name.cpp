#include "qellib10/platform/sync/object_name.h"

#include <cstdint>

#include "qellib10/platform/storage/file_error.h"
#include "qellib10/platform/sync/system_failure.h"
#include "qellib10/platform/text/multibyte.h"

namespace qel {
namespace {

constexpr std::string_view kLocal = "Local\\", kGlobal = "Global\\";
constexpr std::size_t kLongestFileName = 200, kKeptOfLonger = 180;  // the system takes 255 bytes
constexpr char kHexDigits[] = "0123456789ABCDEF";

bool NeedsNoEscape(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '_';
}

// FNV-1a, 64 bits.
std::uint64_t Hash(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    return hash;
}

}  // namespace

std::string_view ObjectName(std::string_view name) {
    if (name.size() > kLongestObjectName) throw SystemFailure{kPathTooLong};
    const bool isLocal = name.starts_with(kLocal);
    if (isLocal) name.remove_prefix(kLocal.size());
    const std::string_view rest = !isLocal && name.starts_with(kGlobal) ? name.substr(kGlobal.size()) : name;
    if (rest.empty()) throw SystemFailure{kBadHandle};  // this would be the name of the place where names are kept
    if (FindCharacter(rest, '\\') != std::string_view::npos) throw SystemFailure{kFolderMissing};
    return name;
}

std::string ObjectFileName(std::string_view objectName) {
    std::string file = "n";
    for (const char byte : objectName) {
        if (NeedsNoEscape(byte)) {
            file += byte;
        } else {
            const auto value = static_cast<unsigned char>(byte);
            file += {'%', kHexDigits[value >> 4], kHexDigits[value & 15]};
        }
    }
    if (file.size() <= kLongestFileName) return file;
    file.replace(kKeptOfLonger, std::string::npos, "~");
    for (int shift = 60; shift >= 0; shift -= 4) file += kHexDigits[Hash(objectName) >> shift & 15];
    return file;
}

}  // namespace qel
