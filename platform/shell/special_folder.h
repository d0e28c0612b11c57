#pragma once

#include <string>

#include "qellib10/platform/export.h"
#include "qellib10/platform/text/string.h"

namespace qel {

/// Folders with a meaning for the desktop, by the framework's numbers.
enum class SpecialFolder : int {
    kPrograms = 2,         ///< the user's start menu: $XDG_DATA_HOME/applications (~/.local/share/applications)
    kPersonal = 5,         ///< the user's documents: XDG_DOCUMENTS_DIR of user-dirs.dirs, as the desktop (~/Documents)
    kStartup = 7,          ///< started with the user's session: $XDG_CONFIG_HOME/autostart (~/.config/autostart)
    kDesktop = 16,         ///< files on the desktop: XDG_DESKTOP_DIR of $XDG_CONFIG_HOME/user-dirs.dirs (~/Desktop)
    kCommonPrograms = 23,  ///< everybody's start menu: applications in the first folder of $XDG_DATA_DIRS
                           ///< (/usr/local/share)
    kCommonStartup = 24,   ///< with everybody's: autostart in the first folder of $XDG_CONFIG_DIRS (/etc/xdg)
    kAppData = 26,         ///< application settings of the user: $XDG_CONFIG_HOME (~/.config)
};

/// The folder's path, which need not exist; values of the environment are used only if they are absolute. Empty if the
/// user has no home folder.
QELLIB10_API CString SpecialFolderPath(SpecialFolder folder);
QELLIB10_INTERNAL_API std::string PosixSpecialFolder(SpecialFolder folder);

}  // namespace qel
