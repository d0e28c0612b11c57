#include "qellib10/platform/shell/version_note.h"

namespace qel {
namespace {

// The library's own texts; QELLIB10_VERSION comes from the build.
[[gnu::section(".note.qellib10"), gnu::used, gnu::aligned(4)]] constexpr auto kLibraryVersion = MakeVersionNote(
    "FileDescription\0"
    "Class library for laboratory instrument applications\0"
    "FileVersion\0" QELLIB10_VERSION
    "\0"
    "InternalName\0"
    "qellib10\0"
    "ProductName\0"
    "QELLIB10\0"
    "ProductVersion\0" QELLIB10_VERSION "\0");

}  // namespace
}  // namespace qel
