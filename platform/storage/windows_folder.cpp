#include "qellib10/platform/storage/windows_folder.h"

#include <cstdlib>

#include "qellib10/platform/storage/path.h"

namespace qel {

std::string PosixWindowsFolder() {
    const char* folder = std::getenv("QELLIB10_STATE_DIR");
    return folder != nullptr && folder[0] == '/' ? folder : "/var/lib/qellib10";
}

CString WindowsFolder() { return ToLibraryPath(PosixWindowsFolder()); }

}  // namespace qel
