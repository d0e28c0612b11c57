#pragma once

#include "../support/temp_folder.h"
#include "result_of.h"

/// A folder in which the tool is run.
class QelFolder : public TempFolder {
public:
    /// As ResultOf; @p arguments as a shell takes them, and more commands after them.
    std::string Qel(const std::string& arguments) const {
        return ResultOf("cd '" + Posix().native() + "' && " QELLIB10_QEL " " + arguments);
    }
};
