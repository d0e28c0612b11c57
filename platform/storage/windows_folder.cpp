#include "qellib10/platform/storage/windows_folder.h"

#include <cstdlib>

#include "qellib10/platform/storage/path.h"

namespace qel {

CString WindowsFolder() {
    const char* folder = std::getenv("QELLIB10_STATE_DIR");
    return ToLibraryPath(folder != nullptr && folder[0] == '/' ? folder : "/var/lib/qellib10");
}

}  // namespace qel
