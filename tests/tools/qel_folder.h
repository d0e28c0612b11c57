#pragma once

#include "../support/temp_folder.h"
#include "answer_of.h"

/// A folder in which the tool is run.
class QelFolder : public TempFolder {
public:
    /// As AnswerOf; @p arguments as a shell takes them, and more commands after them.
    std::string Qel(const std::string& arguments) const {
        return AnswerOf("cd '" + Posix().native() + "' && " QELLIB10_QEL " " + arguments);
    }
};
