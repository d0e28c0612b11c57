#pragma once

#include <string>

#include <qellib10/qellib10.h>

#include "failure.h"

namespace titration {

/// What @p step gives. What the file does not permit becomes the one line that the user sees.
template <class Step> auto OnFile(const std::string& path, Step step) {
    try {
        return step();
    } catch (const CFileException& error) {
        throw Failure(path + ": " + error.what());
    } catch (const CArchiveException& error) {
        throw Failure(path + ": " + error.what());
    }
}

/// @throws CFileException
inline void Open(CFile& file, const std::string& path, UINT mode) {
    CFileException error;
    if (file.Open(path.c_str(), mode, &error) == 0) throw CFileException(error);
}

}  // namespace titration
